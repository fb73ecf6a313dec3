// A JPEG codec in memory. Images of one channel are grey, of three RGB, of four CMYK with the largest value for full
// ink. It decodes the Huffman-coded processes of T.81 but the hierarchical ones: baseline and extended sequential,
// progressive, and lossless.
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
#include "jpeg/scan.h"

namespace examples::jpeg {

// How many pixels share a chroma sample: one, a horizontal pair, a 2 x 2 square.
enum class Sampling { s444, s422, s420 };

struct EncodeOptions {
  int32_t quality = 90;  // 1 to 100
  Sampling sampling = Sampling::s444;
  int32_t restartInterval = 0;  // in MCUs, 0 to 65535; 0 for none
  bool convertColors = true;    // RGB to YCbCr, CMYK to YCCK

  bool optimize = false;  // Huffman tables made for the image; always so but in baseline files
  bool progressive = false;
  std::vector<Scan> script{};  // the progressive scans; empty for a usual choice
  int32_t precision = 8;       // 8 or 12 bits a sample, to which the image's are scaled; 12 only sequential

  // Lossless instead of all this: samples are predicted, 1 to 7 (T.81 Table H.1), and their lowest bits dropped.
  int32_t predictor = 0;
  int32_t pointTransform = 0;
};

// Write a file to `jpeg`, whose memory is used again: a JFIF file for grey and YCbCr, else one with Adobe's marker. A
// grey image makes a file of one component, whatever the sampling; colours that are not converted are sampled 4:4:4.
// A lossless file has the precision of the image and its colours as they are. Throw Error if an option or the image's
// size is outside what the format allows.
void encode(const Image& image, const EncodeOptions& options, std::vector<uint8_t>& jpeg);
void encode(const DeepImage& image, const EncodeOptions& options, std::vector<uint8_t>& jpeg);

// Codes coefficients as they are; only the restart interval and what kind of file it is to be count of the options.
void encodeCoefficients(CoefficientImage& coefficients, const EncodeOptions& options, std::vector<uint8_t>& jpeg);

// The coefficients that encode() codes.
CoefficientImage transform(const Image& image, const EncodeOptions& options);
CoefficientImage transform(const DeepImage& image, const EncodeOptions& options);

// A script of progressive scans as the program cjpeg has them: for each scan the numbers of its components, a colon,
// the band as two zig-zag positions, the high and the low bit, and a semicolon: "0,1,2: 0-0, 0, 1;". Comments run from
// # to the end of their line. Throws Error if these scans cannot follow one another.
std::vector<Scan> parseScript(const std::string& text);

// What the headers before a file's first scan say. Throws Error if the file is not one that is supported.
Frame describe(std::span<const uint8_t> jpeg);

struct DecodeReport {
  std::string problem;  // in one line; empty if nothing is missing

  bool complete() const { return problem.empty(); }
};

// Decode a file; the image's memory is used again. Damaged or truncated data is decoded as far as it goes: what is
// missing is grey, and the report says so. Throw Error if the file is not one that is supported. An Image gets samples
// of 8 bits, scaled where the file has more or fewer, a DeepImage those of the file.
DecodeReport decode(std::span<const uint8_t> jpeg, const DecodeOptions& options, Image& image);
DecodeReport decode(std::span<const uint8_t> jpeg, const DecodeOptions& options, DeepImage& image);
DecodeReport decodeCoefficients(std::span<const uint8_t> jpeg, CoefficientImage& coefficients);

// A component's samples as decoded, before up-sampling and colour conversion, in whole blocks.
struct ComponentSamples {
  int32_t width = 0;
  int32_t height = 0;
  std::vector<uint8_t> samples;
};
std::vector<ComponentSamples> inverseTransform(CoefficientImage& coefficients);

}  // namespace examples::jpeg
