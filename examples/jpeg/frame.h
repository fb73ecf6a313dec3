// The geometry of a frame: components, blocks and MCUs (T.81 A.1, A.2).
#pragma once

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <vector>

namespace examples::jpeg {

constexpr int32_t divideUp(int32_t value, int32_t divisor) { return (value + divisor - 1) / divisor; }

struct Component {
  uint8_t id = 0;
  int32_t horizontal = 1;  // sampling factors
  int32_t vertical = 1;
  uint8_t quantTable = 0;  // 0 to 3
};

enum class Process { sequential, progressive, lossless };

// What the components of an image are.
enum class ColorCoding { grey, yCbCr, rgb, ycck, cmyk };

struct Frame {
  Process process = Process::sequential;
  int32_t precision = 8;  // bits a sample
  int32_t width = 0;
  int32_t height = 0;
  std::vector<Component> components;
  ColorCoding coding = ColorCoding::grey;
  bool inverted = false;  // 0 stands for the full amount of ink, as in all CMYK files with Adobe's marker

  std::vector<size_t> allComponents() const {
    std::vector<size_t> all(components.size());
    std::iota(all.begin(), all.end(), size_t{0});
    return all;
  }
  int32_t maxHorizontal() const {
    int32_t most = 1;
    for (const Component& component : components) most = std::max(most, component.horizontal);
    return most;
  }
  int32_t maxVertical() const {
    int32_t most = 1;
    for (const Component& component : components) most = std::max(most, component.vertical);
    return most;
  }

  // An MCU in pixels, and the image in MCUs of interleaved scans.
  int32_t mcuWidth() const { return 8 * maxHorizontal(); }
  int32_t mcuHeight() const { return 8 * maxVertical(); }
  int32_t mcusWide() const { return divideUp(width, mcuWidth()); }
  int32_t mcusHigh() const { return divideUp(height, mcuHeight()); }

  // A component in samples, and in blocks, without those that only fill up the last MCUs.
  int32_t samplesWide(const Component& component) const {
    return divideUp(width * component.horizontal, maxHorizontal());
  }
  int32_t samplesHigh(const Component& component) const { return divideUp(height * component.vertical, maxVertical()); }
  int32_t blocksWide(const Component& component) const { return divideUp(samplesWide(component), 8); }
  int32_t blocksHigh(const Component& component) const { return divideUp(samplesHigh(component), 8); }
};

}  // namespace examples::jpeg
