#include "jpeg2k/picture.h"

#include <algorithm>
#include <cmath>

#include "common/error.h"

namespace examples::jpeg2k {
namespace {

// Which samples of a component the pixels [begin, end) show, limited to those it has.
struct Spread {
  int32_t pixelDistance;
  int32_t distance;
  int32_t first;
  int32_t last;

  int32_t sample(int32_t pixel) const {
    return std::clamp(static_cast<int32_t>(int64_t{pixel} * pixelDistance / distance), first, last);
  }
};

uint16_t rescaled(int32_t value, int32_t from, int32_t to) {
  if (from == to) return static_cast<uint16_t>(value);
  const int32_t fromLargest = (1 << from) - 1, toLargest = (1 << to) - 1;
  return static_cast<uint16_t>((int64_t{value} * toLargest + fromLargest / 2) / fromLargest);
}

// T.800 I.5.3.3: sYCC is the YCbCr of JPEG.
void convertYccToRgb(DeepImage& image) {
  const float middle = static_cast<float>(1 << (image.precision - 1));
  const float largest = static_cast<float>(image.largest());
  const auto rounded = [&](float value) {
    return static_cast<uint16_t>(std::lround(std::clamp(value, 0.0f, largest)));
  };
  for (size_t i = 0; i + 2 < image.samples.size(); i += 3) {
    uint16_t* const pixel = &image.samples[i];
    const float y = pixel[0], cb = static_cast<float>(pixel[1]) - middle, cr = static_cast<float>(pixel[2]) - middle;
    pixel[0] = rounded(y + 1.402f * cr);
    pixel[1] = rounded(y - 0.344136f * cb - 0.714136f * cr);
    pixel[2] = rounded(y + 1.772f * cb);
  }
}

}  // namespace

Layout makeLayout(const ImageSize& size, const DecodeOptions& options) {
  Layout layout;
  const ComponentSize pixel = pixelSize(size);
  layout.dx = pixel.dx;
  layout.dy = pixel.dy;
  const Rect all = componentRect(pixel, size.image);
  Rect wanted = all;
  if (options.tile >= 0) {
    if (options.tile >= tileCount(size)) throw Error("there is no such tile");
    wanted = componentRect(pixel, tileRect(size, options.tile));
  }
  if (const Region& region = options.region; region.width > 0 && region.height > 0) {
    const int64_t x = int64_t{all.x0} + region.x, y = int64_t{all.y0} + region.y;
    const auto inside = [](int64_t value, int32_t low, int32_t high) {
      return static_cast<int32_t>(std::clamp<int64_t>(value, low, high));
    };
    wanted = {inside(x, wanted.x0, wanted.x1), inside(y, wanted.y0, wanted.y1),
              inside(x + region.width, wanted.x0, wanted.x1), inside(y + region.height, wanted.y0, wanted.y1)};
  }
  layout.pixels = reduced(wanted, options.reduce);
  if (layout.pixels.empty()) throw Error("nothing of the picture is there");
  for (const ComponentSize& component : size.components) {
    const Rect whole = reduced(componentRect(component, size.image), options.reduce);
    if (whole.empty()) throw Error("a component has no samples");
    const Spread across = {layout.dx, component.dx, whole.x0, whole.x1 - 1};
    const Spread down = {layout.dy, component.dy, whole.y0, whole.y1 - 1};
    Rect rect = {across.sample(layout.pixels.x0), down.sample(layout.pixels.y0),
                 across.sample(layout.pixels.x1 - 1) + 1, down.sample(layout.pixels.y1 - 1) + 1};
    // Where distances are no multiples of each other, the last samples may show in no pixel.
    if (wanted.x1 == all.x1) rect.x1 = whole.x1;
    if (wanted.y1 == all.y1) rect.y1 = whole.y1;
    layout.components.push_back(rect);
  }
  return layout;
}

void assemble(const Jp2File& file, const ImageSize& size, const Layout& layout,
              const std::vector<ComponentSamples>& components, DeepImage& image) {
  const std::vector<Channel> channels = file.colors(static_cast<int32_t>(components.size()));
  const auto column = [&](const Channel& channel) -> const Palette::Column* {
    return channel.column < 0 ? nullptr : &file.palette->columns[static_cast<size_t>(channel.column)];
  };
  const auto precisionOf = [&](const Channel& channel) {
    if (column(channel) != nullptr) return column(channel)->precision;
    return size.components[static_cast<size_t>(channel.component)].precision;
  };
  int32_t precision = 1;
  for (const Channel& channel : channels) precision = std::max(precision, precisionOf(channel));
  image.reshape(layout.pixels.width(), layout.pixels.height(), static_cast<int32_t>(channels.size()));
  image.precision = precision;
  for (size_t i = 0; i < channels.size(); ++i) {
    const size_t c = static_cast<size_t>(channels[i].component);
    const Rect& rect = layout.components[c];
    const Spread across = {layout.dx, size.components[c].dx, rect.x0, rect.x1 - 1};
    const Spread down = {layout.dy, size.components[c].dy, rect.y0, rect.y1 - 1};
    const Palette::Column* const palette = column(channels[i]);
    const int32_t from = precisionOf(channels[i]);
    for (int32_t y = 0; y < image.height; ++y) {
      const ptrdiff_t row = down.sample(layout.pixels.y0 + y) - rect.y0;
      const uint16_t* const samples = components[c].samples.data() + row * rect.width();
      uint16_t* to = image.at(0, y) + i;
      for (int32_t x = 0; x < image.width; ++x, to += image.channels) {
        int32_t value = samples[across.sample(layout.pixels.x0 + x) - rect.x0];
        if (palette != nullptr)
          value = palette->values[std::min<size_t>(static_cast<size_t>(value), palette->values.size() - 1)];
        *to = rescaled(value, from, precision);
      }
    }
  }
  if (file.colorSpace == ColorSpace::ycc && channels.size() == 3) convertYccToRgb(image);
}

}  // namespace examples::jpeg2k
