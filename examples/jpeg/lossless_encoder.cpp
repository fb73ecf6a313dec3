#include "jpeg/lossless_encoder.h"

#include <zorj/jpeg_huffman.h>

#include <algorithm>
#include <bit>
#include <limits>
#include <span>

#include "common/error.h"
#include "jpeg/headers.h"
#include "jpeg/huffman.h"
#include "jpeg/marker_writer.h"
#include "jpeg/markers.h"
#include "jpeg/prediction.h"

namespace examples::jpeg {
namespace {

// A code of 16 bits and 15 extra bits, every byte stuffed, with the byte that was begun.
constexpr size_t kMaxValueBytes = 8;

// The differences of an image, row by row, in a row component by component.
template <class Sample>
std::vector<int16_t> differencesOf(const BasicImage<Sample>& image, const Frame& frame, const Prediction& prediction,
                                   int32_t rowsPerSegment) {
  const auto width = static_cast<size_t>(image.width), channels = static_cast<size_t>(image.channels);
  const int32_t inversion = frame.inverted ? image.largest() : 0;
  std::vector<int16_t> differences(image.samples.size());
  std::vector<int16_t> samples(width);
  std::vector<std::vector<int16_t>> above(channels, samples);
  const std::span<int16_t> all = differences;
  for (int32_t y = 0; y < image.height; ++y) {
    const bool isFirst = y == 0 || (rowsPerSegment > 0 && y % rowsPerSegment == 0);
    for (size_t c = 0; c < channels; ++c) {
      const Sample* const pixels = image.at(0, y) + c;
      for (size_t x = 0; x < width; ++x) {
        samples[x] = static_cast<int16_t>((pixels[x * channels] ^ inversion) >> prediction.pointTransform);
      }
      const std::span<int16_t> row = all.subspan((static_cast<size_t>(y) * channels + c) * width, width);
      if (isFirst) {
        predictFirstRow(prediction, samples, row);
      } else {
        predictRow(prediction, samples, above[c], row);
      }
      samples.swap(above[c]);
    }
  }
  return differences;
}

// What zoriGetHuffmanStatisticsOne_JPEG_16s_C1 counts, without a call for each: first how often there is each
// difference, of which few are common.
SymbolCounts countSymbols(const std::vector<int16_t>& differences, int32_t precision) {
  // The predictions of some predictors go beyond the samples' range on both sides.
  const int32_t bits = std::min(precision + 3, 16);
  const size_t mask = (size_t{1} << bits) - 1;
  // Neighbours are often the same: counters taken in turn need not wait for one another.
  std::vector<int32_t> even(mask + 1), odd(mask + 1);
  size_t i = 0;
  for (; i + 2 <= differences.size(); i += 2) {
    ++even[static_cast<size_t>(differences[i]) & mask];
    ++odd[static_cast<size_t>(differences[i + 1]) & mask];
  }
  if (i < differences.size()) ++even[static_cast<size_t>(differences[i]) & mask];

  SymbolCounts counts{};
  for (size_t low = 0; low <= mask; ++low) {
    const int32_t magnitude = std::min(static_cast<int32_t>(low), static_cast<int32_t>(mask + 1 - low));
    counts[static_cast<size_t>(std::bit_width(static_cast<uint32_t>(magnitude)))] += even[low] + odd[low];
  }
  return counts;
}

// All components with the same table, interleaved.
class RowEncoder {
 public:
  RowEncoder(std::vector<uint8_t>& file, const HuffmanEncodeSpec* spec)
      : file_(file), position_(static_cast<int32_t>(file.size())) {
    std::fill(std::begin(specs_), std::end(specs_), spec);
  }

  void encode(const int16_t* const* rows, int32_t width, int32_t components) {
    makeRoom(static_cast<size_t>(width) * static_cast<size_t>(components) * kMaxValueBytes);
    code(rows, width, components, 0);
  }
  void restart(int32_t number) {
    flush();
    file_[static_cast<size_t>(position_++)] = 0xff;
    file_[static_cast<size_t>(position_++)] = static_cast<uint8_t>(marker::RST0 + number % 8);
  }
  void finish() {
    flush();
    file_.resize(static_cast<size_t>(position_));
  }

 private:
  void flush() {
    makeRoom(kMaxValueBytes);
    code(nullptr, 0, 0, 1);
  }
  void code(const int16_t* const* rows, int32_t width, int32_t components, int32_t flush) {
    if (zoriEncodeHuffmanRow_JPEG_16s1u_P4C1(rows, width, components, file_.data(), static_cast<int32_t>(file_.size()),
                                             &position_, specs_, state_.get(), flush) != StatusOk) {
      throw Error("a row could not be coded");
    }
  }
  void makeRoom(size_t bytes) {
    const size_t needed = static_cast<size_t>(position_) + bytes;
    if (needed > std::numeric_limits<int32_t>::max()) throw Error("the file would be larger than 2 GiB");
    if (file_.size() < needed) {
      file_.resize(
          std::min<size_t>(std::max(needed, file_.size() + file_.size() / 2), std::numeric_limits<int32_t>::max()));
    }
  }

  std::vector<uint8_t>& file_;
  int32_t position_;
  const HuffmanEncodeSpec* specs_[kMaxComponents];
  EncodeState state_ = makeEncodeState();
};

}  // namespace

template <class Sample>
void encodeLossless(const BasicImage<Sample>& image, const Frame& frame, const EncodeOptions& options,
                    std::vector<uint8_t>& jpeg) {
  if (image.precision < 2) throw Error("lossless samples must have 2 bits at least");
  if (options.pointTransform < 0 || options.pointTransform >= image.precision) {
    throw Error("the point transform must leave at least one bit of the " + std::to_string(image.precision));
  }
  if (options.restartInterval % image.width != 0) {
    throw Error("lossless files restart at whole rows: the interval must be a multiple of " +
                std::to_string(image.width));
  }
  const int32_t rowsPerSegment = options.restartInterval / image.width;
  const Prediction prediction{options.predictor, image.precision, options.pointTransform};
  const std::vector<int16_t> differences = differencesOf(image, frame, prediction, rowsPerSegment);
  const OptimalLists lists(countSymbols(differences, image.precision));

  jpeg.clear();
  writeHeaders(frame, {}, options.restartInterval, jpeg);
  MarkerWriter(jpeg).huffmanTable(false, 0, lists.lists());
  MarkerWriter(jpeg).scan(frame, {frame.allComponents(), options.predictor, 0, 0, options.pointTransform});
  const EncodeSpec spec = makeEncodeSpec(lists.lists());
  RowEncoder encoder(jpeg, spec.get());
  for (int32_t y = 0; y < image.height; ++y) {
    if (y > 0 && rowsPerSegment > 0 && y % rowsPerSegment == 0) encoder.restart(y / rowsPerSegment - 1);
    const int16_t* rows[kMaxComponents] = {};
    for (int32_t c = 0; c < image.channels; ++c) {
      rows[c] = differences.data() + (ptrdiff_t{y} * image.channels + c) * image.width;
    }
    encoder.encode(rows, image.width, image.channels);
  }
  encoder.finish();
  MarkerWriter(jpeg).marker(marker::EOI);
}

template void encodeLossless(const Image&, const Frame&, const EncodeOptions&, std::vector<uint8_t>&);
template void encodeLossless(const DeepImage&, const Frame&, const EncodeOptions&, std::vector<uint8_t>&);

}  // namespace examples::jpeg
