// Models of the progressive Huffman coders (T.81 Annex G) and of the statistics: one coefficient at a time.
#pragma once

#include "reference/huffman.h"

namespace zorj::reference {

struct Band {
  int first, last, shift;
};

// Blocks in a row that ended with nothing left to code but these correction bits.
struct EobRun {
  int blocks = 0;
  std::vector<bool> corrections;
};

// Where symbols go: to a writer, or into counters.
class SymbolSink {
 public:
  SymbolSink(HuffmanWriter& writer, const HuffmanEncoder& encoder) : writer_(&writer), encoder_(&encoder) {}
  explicit SymbolSink(std::array<uint32_t, 256>& counters) : counters_(&counters) {}

  StatusCode put(int symbol, int value = 0, int extra = 0) {
    if (counters_ == nullptr) return encoder_->putValue(*writer_, symbol, value, extra);
    ++(*counters_)[static_cast<size_t>(symbol)];
    return StatusOk;
  }
  StatusCode putBits(const std::vector<bool>& bits) {
    StatusCode status = StatusOk;
    for (size_t i = 0; i < bits.size() && counters_ == nullptr && status == StatusOk; ++i) {
      status = writer_->put(bits[i], 1);
    }
    return status;
  }

 private:
  HuffmanWriter* writer_ = nullptr;
  const HuffmanEncoder* encoder_ = nullptr;
  std::array<uint32_t, 256>* counters_ = nullptr;
};

inline StatusCode putRun(SymbolSink& sink, EobRun& run) {
  if (run.blocks == 0) return StatusOk;
  int category = 0;
  while (run.blocks >> (category + 1) != 0) ++category;
  StatusCode status = sink.put(16 * category, run.blocks - (1 << category), category);
  if (status == StatusOk) status = sink.putBits(run.corrections);
  if (status == StatusOk) run = {};
  return status;
}

inline int magnitude(int value, int shift) { return std::abs(value) >> shift; }

inline int shiftedDcDifference(const int16_t* block, int shift, int16_t& lastDc) {
  int dc = block[0];
  for (int i = 0; i < shift; ++i) dc = (dc - (dc % 2 != 0 && dc < 0)) / 2;
  const int difference = dc - lastDc;
  lastDc = static_cast<int16_t>(dc);
  return difference;
}

inline StatusCode codeDcFirst(SymbolSink sink, const int16_t* block, int shift, int16_t& lastDc) {
  const int difference = shiftedDcDifference(block, shift, lastDc);
  if (category(difference) > 11) return StatusHuffmanDataError;
  return sink.put(category(difference), difference, category(difference));
}

inline StatusCode codeAcFirst(SymbolSink sink, const int16_t* block, Band band, EobRun& run) {
  int zeros = 0;
  for (int k = band.first; k <= band.last; ++k) {
    const int value = block[naturalIndex(k)], divided = magnitude(value, band.shift);
    if (divided == 0) {
      ++zeros;
      continue;
    }
    StatusCode status = putRun(sink, run);
    for (; zeros >= 16 && status == StatusOk; zeros -= 16) status = sink.put(0xF0);
    if (status != StatusOk) return status;
    if (category(divided) > 10) return StatusHuffmanDataError;
    status = sink.put(16 * zeros + category(divided), value < 0 ? -divided : divided, category(divided));
    if (status != StatusOk) return status;
    zeros = 0;
  }
  if (zeros == 0) return StatusOk;
  if (run.blocks == 32767) {
    if (const StatusCode status = putRun(sink, run)) return status;
  }
  return ++run.blocks == 32767 ? putRun(sink, run) : StatusOk;
}

inline StatusCode codeAcRefine(SymbolSink sink, const int16_t* block, Band band, EobRun& run) {
  int lastNew = 0;
  for (int k = band.first; k <= band.last; ++k) {
    if (magnitude(block[naturalIndex(k)], band.shift) == 1) lastNew = k;
  }
  int zeros = 0;
  std::vector<bool> corrections;
  for (int k = band.first; k <= band.last; ++k) {
    const int value = block[naturalIndex(k)], divided = magnitude(value, band.shift);
    if (divided == 0) {
      ++zeros;
      continue;
    }
    StatusCode status = k <= lastNew ? putRun(sink, run) : StatusOk;
    for (; zeros >= 16 && k <= lastNew && status == StatusOk; zeros -= 16) {
      status = sink.put(0xF0);
      if (status == StatusOk) status = sink.putBits(corrections);
      corrections.clear();
    }
    if (status != StatusOk) return status;
    if (divided > 1) {
      corrections.push_back(divided % 2 != 0);
      continue;
    }
    status = sink.put(16 * zeros + 1, value > 0, 1);
    if (status == StatusOk) status = sink.putBits(corrections);
    if (status != StatusOk) return status;
    zeros = 0;
    corrections.clear();
  }
  if (zeros == 0 && corrections.empty()) return StatusOk;
  const auto isFull = [&run] { return run.blocks == 32767 || run.corrections.size() > 937; };
  if (isFull()) {
    if (const StatusCode status = putRun(sink, run)) return status;
  }
  ++run.blocks;
  run.corrections.insert(run.corrections.end(), corrections.begin(), corrections.end());
  return isFull() ? putRun(sink, run) : StatusOk;
}

// Ends a scan.
inline StatusCode flushScan(HuffmanWriter& writer, const HuffmanEncoder& encoder, EobRun& run) {
  SymbolSink sink(writer, encoder);
  const StatusCode status = putRun(sink, run);
  return status != StatusOk ? status : writer.flush();
}

inline StatusCode countBlock(std::array<uint32_t, 256>& dc, std::array<uint32_t, 256>& ac, const int16_t* block,
                             int16_t& lastDc) {
  const int difference = shiftedDcDifference(block, 0, lastDc);
  if (category(difference) > 15) return StatusHuffmanDataError;
  ++dc[static_cast<size_t>(category(difference))];
  size_t zeros = 0;
  for (int k = 1; k < 64; ++k) {
    const int value = block[naturalIndex(k)];
    if (value == 0) {
      ++zeros;
      continue;
    }
    for (; zeros >= 16; zeros -= 16) ++ac[0xF0];
    if (category(value) > 14) return StatusHuffmanDataError;
    ++ac[16 * zeros + static_cast<size_t>(category(value))];
    zeros = 0;
  }
  if (zeros > 0) ++ac[0];
  return StatusOk;
}

// --- Decoding ---------------------------------------------------------------------------------------------------

inline int16_t low16(int64_t value) { return static_cast<int16_t>(value); }

inline StatusCode decodeDcFirst(HuffmanReader& reader, int16_t* block, int16_t& lastDc, int shift,
                                const HuffmanDecoder& decoder) {
  int symbol = 0, value = 0;
  StatusCode status = decoder.takeSymbol(reader, symbol);
  if (status == StatusOk && symbol % 16 != 0) status = takeExtraBits(reader, symbol % 16, value);
  if (status != StatusOk) return status;
  lastDc = low16(lastDc + value);
  block[0] = low16(lastDc * (int64_t{1} << shift));
  return StatusOk;
}

inline StatusCode decodeDcRefine(HuffmanReader& reader, int16_t* block, int shift) {
  const StatusCode status = reader.need(1);
  if (status == StatusOk && reader.take(1) == 1) block[0] = low16(block[0] | 1 << shift);
  return status;
}

inline StatusCode takeEobRun(HuffmanReader& reader, int extra, int& run) {
  const StatusCode status = reader.need(extra);
  if (status == StatusOk) run = (1 << extra) + static_cast<int>(reader.take(extra));
  return status;
}

inline int16_t& coefficient(int16_t* block, int k) { return block[naturalIndex(std::min(k, 63))]; }

inline StatusCode decodeAcFirst(HuffmanReader& reader, int16_t* block, Band band, int& eobRun,
                                const HuffmanDecoder& decoder) {
  if (eobRun > 0) {
    --eobRun;
    return StatusOk;
  }
  for (int k = band.first; k <= band.last; ++k) {
    int symbol = 0, value = 0;
    StatusCode status = decoder.takeSymbol(reader, symbol);
    if (status != StatusOk) return status;
    const int run = symbol / 16, size = symbol % 16;
    if (size == 0 && run < 15) {
      status = takeEobRun(reader, run, eobRun);
      if (status == StatusOk) --eobRun;
      return status;
    }
    k += run;
    if (size == 0) continue;
    status = takeExtraBits(reader, size, value);
    if (status != StatusOk) return status;
    coefficient(block, k) = low16(value * (int64_t{1} << band.shift));
  }
  return StatusOk;
}

inline StatusCode decodeAcRefine(HuffmanReader& reader, int16_t* block, Band band, int& eobRun,
                                 const HuffmanDecoder& decoder) {
  const auto correct = [&](int16_t& value) {
    const StatusCode status = reader.need(1);
    if (status != StatusOk || reader.take(1) == 0) return status;
    const int refined = std::abs(value) | 1 << band.shift;
    value = low16(value < 0 ? -refined : refined);
    return status;
  };
  int k = band.first;
  while (k <= band.last && eobRun == 0) {
    int symbol = 0;
    StatusCode status = decoder.takeSymbol(reader, symbol);
    if (status != StatusOk) return status;
    int run = symbol / 16;
    const bool isNew = symbol % 16 != 0;
    if (!isNew && run < 15) {
      status = takeEobRun(reader, run, eobRun);
      if (status != StatusOk) return status;
      break;
    }
    int value = 0;
    if (isNew) {
      status = reader.need(1);
      if (status != StatusOk) return status;
      value = reader.take(1) == 1 ? 1 << band.shift : -(1 << band.shift);
    }
    for (; k <= band.last; ++k) {
      int16_t& passed = coefficient(block, k);
      if (passed != 0) {
        status = correct(passed);
        if (status != StatusOk) return status;
      } else if (run-- == 0) {
        break;
      }
    }
    if (isNew) coefficient(block, k) = low16(value);
    ++k;
  }
  if (eobRun == 0) return StatusOk;
  for (; k <= band.last; ++k) {
    int16_t& passed = coefficient(block, k);
    const StatusCode status = passed != 0 ? correct(passed) : StatusOk;
    if (status != StatusOk) return status;
  }
  --eobRun;
  return StatusOk;
}

}  // namespace zorj::reference
