#include "gallery/html.h"

#include <cstdarg>
#include <cstdio>

namespace examples::gallery {

std::string format(const char* pattern, ...) {
  char text[512];
  va_list arguments;
  va_start(arguments, pattern);
  std::vsnprintf(text, sizeof text, pattern, arguments);
  va_end(arguments);
  return text;
}

std::string escaped(const std::string& text) {
  std::string result;
  for (const char c : text) {
    if (c == '<') {
      result += "&lt;";
    } else if (c == '&') {
      result += "&amp;";
    } else if (c == '"') {
      result += "&quot;";
    } else {
      result += c;
    }
  }
  return result;
}

std::string base64(std::span<const uint8_t> bytes) {
  constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string result;
  result.reserve(bytes.size() / 3 * 4 + 4);
  for (size_t i = 0; i < bytes.size(); i += 3) {
    const size_t count = bytes.size() - i < 3 ? bytes.size() - i : 3;
    uint32_t word = 0;
    for (size_t k = 0; k < 3; ++k) word = word << 8 | (k < count ? bytes[i + k] : 0U);
    for (size_t k = 0; k < 4; ++k) result += k <= count ? kDigits[word >> (18 - 6 * k) & 63] : '=';
  }
  return result;
}

}  // namespace examples::gallery
