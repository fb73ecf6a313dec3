// Component transforms on regions of every size and step: planes in place beside the model, pixels and planes alike.
#include <zorj.h>

#include "reference/component_transform.h"
#include "support/fuzzer.h"

namespace zorj::fuzz {
namespace {

using reference::Pixel;

// Rows that end with the last one's last sample.
template <class T>
struct Rows {
  RoiSize size;  // in samples
  int32_t step;
  Exact<uint8_t> memory;

  Rows(Input& input, RoiSize rowsSize)
      : size(rowsSize),
        step(size.width * int32_t{sizeof(T)} + input.between(0, 5)),
        memory(static_cast<size_t>(step * (size.height - 1) + size.width * int32_t{sizeof(T)}), input.coin()) {}
  Rows(const Rows& like, Input& input) : size(like.size), step(like.step), memory(like.memory.size(), input.coin()) {}
  T* data() const { return reinterpret_cast<T*>(memory.data()); }
  T get(int32_t x, int32_t y) const {
    T sample;
    std::memcpy(&sample, memory.data() + y * step + x * int32_t{sizeof(T)}, sizeof sample);
    return sample;
  }
  void set(int32_t x, int32_t y, T sample) const {
    std::memcpy(memory.data() + y * step + x * int32_t{sizeof(T)}, &sample, sizeof sample);
  }
};

template <class T>
struct Transform {
  StatusCode(ZORJ_CALL* inPlace)(T* const[3], int32_t, RoiSize);
  StatusCode(ZORJ_CALL* toPlanes)(const T*, int32_t, T* const[3], int32_t, RoiSize);
  StatusCode(ZORJ_CALL* toPixels)(const T* const[3], int32_t, T*, int32_t, RoiSize);
  Pixel<T> (*model)(Pixel<T>);
};

template <class T>
T sampleOfInput(Input& input) {
  if constexpr (std::is_same_v<T, float>) return static_cast<float>(input.word()) / 3;
  const int32_t high = input.word();
  return static_cast<T>(sizeof(T) == 2 ? high : static_cast<int32_t>(static_cast<uint32_t>(high) << 16) ^ input.word());
}

template <class T>
void transform(Input& input, const Transform<T>& functions) {
  const RoiSize size = {input.between(1, 70), input.between(1, 4)};
  const Rows<T> first(input, size), second(first, input), third(first, input);
  const Rows<T> pixels(input, {3 * size.width, size.height});
  const Rows<T>* const planes[3] = {&first, &second, &third};
  T* const pointers[3] = {first.data(), second.data(), third.data()};
  for (int32_t y = 0; y < size.height; ++y) {
    for (int32_t i = 0; i < 3 * size.width; ++i) {
      const T sample = sampleOfInput<T>(input);
      pixels.set(i, y, sample);
      planes[i % 3]->set(i / 3, y, sample);
    }
  }
  std::vector<Pixel<T>> expected;
  for (int32_t y = 0; y < size.height; ++y) {
    for (int32_t x = 0; x < size.width; ++x) {
      expected.push_back(functions.model({pixels.get(3 * x, y), pixels.get(3 * x + 1, y), pixels.get(3 * x + 2, y)}));
    }
  }
  const bool toPixels = functions.toPixels != nullptr && input.coin();
  if (toPixels) {
    EXPECT_EQ(functions.toPixels(pointers, first.step, pixels.data(), pixels.step, size), StatusOk);
  } else if (functions.toPlanes != nullptr && input.coin()) {
    EXPECT_EQ(functions.toPlanes(pixels.data(), pixels.step, pointers, first.step, size), StatusOk);
  } else {
    EXPECT_EQ(functions.inPlace(pointers, first.step, size), StatusOk);
  }
  for (int32_t y = 0; y < size.height; ++y) {
    for (int32_t i = 0; i < 3 * size.width; ++i) {
      const T actual = toPixels ? pixels.get(i, y) : planes[i % 3]->get(i / 3, y);
      EXPECT_EQ(actual, expected[static_cast<size_t>(y * size.width + i / 3)][static_cast<size_t>(i % 3)]);
    }
  }
}

}  // namespace

void fuzz(Input& input) {
  chooseLevel(input);
  switch (input.byte() % 10) {
    case 0:
      return transform<int16_t>(
          input, {&zoriRCTFwd_JPEG2K_16s_P3IR, &zoriRCTFwd_JPEG2K_16s_C3P3R, nullptr, &reference::rctForward<int16_t>});
    case 1:
      return transform<int32_t>(
          input, {&zoriRCTFwd_JPEG2K_32s_P3IR, &zoriRCTFwd_JPEG2K_32s_C3P3R, nullptr, &reference::rctForward<int32_t>});
    case 2:
      return transform<int16_t>(
          input, {&zoriRCTInv_JPEG2K_16s_P3IR, nullptr, &zoriRCTInv_JPEG2K_16s_P3C3R, &reference::rctInverse<int16_t>});
    case 3:
      return transform<int32_t>(
          input, {&zoriRCTInv_JPEG2K_32s_P3IR, nullptr, &zoriRCTInv_JPEG2K_32s_P3C3R, &reference::rctInverse<int32_t>});
    case 4:
      return transform<int16_t>(input, {&zoriICTFwd_JPEG2K_16s_P3IR, nullptr, nullptr, &reference::ictForward16});
    case 5:
      return transform<int32_t>(input, {&zoriICTFwd_JPEG2K_32s_P3IR, nullptr, nullptr, &reference::ictForward32});
    case 6:
      return transform<float>(
          input, {&zoriICTFwd_JPEG2K_32f_P3IR, &zoriICTFwd_JPEG2K_32f_C3P3R, nullptr, &reference::ictForwardFloat});
    case 7:
      return transform<int16_t>(input, {&zoriICTInv_JPEG2K_16s_P3IR, nullptr, nullptr, &reference::ictInverse16});
    case 8:
      return transform<int32_t>(input, {&zoriICTInv_JPEG2K_32s_P3IR, nullptr, nullptr, &reference::ictInverse32});
    default:
      return transform<float>(
          input, {&zoriICTInv_JPEG2K_32f_P3IR, nullptr, &zoriICTInv_JPEG2K_32f_P3C3R, &reference::ictInverseFloat});
  }
}

}  // namespace zorj::fuzz
