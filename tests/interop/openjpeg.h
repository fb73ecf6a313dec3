// OpenJPEG, the independent encoder and decoder that zorj2k is held against, in memory.
#pragma once

#include <openjpeg.h>

#include <cstdint>
#include <span>
#include <vector>

#include "jpeg2k/codec.h"

namespace interop::openjpeg {

using examples::DeepImage;
using examples::Image;
using examples::jpeg2k::ComponentSamples;

struct DecodeSettings {
  uint32_t reduce = 0;
  uint32_t layers = 0;  // 0 for all
  int threads = 1;
  bool strict = true;  // data must be complete, and warnings are errors
};

// Components as they are coded, after the inverse colour transform. Throws std::runtime_error with what the peer says.
std::vector<ComponentSamples> decode(std::span<const uint8_t> file, const DecodeSettings& settings = {});

// The same as an image of samples of 8 bits.
void decode(std::span<const uint8_t> file, const DecodeSettings& settings, Image& image);

// The peer's defaults, for a file without loss: the 5/3 wavelet with 6 resolutions, blocks of 64 x 64, one layer.
opj_cparameters_t defaults();

// Encodes an image to a JP2 file or a codestream; `extraOptions` are those that the peer takes as text.
std::vector<uint8_t> encode(const DeepImage& image, const opj_cparameters_t& parameters, bool codestreamOnly = false,
                            int threads = 1, const char* const* extraOptions = nullptr);

std::vector<uint8_t> encode(const Image& image, const opj_cparameters_t& parameters, bool codestreamOnly = false,
                            int threads = 1, const char* const* extraOptions = nullptr);

// An image with components of their own sizes, all unsigned or signed, at an offset on the reference grid.
struct PeerImage {
  uint32_t x0 = 0, y0 = 0, x1 = 0, y1 = 0;
  struct Component {
    uint32_t dx = 1, dy = 1, precision = 8;
    bool isSigned = false;
    std::vector<int32_t> samples;
  };
  std::vector<Component> components;
};
std::vector<uint8_t> encode(const PeerImage& image, const opj_cparameters_t& parameters, bool codestreamOnly = false,
                            int threads = 1, const char* const* extraOptions = nullptr);

}  // namespace interop::openjpeg
