// A baseline JPEG codec in memory. Images of one channel are grey, of three RGB, of four CMYK with 255 for full ink.
//
// The decoder divides large pictures among threads of its own if it is asked to. An application that uses it sets
// zorSetNumThreads(1), so that the library does not divide the parts once more.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "common/image.h"
#include "jpeg/coefficients.h"
#include "jpeg/decode_options.h"

namespace examples::jpeg {

// How many pixels share a chroma sample: one, a horizontal pair, a 2 x 2 square.
enum class Sampling { s444, s422, s420 };

struct EncodeOptions {
  int32_t quality = 90;  // 1 to 100
  Sampling sampling = Sampling::s444;
  int32_t restartInterval = 0;  // in MCUs, 0 to 65535; 0 for none
  bool convertColors = true;    // RGB to YCbCr, CMYK to YCCK
};

// Writes a file to `jpeg`, whose memory is used again: a JFIF file for grey and YCbCr, else one with Adobe's marker. A
// grey image makes a file of one component, whatever the sampling; colours that are not converted are sampled 4:4:4.
// Throws Error if an option or the image's size is outside what the format allows.
void encode(const Image& image, const EncodeOptions& options, std::vector<uint8_t>& jpeg);

// The coefficients that encode() codes.
CoefficientImage transform(const Image& image, const EncodeOptions& options);

struct DecodeReport {
  std::string problem;  // in one line; empty if nothing is missing

  bool complete() const { return problem.empty(); }
};

// Decode a file; the image's memory is used again. Damaged or truncated data is decoded as far as it goes: what is
// missing is grey, and the report says so. Throw Error if the file is not one that is supported.
DecodeReport decode(std::span<const uint8_t> jpeg, const DecodeOptions& options, Image& image);
DecodeReport decodeCoefficients(std::span<const uint8_t> jpeg, CoefficientImage& coefficients);

// A component's samples as decoded, before up-sampling and colour conversion, in whole blocks.
struct ComponentSamples {
  int32_t width = 0;
  int32_t height = 0;
  std::vector<uint8_t> samples;
};
std::vector<ComponentSamples> inverseTransform(CoefficientImage& coefficients);

}  // namespace examples::jpeg
