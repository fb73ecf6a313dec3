// The boxes of a JP2 file around a codestream (T.800 Annex I).
#pragma once

#include "jpeg2k/byte_writer.h"

namespace examples::jpeg2k {

struct FileHeader {
  int32_t width = 0;
  int32_t height = 0;
  int32_t channels = 0;  // 1 and 2 are grey, 3 RGB, 4 CMYK
  int32_t precision = 8;
};

// Writes all boxes up to the codestream; returns where it begins.
size_t beginFile(const FileHeader& header, ByteWriter& file);
// Fills in the length of the codestream that ends here; throws Error if that is too long for a box.
void endFile(size_t codestreamStart, ByteWriter& file);

}  // namespace examples::jpeg2k
