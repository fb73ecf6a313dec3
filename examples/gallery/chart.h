// Rate-distortion curves, drawn.
#pragma once

#include <string>
#include <vector>

#include "gallery/gallery.h"

namespace examples::gallery {

// How many curves the page has colours for: --c0 and so on.
inline constexpr size_t kCurveColours = 7;

// An SVG drawing with a legend, in the colours of the page.
std::string chart(const std::vector<Curve>& curves);

}  // namespace examples::gallery
