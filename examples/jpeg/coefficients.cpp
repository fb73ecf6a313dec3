#include "jpeg/coefficients.h"

namespace examples::jpeg {

McuArray::McuArray(const Frame& frame, int32_t mcusWide, int32_t mcusHigh) {
  for (const Component& component : frame.components) {
    Plane plane{component.horizontal, component.vertical, mcusWide * component.horizontal, {}};
    plane.coefficients.resize(size_t(plane.blocksPerRow) * size_t(mcusHigh * component.vertical) * kBlockSize);
    planes_.push_back(std::move(plane));
  }
}

Blocks McuArray::blocks(size_t component, int32_t mcuColumn, int32_t mcuRow) {
  Plane& plane = planes_[component];
  const Blocks all{plane.coefficients.data(), plane.blocksPerRow};
  return {all.at(mcuColumn * plane.horizontal, mcuRow * plane.vertical), plane.blocksPerRow};
}

std::vector<McuBlock> interleavedMcu(const Frame& frame, std::span<const size_t> scanComponents, McuArray& mcus,
                                     int32_t mcuColumn, int32_t mcuRow) {
  std::vector<McuBlock> result;
  for (size_t i = 0; i < scanComponents.size(); ++i) {
    const Component& component = frame.components[scanComponents[i]];
    const Blocks blocks = mcus.blocks(scanComponents[i], mcuColumn, mcuRow);
    for (int32_t y = 0; y < component.vertical; ++y) {
      for (int32_t x = 0; x < component.horizontal; ++x) {
        result.push_back({blocks.at(x, y), component.horizontal * kBlockSize, i});
      }
    }
  }
  return result;
}

}  // namespace examples::jpeg
