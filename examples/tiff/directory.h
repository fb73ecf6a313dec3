// The fields of a TIFF directory.
#pragma once

#include <cstddef>
#include <cstdint>

namespace examples::tiff {

enum Tag : uint16_t {
  kImageWidth = 256,
  kImageLength = 257,
  kBitsPerSample = 258,
  kCompression = 259,
  kPhotometric = 262,
  kFillOrder = 266,
  kStripOffsets = 273,
  kSamplesPerPixel = 277,
  kRowsPerStrip = 278,
  kStripByteCounts = 279,
  kXResolution = 282,
  kYResolution = 283,
  kPlanarConfiguration = 284,
  kResolutionUnit = 296,
  kPredictor = 317,
  kTileWidth = 322,
  kInkSet = 332,
  kSampleFormat = 339,
};

enum FieldType : uint16_t { kByte = 1, kShort = 3, kLong = 4, kRational = 5 };

enum Photometric : uint32_t { kWhiteIsZero = 0, kBlackIsZero = 1, kRgb = 2, kSeparated = 5 };

// The header, the number of a directory's entries, an entry, and the offset of the next directory.
inline constexpr size_t kHeaderBytes = 8, kCountBytes = 2, kEntryBytes = 12, kNextBytes = 4;

}  // namespace examples::tiff
