/**
 * @file zorj.h
 * The inner steps of still-image codecs. Includes the headers of all families; see zorj/types.h for the
 * conventions they share.
 */
#ifndef ZORJ_H
#define ZORJ_H

#include "zorj/hdp.h"
#include "zorj/jpeg2k_codeblock.h"
#include "zorj/jpeg2k_transform.h"
#include "zorj/jpeg_color.h"
#include "zorj/jpeg_dct.h"
#include "zorj/jpeg_huffman.h"
#include "zorj/jpeg_lossless.h"
#include "zorj/jpeg_progressive.h"
#include "zorj/jpeg_sampling.h"
#include "zorj/texture.h"
#include "zorj/tiff.h"
#include "zorj/types.h"

#endif
