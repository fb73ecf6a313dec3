#include "jpeg/entropy_segments.h"

#include <cstring>

#include "jpeg/markers.h"

namespace examples::jpeg {

std::vector<size_t> restartSegments(std::span<const uint8_t> file, size_t position, int64_t segments) {
  std::vector<size_t> starts = {position};
  for (size_t at = position; at + 1 < file.size() && static_cast<int64_t>(starts.size()) <= segments; ++at) {
    const void* const found = std::memchr(file.data() + at, 0xff, file.size() - 1 - at);
    if (!found) break;
    at = static_cast<size_t>(static_cast<const uint8_t*>(found) - file.data());
    const uint8_t code = file[at + 1];
    if (code == 0x00 || code == 0xff) continue;
    if (code != marker::RST0 + (starts.size() - 1) % 8) break;
    starts.push_back(at + 2);
  }
  if (static_cast<int64_t>(starts.size()) != segments) starts.clear();
  return starts;
}

EntropySegments::EntropySegments(std::span<const uint8_t> file, size_t start, int32_t unitsPerSegment, int64_t segment)
    : bytes(file.data()),
      length(static_cast<int32_t>(file.size())),
      position(static_cast<int32_t>(start)),
      unitsPerSegment_(unitsPerSegment),
      unitsLeft_(unitsPerSegment),
      restartNumber_(static_cast<int32_t>(segment % 8)) {}

bool EntropySegments::advance() {
  if (unitsPerSegment_ == 0 || --unitsLeft_ > 0) return false;
  unitsLeft_ = unitsPerSegment_;
  restart();
  return true;
}

// Goes to the marker that ends this segment. Restart markers count modulo 8: one of the next few numbers means that
// segments in between are lost, and stays until its turn; another is a stray one, and is passed over.
void EntropySegments::restart() {
  const int32_t expected = restartNumber_;
  restartNumber_ = (restartNumber_ + 1) % 8;
  lost_ = true;
  while (marker != 0 || findMarker()) {
    if (!marker::isRestart(marker)) return;
    const int32_t ahead = (marker - marker::RST0 - expected + 8) % 8;
    if (ahead == 0) lost_ = false;
    if (ahead < 4) break;
    marker = 0;
  }
  if (lost_) return;
  marker = 0;
  zoriDecodeHuffmanStateInit_JPEG_8u(state.get());
}

bool EntropySegments::findMarker() {
  for (; position + 1 < length; ++position) {
    if (bytes[position] == 0xff && bytes[position + 1] != 0x00 && bytes[position + 1] != 0xff) {
      marker = bytes[position + 1];
      position += 2;
      return true;
    }
  }
  return false;
}

size_t EntropySegments::end() const { return static_cast<size_t>(marker != 0 ? position - 2 : position); }

}  // namespace examples::jpeg
