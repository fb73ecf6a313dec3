// Pieces of an HTML page.
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace examples::gallery {

// As printf.
[[gnu::format(printf, 1, 2)]] std::string format(const char* pattern, ...);
std::string escaped(const std::string& text);
std::string base64(std::span<const uint8_t> bytes);

}  // namespace examples::gallery
