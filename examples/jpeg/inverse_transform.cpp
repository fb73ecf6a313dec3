#include "jpeg/inverse_transform.h"

#include "jpeg/mcu_transform.h"
#include "jpeg/plane_transform.h"

namespace examples::jpeg {
namespace {

bool sharesSamples(const Frame& frame) { return frame.maxHorizontal() > 1 || frame.maxVertical() > 1; }

}  // namespace

void shapeImage(const Frame& frame, const DecodeOptions& options, Image& image) {
  const size_t components = frame.components.size();
  image.reshape(divideUp(frame.width, options.scale), divideUp(frame.height, options.scale),
                static_cast<int32_t>(components));
}

std::unique_ptr<InverseTransform> makeInverseTransform(const Frame& frame,
                                                       const std::array<QuantTable, kMaxComponents>& tables,
                                                       const DecodeOptions& options, int32_t firstMcuRow,
                                                       Image& image) {
  if (frame.coding == ColorCoding::grey) return std::make_unique<GreyTransform>(tables[0], 8 / options.scale, image);
  const bool plain = options.scale == 1 && (options.upsampling == Upsampling::box || !sharesSamples(frame));
  if (plain && mcuConversion(frame)) return std::make_unique<McuTransform>(frame, tables, image);
  return std::make_unique<PlaneTransform>(frame, tables, options, firstMcuRow, image);
}

}  // namespace examples::jpeg
