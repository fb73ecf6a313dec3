// The photo core transform on regions of every size, step and direction: beside the model, and back again.
#include <zorj.h>

#include "reference/photo_core.h"
#include "support/fuzzer.h"

namespace zorj::fuzz {
namespace {

struct Region {
  int32_t width, height;
  StatusCode (*forward)(int32_t*, int32_t, const Region&);
  StatusCode (*inverse)(int32_t*, int32_t, const Region&);
};

template <StatusCode(ZORJ_CALL* function)(int32_t*, int32_t)>
StatusCode ofFixedSize(int32_t* samples, int32_t step, const Region&) {
  return function(samples, step);
}
template <StatusCode(ZORJ_CALL* function)(int32_t*, int32_t, int32_t, int32_t)>
StatusCode ofAnySize(int32_t* samples, int32_t step, const Region& region) {
  return function(samples, step, region.width, region.height);
}

Region chooseRegion(Input& input) {
  switch (input.byte() % 6) {
    case 0:
      return {16, 16, &ofFixedSize<zoriPCTFwd16x16_HDP_32s_C1IR>, &ofFixedSize<zoriPCTInv16x16_HDP_32s_C1IR>};
    case 1:
      return {8, 16, &ofFixedSize<zoriPCTFwd8x16_HDP_32s_C1IR>, &ofFixedSize<zoriPCTInv8x16_HDP_32s_C1IR>};
    case 2:
      return {8, 8, &ofFixedSize<zoriPCTFwd8x8_HDP_32s_C1IR>, &ofFixedSize<zoriPCTInv8x8_HDP_32s_C1IR>};
    default:
      return {4 * input.between(1, 20), 4 * input.between(1, 5), &ofAnySize<zoriPCTFwd_HDP_32s_C1IR>,
              &ofAnySize<zoriPCTInv_HDP_32s_C1IR>};
  }
}

}  // namespace

void fuzz(Input& input) {
  chooseLevel(input);
  const Region region = chooseRegion(input);
  const int32_t distance = 4 * region.width + input.between(0, 9);
  const bool upwards = input.coin();
  const auto size = static_cast<size_t>(distance * (region.height - 1) + 4 * region.width);
  const Exact<uint8_t> memory(size, input.coin());
  input.fill(memory.data(), size);
  const Bytes original = memory.values();

  const auto offset = [&](int x, int y) { return distance * (upwards ? region.height - 1 - y : y) + 4 * x; };
  Bytes expected = original;
  for (int i = 0; i < region.width / 4 * (region.height / 4); ++i) {
    reference::PhotoBlock block;
    const auto place = [&](size_t k) {
      const int at = static_cast<int>(k), blocksWide = region.width / 4;
      return expected.data() + offset(i % blocksWide * 4 + at % 4, i / blocksWide * 4 + at / 4);
    };
    for (size_t k = 0; k < 16; ++k) std::memcpy(&block[k].bits, place(k), 4);
    reference::forwardPhotoCore(block);
    for (size_t k = 0; k < 16; ++k) std::memcpy(place(k), &block[k].bits, 4);
  }

  auto* const first = reinterpret_cast<int32_t*>(memory.data() + offset(0, 0));
  const int32_t step = upwards ? -distance : distance;
  EXPECT_EQ(region.forward(first, step, region), StatusOk);
  EXPECT_EQ(memory.values(), expected);
  EXPECT_EQ(region.inverse(first, step, region), StatusOk);
  EXPECT_EQ(memory.values(), original);
}

}  // namespace zorj::fuzz
