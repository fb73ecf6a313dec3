// The block functions of the DCT at every instruction-set level, on blocks that stay in the nearest cache.
#include <zorcore.h>
#include <zorj.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "support/compare.h"

namespace zorj::bench {
namespace {

constexpr size_t kBlocks = 64;

// Blocks such as a photograph gives: samples of a rough slope, and its coefficients quantised.
struct Data {
  std::array<uint8_t, 64 * kBlocks> samples;
  std::array<uint16_t, 64 * kBlocks> samples12;
  std::array<int16_t, 64 * kBlocks> shifted, coefficients, result;
  std::array<uint16_t, 64> forwardTable, inverseTable;
  std::array<float, 64> forwardFloats, inverseFloats;

  Data() {
    std::array<uint8_t, 64> raw;
    for (size_t i = 0; i < 64; ++i) raw[i] = static_cast<uint8_t>(3 + i / 2);
    zoriQuantFwdTableInit_JPEG_8u16u(raw.data(), forwardTable.data());
    zoriQuantInvTableInit_JPEG_8u16u(raw.data(), inverseTable.data());
    uint32_t noise = 1;
    for (size_t i = 0; i < samples.size(); ++i) {
      noise = noise * 1664525 + 1013904223;
      samples[i] = static_cast<uint8_t>(4 * (i / 8 % 8) + 9 * (i % 8) + i / 64 + (noise >> 28));
      samples12[i] = static_cast<uint16_t>(16 * samples[i]);
      shifted[i] = static_cast<int16_t>(samples[i] - 128);
    }
    for (size_t i = 0; i < 64; ++i) {
      inverseFloats[i] = inverseTable[i];
      forwardFloats[i] = 1 / inverseFloats[i];
    }
    for (size_t b = 0; b < kBlocks; ++b) {
      zoriDCTQuantFwd8x8_JPEG_16s_C1(&shifted[64 * b], &coefficients[64 * b], forwardTable.data());
    }
  }
};

// Compares the levels on all blocks; block(i) does the one whose first sample is i.
template <class Block>
void compareLevels(const std::string& name, const Block& block) {
  compare(name, kBlocks, "blocks", atEveryLevel([block] {
            for (size_t i = 0; i < 64 * kBlocks; i += 64) block(i);
          }));
}

// Compares the levels, and a copy of as many bytes as are read and written, on an image in the second-level cache.
template <class Shift>
void compareLevelShift(const std::string& name, const Shift& shift) {
  constexpr RoiSize kSize = {256, 256};
  constexpr size_t kPixels = 256 * 256;
  static std::vector<uint8_t> bytes(kPixels), copy(kPixels * 3 / 2), target(kPixels * 3 / 2);
  static std::vector<int16_t> values(kPixels);
  std::vector<Variant> variants = atEveryLevel([=] { shift(bytes.data(), values.data(), kSize); });
  variants.push_back({"memcpy", [] { std::memcpy(target.data(), copy.data(), copy.size()); }});
  compare(name, kPixels, "pixels", variants);
}

}  // namespace

void registerComparisons() {
  static Data d;
  const auto forward = d.forwardTable.data();
  const auto inverse = d.inverseTable.data();
  compareLevels("zoriQuantFwd8x8_JPEG_16s_C1I", [=](size_t i) { zoriQuantFwd8x8_JPEG_16s_C1I(&d.result[i], forward); });
  compareLevels("zoriQuantInv8x8_JPEG_16s_C1I", [=](size_t i) { zoriQuantInv8x8_JPEG_16s_C1I(&d.result[i], inverse); });

  compareLevels("zoriDCTQuantFwd8x8LS_JPEG_8u16s_C1R",
                [=](size_t i) { zoriDCTQuantFwd8x8LS_JPEG_8u16s_C1R(&d.samples[i], 8, &d.result[i], forward); });
  compareLevels("zoriDCTQuantFwd8x8LS_JPEG_16u16s_C1R", [](size_t i) {
    zoriDCTQuantFwd8x8LS_JPEG_16u16s_C1R(&d.samples12[i], 16, &d.result[i], d.forwardFloats.data());
  });
  compareLevels("zoriDCTQuantFwd8x8_JPEG_16s_C1",
                [=](size_t i) { zoriDCTQuantFwd8x8_JPEG_16s_C1(&d.shifted[i], &d.result[i], forward); });
  compareLevels("zoriDCTQuantFwd8x8_JPEG_16s_C1I",
                [=](size_t i) { zoriDCTQuantFwd8x8_JPEG_16s_C1I(&d.result[i], forward); });

  static std::array<uint8_t, 64 * kBlocks> samples;
  static std::array<uint16_t, 64 * kBlocks> samples12;
  const auto compareInverse = [=](const char* name, auto function) {
    compareLevels(name, [=](size_t i) { function(&d.coefficients[i], &samples[i], 8, inverse); });
  };
  compareInverse("zoriDCTQuantInv8x8LS_JPEG_16s8u_C1R", &zoriDCTQuantInv8x8LS_JPEG_16s8u_C1R);
  compareLevels("zoriDCTQuantInv8x8LS_JPEG_16s16u_C1R", [](size_t i) {
    zoriDCTQuantInv8x8LS_JPEG_16s16u_C1R(&d.coefficients[i], &samples12[i], 16, d.inverseFloats.data());
  });
  compareInverse("zoriDCTQuantInv8x8LS_1x1_JPEG_16s8u_C1R", &zoriDCTQuantInv8x8LS_1x1_JPEG_16s8u_C1R);
  compareInverse("zoriDCTQuantInv8x8LS_2x2_JPEG_16s8u_C1R", &zoriDCTQuantInv8x8LS_2x2_JPEG_16s8u_C1R);
  compareInverse("zoriDCTQuantInv8x8LS_4x4_JPEG_16s8u_C1R", &zoriDCTQuantInv8x8LS_4x4_JPEG_16s8u_C1R);
  compareInverse("zoriDCTQuantInv8x8To2x2LS_JPEG_16s8u_C1R", &zoriDCTQuantInv8x8To2x2LS_JPEG_16s8u_C1R);
  compareInverse("zoriDCTQuantInv8x8To4x4LS_JPEG_16s8u_C1R", &zoriDCTQuantInv8x8To4x4LS_JPEG_16s8u_C1R);
  compareLevels("zoriDCTQuantInv8x8_JPEG_16s_C1",
                [=](size_t i) { zoriDCTQuantInv8x8_JPEG_16s_C1(&d.coefficients[i], &d.result[i], inverse); });
  compareLevels("zoriDCTQuantInv8x8_JPEG_16s_C1I",
                [=](size_t i) { zoriDCTQuantInv8x8_JPEG_16s_C1I(&d.result[i], inverse); });

  zorSetNumThreads(1);
  compareLevelShift("zoriSub128_JPEG_8u16s_C1R", [](const uint8_t* bytes, int16_t* values, RoiSize size) {
    zoriSub128_JPEG_8u16s_C1R(bytes, size.width, values, 2 * size.width, size);
  });
  compareLevelShift("zoriAdd128_JPEG_16s8u_C1R", [](uint8_t* bytes, const int16_t* values, RoiSize size) {
    zoriAdd128_JPEG_16s8u_C1R(values, 2 * size.width, bytes, size.width, size);
  });
}

}  // namespace zorj::bench
