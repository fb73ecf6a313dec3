// A JPEG 2000 codec in memory: codestreams of T.800, bare or in JP2 files. Images of one channel are grey, of three
// RGB, of four CMYK with the largest value for full ink.
//
// Both directions divide their work among threads if they are asked to; the result does not depend on their number. An
// application that uses them sets zorSetNumThreads(1), so that the library does not divide the parts once more.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "common/image.h"
#include "jpeg2k/encode_options.h"

namespace examples::jpeg2k {

// Write a file to `file`, whose memory is used again. Throw Error if an option or the image's size is outside what the
// format allows.
void encode(const Image& image, const EncodeOptions& options, std::vector<uint8_t>& file);
void encode(const DeepImage& image, const EncodeOptions& options, std::vector<uint8_t>& file);

// A part of the image in its pixels at full size; empty for all of it.
struct Region {
  int32_t x = 0;
  int32_t y = 0;
  int32_t width = 0;
  int32_t height = 0;
};

struct DecodeOptions {
  int32_t reduce = 0;  // the image is decoded at a 2^reduce-th of its width and height
  int32_t layers = 0;  // quality layers to decode; 0 for all
  Region region;
  int32_t tile = -1;  // the number of the only tile to decode, which is the picture then; -1 for all
  int32_t threads = 1;
};

struct DecodeReport {
  std::string problem;  // in one line; empty if nothing is missing

  bool complete() const { return problem.empty(); }
};

// What a file's headers say.
struct Description {
  int32_t width = 0;
  int32_t height = 0;
  int32_t channels = 0;
  int32_t precision = 0;  // of the channel with the most bits
};
Description describe(std::span<const uint8_t> file);

// Decode a file; the image's memory is used again. Damaged or truncated data is decoded as far as it goes: the picture
// is blurred or grey where data is missing, and the report says so. Throw Error if the file is not one that is
// supported. Channels that are stored with fewer samples are spread by repetition, opacity is left out. An Image gets
// samples of 8 bits, scaled where the file has more or fewer; a DeepImage those of the file, of which signed ones are
// raised to start at 0.
DecodeReport decode(std::span<const uint8_t> file, const DecodeOptions& options, Image& image);
DecodeReport decode(std::span<const uint8_t> file, const DecodeOptions& options, DeepImage& image);

// The codestream's components as decoded, before palettes, spreading and conversion to a picture.
struct ComponentSamples {
  int32_t width = 0;
  int32_t height = 0;
  int32_t precision = 0;
  bool isSigned = false;          // as the file has them
  std::vector<uint16_t> samples;  // raised to start at 0
};
DecodeReport decodeComponents(std::span<const uint8_t> file, const DecodeOptions& options,
                              std::vector<ComponentSamples>& components);

}  // namespace examples::jpeg2k
