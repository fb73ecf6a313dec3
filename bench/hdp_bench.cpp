// The photo core transform against libjxr's 4 x 4 stage, which takes one block of 16 contiguous samples a call, and
// against a copy of the samples, on regions in the first and in the second-level cache.
#include <zorj.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "support/compare.h"

// libjxr exports these, but its public headers do not declare them.
extern "C" void strDCT4x4Stage1(int32_t* block);
extern "C" void strIDCT4x4Stage1(int32_t* block);

namespace zorj::bench {
namespace {

struct Region {
  explicit Region(int32_t sideLength) : side(sideLength), samples(size_t(side) * size_t(side)), copy(samples.size()) {
    for (size_t i = 0; i < samples.size(); ++i) samples[i] = static_cast<int32_t>(i * 2654435761u >> 24);
  }
  double blocks() const { return static_cast<double>(samples.size()) / 16; }

  int32_t side;
  std::vector<int32_t> samples, copy;
};

void compareRegion(const std::string& row, const std::shared_ptr<Region>& region, const std::function<void()>& run,
                   void (*peer)(int32_t*)) {
  auto variants = atEveryLevel(run);
  variants.push_back({"libjxr", [=] {
                        auto& samples = region->samples;
                        for (size_t i = 0; i < samples.size(); i += 16) peer(samples.data() + i);
                      }});
  variants.push_back(
      {"memcpy", [=] { std::memcpy(region->copy.data(), region->samples.data(), 4 * region->copy.size()); }});
  compare(row, region->blocks(), "blocks", variants);
}

using AnyRegion = StatusCode(ZORJ_CALL*)(int32_t*, int32_t, int32_t, int32_t);
using FixedRegion = StatusCode(ZORJ_CALL*)(int32_t*, int32_t);

void compareAny(const std::string& name, int32_t side, AnyRegion function, void (*peer)(int32_t*)) {
  const auto region = std::make_shared<Region>(side);
  compareRegion(
      name + " " + std::to_string(side) + "x" + std::to_string(side), region,
      [=] { function(region->samples.data(), 4 * side, side, side); }, peer);
}

// A region of `side` squared that is cut into fixed ones.
void compareFixed(const std::string& name, int32_t width, int32_t height, FixedRegion function,
                  void (*peer)(int32_t*)) {
  constexpr int32_t kSide = 48;
  const auto region = std::make_shared<Region>(kSide);
  compareRegion(
      name, region,
      [=] {
        for (int32_t y = 0; y < kSide; y += height) {
          for (int32_t x = 0; x < kSide; x += width) function(region->samples.data() + y * kSide + x, 4 * kSide);
        }
      },
      peer);
}

}  // namespace

void registerComparisons() {
  for (const int32_t side : {48, 272}) {
    compareAny("zoriPCTFwd_HDP_32s_C1IR", side, &zoriPCTFwd_HDP_32s_C1IR, &strDCT4x4Stage1);
    compareAny("zoriPCTInv_HDP_32s_C1IR", side, &zoriPCTInv_HDP_32s_C1IR, &strIDCT4x4Stage1);
  }
  compareFixed("zoriPCTFwd16x16_HDP_32s_C1IR", 16, 16, &zoriPCTFwd16x16_HDP_32s_C1IR, &strDCT4x4Stage1);
  compareFixed("zoriPCTInv16x16_HDP_32s_C1IR", 16, 16, &zoriPCTInv16x16_HDP_32s_C1IR, &strIDCT4x4Stage1);
  compareFixed("zoriPCTFwd8x16_HDP_32s_C1IR", 8, 16, &zoriPCTFwd8x16_HDP_32s_C1IR, &strDCT4x4Stage1);
  compareFixed("zoriPCTInv8x16_HDP_32s_C1IR", 8, 16, &zoriPCTInv8x16_HDP_32s_C1IR, &strIDCT4x4Stage1);
  compareFixed("zoriPCTFwd8x8_HDP_32s_C1IR", 8, 8, &zoriPCTFwd8x8_HDP_32s_C1IR, &strDCT4x4Stage1);
  compareFixed("zoriPCTInv8x8_HDP_32s_C1IR", 8, 8, &zoriPCTInv8x8_HDP_32s_C1IR, &strIDCT4x4Stage1);
}

}  // namespace zorj::bench
