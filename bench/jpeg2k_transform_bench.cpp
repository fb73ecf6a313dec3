// The transforms of JPEG 2000 against memcpy of the bytes they touch and against the portable level, on data that fits
// in the second-level cache and on data that does not fit in any.
#include <zorcore.h>
#include <zorj.h>

#include <cstring>
#include <memory>
#include <vector>

#include "support/compare.h"

namespace zorj::bench {
namespace {

// Samples to transform, and a copy of as many bytes to measure by.
template <class T>
class Samples {
 public:
  explicit Samples(size_t count) : samples_(count), source_(count, T{1}), copy_(count) {
    for (size_t i = 0; i < count; ++i) samples_[i] = static_cast<T>(i * 2654435761u % 255);
  }
  T* data() { return samples_.data(); }
  size_t size() const { return samples_.size(); }
  void copy() { std::memcpy(copy_.data(), source_.data(), source_.size() * sizeof(T)); }

 private:
  std::vector<T> samples_, source_, copy_;
};

std::vector<Variant> againstCopy(const std::function<void()>& run, const std::function<void()>& copy) {
  return {
      {"AVX2", run, Isa::kAvx2}, {"AVX-512", run, Isa::kAvx512}, {"portable", run, Isa::kPortable}, {"memcpy", copy}};
}

// ---- Component transforms: both sides of the copy are bytes touched.

template <class T>
void compareInPlace(const std::string& row, RoiSize size,
                    StatusCode(ZORJ_CALL* transform)(T* const[3], int32_t, RoiSize)) {
  const size_t plane = static_cast<size_t>(size.width) * static_cast<size_t>(size.height);
  const auto samples = std::make_shared<Samples<T>>(3 * plane);
  const auto run = [=] {
    T* const planes[3] = {samples->data(), samples->data() + plane, samples->data() + 2 * plane};
    transform(planes, size.width * static_cast<int32_t>(sizeof(T)), size);
  };
  compare(row, static_cast<double>(plane), "pixels", againstCopy(run, [=] { samples->copy(); }));
}

template <class T>
void compareForward(const std::string& row, RoiSize size,
                    StatusCode(ZORJ_CALL* transform)(const T*, int32_t, T* const[3], int32_t, RoiSize)) {
  const size_t plane = static_cast<size_t>(size.width) * static_cast<size_t>(size.height);
  const auto pixels = std::make_shared<Samples<T>>(3 * plane), samples = std::make_shared<Samples<T>>(3 * plane);
  const int32_t step = size.width * static_cast<int32_t>(sizeof(T));
  const auto run = [=] {
    T* const planes[3] = {samples->data(), samples->data() + plane, samples->data() + 2 * plane};
    transform(pixels->data(), 3 * step, planes, step, size);
  };
  compare(row, static_cast<double>(plane), "pixels", againstCopy(run, [=] { samples->copy(); }));
}

template <class T>
void compareInverse(const std::string& row, RoiSize size,
                    StatusCode(ZORJ_CALL* transform)(const T* const[3], int32_t, T*, int32_t, RoiSize)) {
  const size_t plane = static_cast<size_t>(size.width) * static_cast<size_t>(size.height);
  const auto pixels = std::make_shared<Samples<T>>(3 * plane), samples = std::make_shared<Samples<T>>(3 * plane);
  const int32_t step = size.width * static_cast<int32_t>(sizeof(T));
  const auto run = [=] {
    const T* const planes[3] = {samples->data(), samples->data() + plane, samples->data() + 2 * plane};
    transform(planes, step, pixels->data(), 3 * step, size);
  };
  compare(row, static_cast<double>(plane), "pixels", againstCopy(run, [=] { samples->copy(); }));
}

void compareComponents(const std::string& where, RoiSize size) {
  compareInPlace("RCT forward 16s, " + where, size, &zoriRCTFwd_JPEG2K_16s_P3IR);
  compareInPlace("RCT forward 32s, " + where, size, &zoriRCTFwd_JPEG2K_32s_P3IR);
  compareInPlace("RCT inverse 16s, " + where, size, &zoriRCTInv_JPEG2K_16s_P3IR);
  compareInPlace("RCT inverse 32s, " + where, size, &zoriRCTInv_JPEG2K_32s_P3IR);
  compareForward("RCT forward 16s from pixels, " + where, size, &zoriRCTFwd_JPEG2K_16s_C3P3R);
  compareForward("RCT forward 32s from pixels, " + where, size, &zoriRCTFwd_JPEG2K_32s_C3P3R);
  compareInverse("RCT inverse 16s to pixels, " + where, size, &zoriRCTInv_JPEG2K_16s_P3C3R);
  compareInverse("RCT inverse 32s to pixels, " + where, size, &zoriRCTInv_JPEG2K_32s_P3C3R);
  compareInPlace("ICT forward 16s, " + where, size, &zoriICTFwd_JPEG2K_16s_P3IR);
  compareInPlace("ICT forward 32s, " + where, size, &zoriICTFwd_JPEG2K_32s_P3IR);
  compareInPlace("ICT forward 32f, " + where, size, &zoriICTFwd_JPEG2K_32f_P3IR);
  compareInPlace("ICT inverse 16s, " + where, size, &zoriICTInv_JPEG2K_16s_P3IR);
  compareInPlace("ICT inverse 32s, " + where, size, &zoriICTInv_JPEG2K_32s_P3IR);
  compareInPlace("ICT inverse 32f, " + where, size, &zoriICTInv_JPEG2K_32f_P3IR);
  compareForward("ICT forward 32f from pixels, " + where, size, &zoriICTFwd_JPEG2K_32f_C3P3R);
  compareInverse("ICT inverse 32f to pixels, " + where, size, &zoriICTInv_JPEG2K_32f_P3C3R);
}

// ---- Wavelets: memcpy copies the tile, that is a level's reads and writes of every sample once.

template <class T>
using TileFunction = StatusCode(ZORJ_CALL*)(T*, int32_t, const TileRect*, void*);

template <class T>
void compareTile(const std::string& row, int32_t side, TileFunction<T> level) {
  const auto samples = std::make_shared<Samples<T>>(static_cast<size_t>(side) * static_cast<size_t>(side));
  const auto buffer = std::make_shared<std::vector<T>>(static_cast<size_t>(side) + 8);
  const TileRect tile = {0, 0, side, side};
  const auto run = [=] { level(samples->data(), side * static_cast<int32_t>(sizeof(T)), &tile, buffer->data()); };
  compare(row + ", tile of " + std::to_string(side), static_cast<double>(samples->size()), "pixels",
          againstCopy(run, [=] { samples->copy(); }));
}

void compareTiles() {
  for (const int32_t side : {64, 512, 1024, 2048, 4096}) {
    compareTile("5/3 forward 16s", side, &zoriWTFwd_B53_JPEG2K_16s_C1IR);
    compareTile("5/3 inverse 16s", side, &zoriWTInv_B53_JPEG2K_16s_C1IR);
    compareTile("5/3 forward 32s", side, &zoriWTFwd_B53_JPEG2K_32s_C1IR);
    compareTile("5/3 inverse 32s", side, &zoriWTInv_B53_JPEG2K_32s_C1IR);
    compareTile("9/7 forward 16s", side, &zoriWTFwd_D97_JPEG2K_16s_C1IR);
    compareTile("9/7 inverse 16s", side, &zoriWTInv_D97_JPEG2K_16s_C1IR);
    compareTile("9/7 forward 32s", side, &zoriWTFwd_D97_JPEG2K_32s_C1IR);
    compareTile("9/7 inverse 32s", side, &zoriWTInv_D97_JPEG2K_32s_C1IR);
  }
}

using ForwardFloats = StatusCode(ZORJ_CALL*)(const float*, int32_t, float*, int32_t, float*, int32_t, RoiSize, int32_t);
using InverseFloats = StatusCode(ZORJ_CALL*)(const float*, int32_t, const float*, int32_t, RoiSize, float*, int32_t,
                                             int32_t);

// Rows or columns of a square image, from the middle of larger ones: what lies around them is their border.
void compareFloats(const std::string& what, int32_t side, bool down, ForwardFloats forward, InverseFloats inverse) {
  const int32_t border = 8, wide = side + 2 * border, step = wide * 4;
  const size_t samples = static_cast<size_t>(wide) * static_cast<size_t>(wide);
  const auto x = std::make_shared<Samples<float>>(samples), low = std::make_shared<Samples<float>>(samples),
             high = std::make_shared<Samples<float>>(samples);
  const size_t first = static_cast<size_t>(border) * static_cast<size_t>(wide + 1);
  const RoiSize band = down ? RoiSize{side, side / 2} : RoiSize{side / 2, side};
  const auto runForward = [=] {
    forward(x->data() + first, step, low->data() + first, step, high->data() + first, step, band, 0);
  };
  const auto runInverse = [=] {
    inverse(low->data() + first, step, high->data() + first, step, band, x->data() + first, step, 0);
  };
  const std::string row = what + " of " + std::to_string(side) + "x" + std::to_string(side);
  compare("9/7 forward 32f, " + row, double{1} * side * side, "pixels", againstCopy(runForward, [=] { x->copy(); }));
  compare("9/7 inverse 32f, " + row, double{1} * side * side, "pixels", againstCopy(runInverse, [=] { x->copy(); }));
}

}  // namespace

void registerComparisons() {
  zorSetNumThreads(1);
  compareTiles();
  for (const int32_t side : {128, 512, 2048}) {
    compareFloats("rows", side, false, &zoriWTFwdRow_D97_JPEG2K_32f_C1R, &zoriWTInvRow_D97_JPEG2K_32f_C1R);
    compareFloats("columns", side, true, &zoriWTFwdCol_D97_JPEG2K_32f_C1R, &zoriWTInvCol_D97_JPEG2K_32f_C1R);
  }
  compareComponents("L2", {160, 120});
  compareComponents("DRAM", {4096, 2048});
}

}  // namespace zorj::bench
