// The entropy-coded data of a scan: segments that restart markers separate.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "jpeg/huffman.h"

namespace examples::jpeg {

// Where each restart segment of a scan's data starts; empty unless they are as many as there should be, and their
// markers all in order. Such segments can be decoded independently, however damaged their inside is.
std::vector<size_t> restartSegments(std::span<const uint8_t> file, size_t position, int64_t segments);

class EntropySegments {
 public:
  // The scan's data, or its restart segment of this number, starts at this byte of the file. A segment holds
  // `unitsPerSegment` units of what is decoded at a time; 0 if there is only one segment.
  EntropySegments(std::span<const uint8_t> file, size_t position, int32_t unitsPerSegment, int64_t segment = 0);

  // To be called before each unit but the first: true if a segment begins with it.
  bool advance();

  // The rest of the segment cannot be decoded.
  void lose() { lost_ = true; }
  bool lost() const { return lost_; }

  // The first byte after the data, where a marker begins if the data is whole.
  size_t end() const;

  // What the library's decoders work on.
  const uint8_t* bytes;
  int32_t length;
  int32_t position;
  int32_t marker = 0;
  DecodeState state = makeDecodeState();

 private:
  void restart();
  bool findMarker();

  int32_t unitsPerSegment_;
  int32_t unitsLeft_;
  int32_t restartNumber_;  // of the marker that comes next
  bool lost_ = false;
};

}  // namespace examples::jpeg
