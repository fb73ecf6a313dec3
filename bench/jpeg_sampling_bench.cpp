// Chroma sampling against memcpy of the bytes it touches, on planes that fit in the second-level cache and on planes
// that do not fit in any.
#include <zorcore.h>
#include <zorj.h>

#include <array>
#include "support/copy.h"

namespace zorj::bench {
namespace {

using PlaneFunction = StatusCode(ZORJ_CALL*)(const uint8_t*, int32_t, RoiSize, uint8_t*, int32_t, RoiSize);

void comparePlane(const std::string& row, PlaneFunction function, RoiSize src, RoiSize dst) {
  // Rows of the source have a sample to spare on either side, for the function that reads them.
  const int32_t srcStep = src.width + 2;
  const auto buffers =
      std::make_shared<Buffers>(size_t(srcStep) * size_t(src.height), size_t(dst.width) * size_t(dst.height));
  compareWithCopy(row, buffers, [=] { function(buffers->src() + 1, srcStep, src, buffers->dst(), dst.width, dst); });
}

void comparePlanes(const std::string& size, int32_t width, int32_t height) {
  const RoiSize full = {width, height}, half = {width / 2, height}, quarter = {width / 2, height / 2};
  comparePlane("Down H2V1 plane, " + size, &zoriSampleDownH2V1_JPEG_8u_C1R, full, half);
  comparePlane("Down H2V2 plane, " + size, &zoriSampleDownH2V2_JPEG_8u_C1R, full, quarter);
  comparePlane("Up H2V1 plane, " + size, &zoriSampleUpH2V1_JPEG_8u_C1R, half, full);
  comparePlane("Up H2V2 plane, " + size, &zoriSampleUpH2V2_JPEG_8u_C1R, quarter, full);
}

void compareRows() {
  constexpr int32_t kWidth = 4096;
  const auto down = std::make_shared<Buffers>(2 * kWidth, kWidth / 2), up = std::make_shared<Buffers>(kWidth, kWidth);
  compareWithCopy("Down H2V1 row of 4096", down,
                  [=] { zoriSampleDownRowH2V1_Box_JPEG_8u_C1(down->src(), kWidth, down->dst()); });
  compareWithCopy("Down H2V2 row of 4096", down, [=] {
    zoriSampleDownRowH2V2_Box_JPEG_8u_C1(down->src(), down->src() + kWidth, kWidth, down->dst());
  });
  compareWithCopy("Up H2V1 row to 4096", up,
                  [=] { zoriSampleUpRowH2V1_Triangle_JPEG_8u_C1(up->src(), kWidth / 2, up->dst()); });
  compareWithCopy("Up H2V2 row to 4096", up, [=] {
    zoriSampleUpRowH2V2_Triangle_JPEG_8u_C1(up->src(), up->src() + kWidth / 2, kWidth / 2, up->dst());
  });
}

// A row of MCUs of an image 4000 pixels wide.
void compareMcus(const std::string& sampling, int32_t width, int32_t height,
                 StatusCode(ZORJ_CALL* down)(const uint8_t*, int32_t, int16_t* const[3]),
                 StatusCode(ZORJ_CALL* up)(const int16_t* const[3], uint8_t*, int32_t)) {
  constexpr int32_t kStep = 3 * 4000;
  const int32_t count = 4000 / width, blocks = width * height / 64 + 2;
  const size_t pixelBytes = size_t(kStep) * size_t(height), blockBytes = size_t(count) * size_t(blocks) * 128;
  const auto mcuAt = [=](auto* samples, int32_t i) {
    auto* const y = samples + i * blocks * 64;
    return std::array{y, y + (blocks - 2) * 64, y + (blocks - 1) * 64};
  };
  const auto downBuffers = std::make_shared<Buffers>(pixelBytes, blockBytes);
  compareWithCopy("Down " + sampling + " MCUs", downBuffers, [=] {
    for (int32_t i = 0; i < count; ++i) {
      down(downBuffers->src() + 3 * i * width, kStep, mcuAt(reinterpret_cast<int16_t*>(downBuffers->dst()), i).data());
    }
  });
  const auto upBuffers = std::make_shared<Buffers>(blockBytes, pixelBytes);
  compareWithCopy("Up " + sampling + " MCUs", upBuffers, [=] {
    for (int32_t i = 0; i < count; ++i) {
      up(mcuAt(reinterpret_cast<const int16_t*>(upBuffers->src()), i).data(), upBuffers->dst() + 3 * i * width, kStep);
    }
  });
}

}  // namespace

void registerComparisons() {
  zorSetNumThreads(1);
  comparePlanes("L2", 512, 340);
  comparePlanes("DRAM", 8192, 8192);
  compareRows();
  compareMcus("444", 8, 8, &zoriSampleDown444LS_MCU_8u16s_C3P3R, &zoriSampleUp444LS_MCU_16s8u_P3C3R);
  compareMcus("422", 16, 8, &zoriSampleDown422LS_MCU_8u16s_C3P3R, &zoriSampleUp422LS_MCU_16s8u_P3C3R);
  compareMcus("411", 16, 16, &zoriSampleDown411LS_MCU_8u16s_C3P3R, &zoriSampleUp411LS_MCU_16s8u_P3C3R);
}

}  // namespace zorj::bench
