// The DCT of a block at every instruction-set level.
#include <zorj.h>

#include <array>
#include <memory>

#include "support/compare.h"

namespace zorj::bench {
namespace {

constexpr size_t kBlocks = 256;  // in the first-level cache with their results

struct Data {
  std::array<int16_t, 64 * kBlocks> coefficients;
  std::array<int16_t, 64 * kBlocks> values;
  std::array<uint8_t, 64 * kBlocks> samples;
  std::array<uint16_t, 64 * kBlocks> wideSamples;
  std::array<uint16_t, 64> forwardTable, inverseTable;
  std::array<float, 64> multipliers;
};

Data& data() {
  static const auto shared = [] {
    auto d = std::make_unique<Data>();
    uint32_t seed = 1;
    const auto next = [&] { return (seed = seed * 1664525 + 1013904223) >> 16; };
    for (uint8_t& sample : d->samples) sample = static_cast<uint8_t>(next());
    for (int16_t& value : d->values) value = static_cast<int16_t>(next() % 256 - 128);
    for (uint16_t& sample : d->wideSamples) sample = static_cast<uint16_t>(next() % 4096);
    d->forwardTable.fill(32768 / 8);
    d->inverseTable.fill(8);
    d->multipliers.fill(0.125f);
    for (size_t i = 0; i < d->coefficients.size(); ++i) {
      d->coefficients[i] = static_cast<int16_t>(i % 64 < 20 ? next() % 16 - 8 : 0);
    }
    return d;
  }();
  return *shared;
}

template <class Call>
void perBlock(const char* name, Call call) {
  compare(name, kBlocks, "blocks", atEveryLevel([call] {
            Data& d = data();
            for (size_t i = 0; i < 64 * kBlocks; i += 64) call(d, i);
          }));
}

}  // namespace

void registerComparisons() {
  perBlock("zoriDCTQuantFwd8x8LS_JPEG_8u16s_C1R", [](Data& d, size_t i) {
    zoriDCTQuantFwd8x8LS_JPEG_8u16s_C1R(&d.samples[i], 8, &d.values[i], d.forwardTable.data());
  });
  perBlock("zoriDCTQuantFwd8x8_JPEG_16s_C1", [](Data& d, size_t i) {
    zoriDCTQuantFwd8x8_JPEG_16s_C1(&d.coefficients[i], &d.values[i], d.forwardTable.data());
  });
  perBlock("zoriDCTQuantFwd8x8LS_JPEG_16u16s_C1R", [](Data& d, size_t i) {
    zoriDCTQuantFwd8x8LS_JPEG_16u16s_C1R(&d.wideSamples[i], 16, &d.values[i], d.multipliers.data());
  });
  perBlock("zoriDCTQuantInv8x8LS_JPEG_16s8u_C1R", [](Data& d, size_t i) {
    zoriDCTQuantInv8x8LS_JPEG_16s8u_C1R(&d.coefficients[i], &d.samples[i], 8, d.inverseTable.data());
  });
  perBlock("zoriDCTQuantInv8x8LS_4x4_JPEG_16s8u_C1R", [](Data& d, size_t i) {
    zoriDCTQuantInv8x8LS_4x4_JPEG_16s8u_C1R(&d.coefficients[i], &d.samples[i], 8, d.inverseTable.data());
  });
  perBlock("zoriDCTQuantInv8x8LS_2x2_JPEG_16s8u_C1R", [](Data& d, size_t i) {
    zoriDCTQuantInv8x8LS_2x2_JPEG_16s8u_C1R(&d.coefficients[i], &d.samples[i], 8, d.inverseTable.data());
  });
  perBlock("zoriDCTQuantInv8x8LS_1x1_JPEG_16s8u_C1R", [](Data& d, size_t i) {
    zoriDCTQuantInv8x8LS_1x1_JPEG_16s8u_C1R(&d.coefficients[i], &d.samples[i], 8, d.inverseTable.data());
  });
  perBlock("zoriDCTQuantInv8x8To4x4LS_JPEG_16s8u_C1R", [](Data& d, size_t i) {
    zoriDCTQuantInv8x8To4x4LS_JPEG_16s8u_C1R(&d.coefficients[i], &d.samples[i], 8, d.inverseTable.data());
  });
  perBlock("zoriDCTQuantInv8x8To2x2LS_JPEG_16s8u_C1R", [](Data& d, size_t i) {
    zoriDCTQuantInv8x8To2x2LS_JPEG_16s8u_C1R(&d.coefficients[i], &d.samples[i], 8, d.inverseTable.data());
  });
  perBlock("zoriDCTQuantInv8x8_JPEG_16s_C1", [](Data& d, size_t i) {
    zoriDCTQuantInv8x8_JPEG_16s_C1(&d.coefficients[i], &d.values[i], d.inverseTable.data());
  });
  perBlock("zoriDCTQuantInv8x8LS_JPEG_16s16u_C1R", [](Data& d, size_t i) {
    zoriDCTQuantInv8x8LS_JPEG_16s16u_C1R(&d.coefficients[i], &d.wideSamples[i], 16, d.multipliers.data());
  });
  perBlock("zoriQuantFwd8x8_JPEG_16s_C1I",
           [](Data& d, size_t i) { zoriQuantFwd8x8_JPEG_16s_C1I(&d.values[i], d.forwardTable.data()); });
  perBlock("zoriQuantInv8x8_JPEG_16s_C1I",
           [](Data& d, size_t i) { zoriQuantInv8x8_JPEG_16s_C1I(&d.values[i], d.inverseTable.data()); });
}

}  // namespace zorj::bench
