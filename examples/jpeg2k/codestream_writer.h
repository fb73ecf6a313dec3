// Writes the markers of a codestream (T.800 Annex A).
#pragma once

#include "jpeg2k/byte_writer.h"
#include "jpeg2k/parameters.h"

namespace examples::jpeg2k {

// SOC, SIZ, COD and QCD. The coding of the first component must be that of all.
void writeMainHeader(const ImageSize& size, const TileCoding& coding, ByteWriter& bytes);

// How many bytes there are besides main header and packets: those of a tile's only part, and those behind the last one.
inline constexpr int64_t kTilePartHeader = 14;
inline constexpr int64_t kEndOfCodestream = 2;

// SOT and SOD; returns where the tile-part begins.
size_t beginTilePart(int32_t tile, ByteWriter& bytes);
// Fills in the length of the tile-part that ends here; throws Error if it is too long.
void endTilePart(size_t start, ByteWriter& bytes);
void writeEndOfCodestream(ByteWriter& bytes);

}  // namespace examples::jpeg2k
