// Rate-distortion curves, drawn.
#pragma once

#include <string>
#include <vector>

#include "gallery/gallery.h"

namespace examples::gallery {

// An SVG drawing in the colours of the page.
std::string chart(const std::vector<Curve>& curves);

}  // namespace examples::gallery
