#include "jpeg/coefficients.h"

namespace examples::jpeg {

McuArray::McuArray(const Frame& frame, int32_t mcusWide, int32_t mcusHigh, FirstValues values) {
  for (const Component& component : frame.components) {
    Plane plane{component.horizontal, component.vertical, mcusWide * component.horizontal, {}};
    const size_t count = size_t(plane.blocksPerRow) * size_t(mcusHigh * component.vertical);
    plane.blocks =
        values == FirstValues::zero ? std::make_unique<Block[]>(count) : std::make_unique_for_overwrite<Block[]>(count);
    planes_.push_back(std::move(plane));
  }
}

Blocks McuArray::blocks(size_t component, int32_t mcuColumn, int32_t mcuRow) {
  Plane& plane = planes_[component];
  const Blocks all{plane.blocks.get(), plane.blocksPerRow};
  return {&all.at(mcuColumn * plane.horizontal, mcuRow * plane.vertical), plane.blocksPerRow};
}

std::vector<McuBlock> interleavedMcu(const Frame& frame, std::span<const size_t> components, McuArray& mcus,
                                     int32_t mcuColumn, int32_t mcuRow) {
  std::vector<McuBlock> result;
  for (size_t i = 0; i < components.size(); ++i) {
    const Component& component = frame.components[components[i]];
    const Blocks blocks = mcus.blocks(components[i], mcuColumn, mcuRow);
    for (int32_t y = 0; y < component.vertical; ++y) {
      for (int32_t x = 0; x < component.horizontal; ++x) {
        result.push_back({&blocks.at(x, y), component.horizontal, i});
      }
    }
  }
  return result;
}

}  // namespace examples::jpeg
