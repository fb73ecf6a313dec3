// The gallery as one HTML page that needs nothing else.
#pragma once

#include <filesystem>
#include <string>

#include "gallery/gallery.h"

namespace examples::gallery {

void writePage(const Gallery& gallery, const std::string& title, const std::filesystem::path& path);

}  // namespace examples::gallery
