#include "jpeg2k/block_decoder.h"

#include <zorj/jpeg2k_codeblock.h>

#include <algorithm>
#include <cmath>
#include <type_traits>

#include "jpeg2k/library_style.h"

namespace examples::jpeg2k {
namespace {

// Magnitudes are decoded with one more bit below, which holds the middle of what the bits above leave open.
constexpr int32_t kHalfBits = 1;
constexpr int32_t kMaxPlanes = 31 - kHalfBits;
constexpr size_t kMaxBlockSamples = 4096;

// From sign and magnitude.
inline int32_t integerOf(int32_t sample) {
  const int32_t magnitude = (sample & INT32_MAX) >> kHalfBits;
  return sample < 0 ? -magnitude : magnitude;
}

template <class T>
void convertRow(const int32_t* from, int32_t count, float scale, T* to) {
  for (int32_t x = 0; x < count; ++x) {
    if constexpr (std::is_same_v<T, float>) {
      const float magnitude = static_cast<float>(from[x] & INT32_MAX) * scale;
      to[x] = from[x] < 0 ? -magnitude : magnitude;
    } else {
      to[x] = static_cast<T>(integerOf(from[x]));
    }
  }
}

// Magnitudes that reach above the rest belong to the region of interest (T.800 Annex H.1).
void lowerRegion(std::vector<int32_t>& samples, size_t count, int32_t shift) {
  for (size_t i = 0; i < count; ++i) {
    const int32_t magnitude = samples[i] & INT32_MAX;
    if (magnitude >> kHalfBits >> shift != 0) samples[i] = (samples[i] & INT32_MIN) | magnitude >> shift;
  }
}

}  // namespace

BandCoding bandCoding(const ComponentCoding& coding, const Subband& band, int32_t precision) {
  const Quantization::Step& step = coding.quantization.steps[static_cast<size_t>(band.number)];
  BandCoding result;
  result.kind = band.kind;
  result.flags = libraryStyle(coding.style.blockStyle) | CbTruncateOnError | CbKeepMidpoint;
  result.planes = coding.quantization.guardBits + step.exponent - 1 + coding.roiShift;
  result.roiShift = coding.roiShift;
  // T.800 Formula E-3.
  result.step = std::ldexp(1.0f + static_cast<float>(step.mantissa) / 2048, precision + band.gain() - step.exponent);
  return result;
}

BlockDecoder::BlockDecoder() : samples_(kMaxBlockSamples) {}

bool BlockDecoder::decodeMagnitudes(const PacketReader& packets, const PacketBlock& block, const Rect& rect,
                                    const BandCoding& coding) {
  lengths_.clear();
  const uint8_t* bytes = packets.piece(block.firstPiece).bytes;
  const uint8_t* end = bytes;
  int32_t passes = 0;
  bool apart = false;
  for (int32_t i = block.firstPiece; i >= 0; i = packets.piece(i).next) {
    const Piece& piece = packets.piece(i);
    if (piece.opensSegment || lengths_.empty()) {
      lengths_.push_back(piece.length);
    } else {
      lengths_.back() += piece.length;
    }
    passes += piece.passes;
    apart = apart || piece.bytes != end;
    end = piece.bytes + piece.length;
  }
  if (apart) {
    joined_.clear();
    for (int32_t i = block.firstPiece; i >= 0; i = packets.piece(i).next) {
      const Piece& piece = packets.piece(i);
      joined_.insert(joined_.end(), piece.bytes, piece.bytes + piece.length);
    }
    joined_.push_back(0);  // so that there is an address where there are no bytes
    bytes = joined_.data();
  }
  const RoiSize size = {rect.width(), rect.height()};
  int32_t stateSize = 0;
  zoriDecodeGetBufSize_JPEG2K(size, &stateSize);
  if (state_.size() < static_cast<size_t>(stateSize)) state_.resize(static_cast<size_t>(stateSize));
  const int32_t planes = coding.planes - block.zeroPlanes;
  if (planes <= 0 || planes > kMaxPlanes) {
    std::fill(samples_.begin(), samples_.end(), 0);
    return false;
  }
  const int32_t possiblePasses = 3 * planes - 2;
  const StatusCode status = zoriDecodeCodeBlock_JPEG2K_1u32s_C1R(
      bytes, samples_.data(), rect.width() * int32_t{sizeof(int32_t)}, size, coding.kind, planes + kHalfBits,
      std::min(passes, possiblePasses), lengths_.data(), static_cast<int32_t>(lengths_.size()), coding.flags, nullptr,
      state_.data());
  return status == StatusOk && passes <= possiblePasses;
}

template <class T>
bool BlockDecoder::decode(const PacketReader& packets, const PacketBlock& block, const Rect& rect,
                          const BandCoding& coding, const Window<T>& window) {
  const bool good = decodeMagnitudes(packets, block, rect, coding);
  if (coding.roiShift > 0) {
    lowerRegion(samples_, static_cast<size_t>(rect.width()) * static_cast<size_t>(rect.height()),
                std::min(coding.roiShift, kMaxPlanes));
  }
  const Rect inside = intersection(rect, window.rect);
  const float scale = coding.step / (1 << kHalfBits);
  for (int32_t y = inside.y0; y < inside.y1; ++y) {
    const int32_t* const from = samples_.data() + ptrdiff_t{y - rect.y0} * rect.width() + (inside.x0 - rect.x0);
    convertRow(from, inside.width(), scale, window.at(inside.x0, y));
  }
  return good;
}

template bool BlockDecoder::decode(const PacketReader&, const PacketBlock&, const Rect&, const BandCoding&,
                                   const Window<int16_t>&);
template bool BlockDecoder::decode(const PacketReader&, const PacketBlock&, const Rect&, const BandCoding&,
                                   const Window<int32_t>&);
template bool BlockDecoder::decode(const PacketReader&, const PacketBlock&, const Rect&, const BandCoding&,
                                   const Window<float>&);

}  // namespace examples::jpeg2k
