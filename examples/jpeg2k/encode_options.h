// What an encoder is asked for.
#pragma once

#include <cstdint>

namespace examples::jpeg2k {

// The order of packets, from the outer loop to the inner one: layer, resolution, component, position.
enum class Progression : uint8_t { lrcp, rlcp, rpcl, pcrl, cprl };

// Options of code-blocks; the bits are those of the code-block style in a codestream (T.800 Table A.19).
namespace block_style {
inline constexpr uint32_t bypass = 0x01;
inline constexpr uint32_t reset = 0x02;
inline constexpr uint32_t termall = 0x04;
inline constexpr uint32_t vcausal = 0x08;
inline constexpr uint32_t pterm = 0x10;
inline constexpr uint32_t segsym = 0x20;
}  // namespace block_style

struct Extent {
  int32_t width = 0;
  int32_t height = 0;
};

struct EncodeOptions {
  // Reversible coding by the 5/3 wavelet, unless a size or a quality is asked for: then the 9/7 wavelet. The size is
  // that of the samples (width x height x channels x precision bits) divided by the ratio.
  double ratio = 0;  // 0 for none
  double psnr = 0;   // in dB; 0 for none

  int32_t levels = 5;        // of the wavelet, 0 to 32
  Extent block = {64, 64};   // powers of 2, 4 to 1024, together at most 4096 samples
  Extent tile = {0, 0};      // 0 for the whole image
  Extent precinct = {0, 0};  // powers of 2, of all resolutions; 0 for as large as possible
  int32_t layers = 1;        // 1 to 65535
  Progression progression = Progression::lrcp;
  uint32_t style = 0;  // of block_style
  bool convertColors = true;
  bool sop = false;  // markers before and behind packet headers
  bool eph = false;
  bool codestreamOnly = false;  // without the boxes of a JP2 file
  int32_t threads = 1;
};

}  // namespace examples::jpeg2k
