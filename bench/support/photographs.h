// The photographs that codecs are measured on.
#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "common/image_file.h"

namespace zorj::bench {

struct Photograph {
  std::string name;
  std::shared_ptr<const examples::Image> image;
};

// The upper left quarter of a photograph as a camera with four times as many pixels would have taken it, held upright
// and exposed longer: soft detail, and the noise of a sensor, up to two steps either way.
inline examples::Image closeUp(const examples::Image& whole) {
  const int32_t channels = whole.channels;
  examples::Image close(whole.height / 2 * 2, whole.width / 2 * 2, channels);
  uint32_t noise = 1;
  for (int32_t y = 0; y < close.height; ++y) {
    for (int32_t x = 0; x < close.width; ++x) {
      // A quarter turn; between two samples of the source, the nearer one counts three times.
      const int32_t fromX = y, fromY = close.width - 1 - x;
      const int32_t otherX = std::max(fromX / 2 + fromX % 2 * 2 - 1, 0);
      const int32_t otherY = std::max(fromY / 2 + fromY % 2 * 2 - 1, 0);
      for (int32_t c = 0; c < channels; ++c) {
        const int32_t near = 3 * whole.at(fromX / 2, fromY / 2)[c] + whole.at(otherX, fromY / 2)[c];
        const int32_t far = 3 * whole.at(fromX / 2, otherY)[c] + whole.at(otherX, otherY)[c];
        noise = noise * 1664525 + 1013904223;
        const int32_t exposed = (3 * near + far) * 5 / 64 + static_cast<int32_t>(noise >> 24) * 5 / 256 - 2;
        close.at(x, y)[c] = static_cast<uint8_t>(std::clamp(exposed, 0, 255));
      }
    }
  }
  return close;
}

inline std::vector<Photograph> photographs() {
  auto mountains = std::make_shared<const examples::Image>(examples::readImage(ZORJ_PHOTOGRAPH));
  auto cloud = std::make_shared<const examples::Image>(closeUp(*mountains));
  return {{"mountains", mountains}, {"cloud", cloud}};
}

}  // namespace zorj::bench
