// Code-block coding on the blocks of a photograph: lossless and at one bit per sample, at every instruction-set level,
// and with each option against none.
#include <zorcore.h>
#include <zorj.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "common/image_file.h"
#include "reference/codeblock.h"
#include "support/compare.h"

namespace zorj::bench {
namespace {

constexpr int32_t kSide = 64;
constexpr int32_t kLevels = 5;

struct Block {
  RoiSize size;
  int32_t subband;
  std::vector<int32_t> samples;
};

// One level of the reversible 5/3 wavelet on a line (T.800 Annex F.4.8.1), low-pass half first.
void transformLine(int32_t* line, int32_t count, ptrdiff_t step) {
  std::vector<int32_t> x(static_cast<size_t>(count));
  for (int32_t i = 0; i < count; ++i) x[static_cast<size_t>(i)] = line[i * step];
  const auto at = [&](int32_t i) -> int32_t& {
    const int32_t mirrored = i < 0 ? -i : i >= count ? 2 * count - 2 - i : i;
    return x[static_cast<size_t>(mirrored)];
  };
  for (int32_t i = 1; i < count; i += 2) at(i) -= (at(i - 1) + at(i + 1)) >> 1;
  for (int32_t i = 0; i < count; i += 2) at(i) += (at(i - 1) + at(i + 1) + 2) >> 2;
  for (int32_t i = 0; i < count; ++i) line[((i & 1) * ((count + 1) / 2) + i / 2) * step] = at(i);
}

// The code-blocks of the photograph's green channel.
std::vector<Block> photographBlocks() {
  const examples::Image image = examples::readImage(ZORJ_PHOTOGRAPH);
  const ptrdiff_t pitch = image.width;
  std::vector<int32_t> plane(static_cast<size_t>(image.width) * static_cast<size_t>(image.height));
  for (size_t i = 0; i < plane.size(); ++i) plane[i] = image.samples[3 * i + 1] - 128;

  std::vector<Block> blocks;
  const auto cutBlocks = [&](int32_t left, int32_t top, RoiSize size, int32_t subband) {
    for (int32_t y = 0; y < size.height; y += kSide) {
      for (int32_t x = 0; x < size.width; x += kSide) {
        Block block = {{std::min(kSide, size.width - x), std::min(kSide, size.height - y)}, subband, {}};
        for (int32_t row = 0; row < block.size.height; ++row) {
          const int32_t* const from = plane.data() + (top + y + row) * pitch + left + x;
          for (int32_t i = 0; i < block.size.width; ++i) {
            block.samples.push_back(from[i] < 0 ? static_cast<int32_t>(0x80000000u - static_cast<uint32_t>(from[i]))
                                                : from[i]);
          }
        }
        blocks.push_back(std::move(block));
      }
    }
  };
  RoiSize low = {image.width, image.height};
  for (int32_t level = 0; level < kLevels; ++level) {
    for (int32_t x = 0; x < low.width; ++x) transformLine(plane.data() + x, low.height, pitch);
    for (int32_t y = 0; y < low.height; ++y) transformLine(plane.data() + y * pitch, low.width, 1);
    const RoiSize half = {(low.width + 1) / 2, (low.height + 1) / 2};
    cutBlocks(half.width, 0, {low.width - half.width, half.height}, SubbandHL);
    cutBlocks(0, half.height, {half.width, low.height - half.height}, SubbandLH);
    cutBlocks(half.width, half.height, {low.width - half.width, low.height - half.height}, SubbandHH);
    low = half;
  }
  cutBlocks(0, 0, low, SubbandLL);
  return blocks;
}

struct Coded {
  std::vector<uint8_t> codeword;
  std::vector<int32_t> segmentLengths;
  int32_t planes;
  int32_t passes;
};

// The blocks in one way of coding.
class Work {
 public:
  Work(std::shared_ptr<const std::vector<Block>> blocks, int32_t magnitudeBits, uint32_t flags)
      : blocks_(std::move(blocks)), magnitudeBits_(magnitudeBits), flags_(flags), codeword_(1 << 16) {
    zoriEncodeInitAlloc_JPEG2K(&encoder_, {kSide, kSide});
    int32_t bytes;
    zoriDecodeGetBufSize_JPEG2K({kSide, kSide}, &bytes);
    decoder_.resize(static_cast<size_t>(bytes));
    for (const Block& block : *blocks_) coded_.push_back(encodeBlock(block));
  }
  ~Work() { zoriEncodeFree_JPEG2K(encoder_); }
  Work(const Work&) = delete;
  Work& operator=(const Work&) = delete;

  void encode() {
    for (const Block& block : *blocks_) encodeInto(block, scratch_);
  }
  void decode() {
    for (size_t i = 0; i < coded_.size(); ++i) {
      const Block& block = (*blocks_)[i];
      const Coded& coded = coded_[i];
      zoriDecodeCodeBlock_JPEG2K_1u32s_C1R(coded.codeword.data(), samples_, block.size.width * 4, block.size,
                                           block.subband, coded.planes, coded.passes, coded.segmentLengths.data(),
                                           static_cast<int32_t>(coded.segmentLengths.size()), flags_, nullptr,
                                           decoder_.data());
    }
  }

  size_t bytes() const {
    size_t sum = 0;
    for (const Coded& coded : coded_) sum += coded.codeword.size();
    return sum;
  }

  double decisions() const {
    struct Counter {
      double count = 0;
      int decide(int, int known) {
        ++count;
        return known;
      }
    } counter;
    for (size_t i = 0; i < coded_.size(); ++i) {
      const Block& block = (*blocks_)[i];
      reference::BlockModel model(block.size, block.subband, flags_);
      for (int pass = 0; pass < coded_[i].passes; ++pass) {
        reference::EncodedPlane plane{block.samples, block.size.width, coded_[i].planes - 1 - (pass + 2) / 3, false};
        if (pass % 3 == 0) model.cleanupPass(counter, plane);
        if (pass % 3 == 1) model.significancePass(counter, plane, false);
        if (pass % 3 == 2) model.refinementPass(counter, plane);
      }
    }
    return counter.count;
  }

 private:
  void encodeInto(const Block& block, Coded& coded) {
    int32_t segments, unfinished, length = static_cast<int32_t>(codeword_.size());
    zoriEncodeLoadCodeBlock_JPEG2K_32s_C1R(block.samples.data(), block.size.width * 4, block.size, encoder_,
                                           block.subband, magnitudeBits_, 0, 0, flags_, &coded.planes, &coded.passes,
                                           &segments);
    zoriEncodeStoreBits_JPEG2K_1u(codeword_.data(), &length, encoder_, &unfinished);
    coded.segmentLengths.resize(static_cast<size_t>(segments));
    for (int32_t i = 0; i < segments; ++i) {
      zoriEncodeGetTermPassLen_JPEG2K(encoder_, i, &coded.segmentLengths[static_cast<size_t>(i)]);
    }
    codewordLength_ = length;
  }
  Coded encodeBlock(const Block& block) {
    Coded coded;
    encodeInto(block, coded);
    coded.codeword.assign(codeword_.begin(), codeword_.begin() + codewordLength_);
    coded.codeword.reserve(1);
    return coded;
  }

  std::shared_ptr<const std::vector<Block>> blocks_;
  int32_t magnitudeBits_;
  uint32_t flags_;
  J2kEncodeState* encoder_ = nullptr;
  std::vector<uint8_t> decoder_;
  std::vector<uint8_t> codeword_;
  int32_t codewordLength_ = 0;
  std::vector<Coded> coded_;
  Coded scratch_;
  int32_t samples_[kSide * kSide];
};
using SharedWork = std::shared_ptr<Work>;

void compareLevels(const std::string& quality, const SharedWork& work, double samples) {
  const auto encode = [=] { work->encode(); };
  const auto decode = [=] { work->decode(); };
  const double decisions = work->decisions();
  compare("encode " + quality, samples, "samples", atEveryLevel(encode));
  compare("encode " + quality + ", by decisions", decisions, "decisions", {{"zorj", encode}});
  compare("decode " + quality, samples, "samples", atEveryLevel(decode));
  compare("decode " + quality + ", by decisions", decisions, "decisions", {{"zorj", decode}});
}

struct Option {
  const char* name;
  uint32_t flag;
};

}  // namespace

void registerComparisons() {
  zorSetNumThreads(1);
  const auto blocks = std::make_shared<const std::vector<Block>>(photographBlocks());
  double samples = 0;
  for (const Block& block : *blocks) samples += static_cast<double>(block.samples.size());

  const auto lossless = std::make_shared<Work>(blocks, 31, 0);
  SharedWork coarse = lossless;
  for (int32_t bits = 30; static_cast<double>(coarse->bytes()) * 8 > samples; --bits) {
    coarse = std::make_shared<Work>(blocks, bits, 0);
  }
  compareLevels("lossless", lossless, samples);
  compareLevels("below 1 bit per sample", coarse, samples);

  std::vector<Variant> encoders = {{"none", [=] { lossless->encode(); }}};
  std::vector<Variant> decoders = {{"none", [=] { lossless->decode(); }}};
  for (const auto& [name, flag] :
       {Option{"causal", CbVerticallyCausal}, Option{"bypass", CbBypass}, Option{"termall", CbTermAll},
        Option{"reset", CbResetContexts}, Option{"segsym", CbSegmentationSymbol}}) {
    const auto work = std::make_shared<Work>(blocks, 31, flag);
    encoders.push_back({name, [=] { work->encode(); }});
    decoders.push_back({name, [=] { work->decode(); }});
  }
  compare("encode with option", samples, "samples", encoders);
  compare("decode with option", samples, "samples", decoders);
}

}  // namespace zorj::bench
