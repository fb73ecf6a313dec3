#include "common/png_file.h"

#include <png.h>

#include <algorithm>
#include <bit>
#include <csetjmp>
#include <cstring>
#include <string>

#include "common/error.h"

namespace examples {
namespace {

// Deflate shrinks data to no less than a 1032nd; more pixels than that must be missing.
constexpr uint64_t kMaxExpansion = 1100;

struct Message {
  char text[200] = "";
};

void keepMessage(png_structp png, png_const_charp text) {
  Message& message = *static_cast<Message*>(png_get_error_ptr(png));
  std::strncpy(message.text, text, sizeof message.text - 1);
  png_longjmp(png, 1);
}

void ignoreWarning(png_structp, png_const_charp) {}

struct Input {
  std::span<const uint8_t> bytes;
  size_t at = 0;
};

void readInput(png_structp png, png_bytep destination, size_t count) {
  Input& input = *static_cast<Input*>(png_get_io_ptr(png));
  if (input.bytes.size() - input.at < count) png_error(png, "the file ends early");
  std::memcpy(destination, input.bytes.data() + input.at, count);
  input.at += count;
}

// Lays pixels of 2 or 4 channels, the last of which is the opacity, over white.
DeepImage overWhite(const DeepImage& source) {
  DeepImage image(source.width, source.height, source.channels - 1);
  image.precision = source.precision;
  const int64_t white = source.largest();
  const uint16_t* from = source.samples.data();
  uint16_t* to = image.samples.data();
  for (const uint16_t* const end = from + source.samples.size(); from != end; ++from) {
    const int64_t opacity = from[image.channels];
    for (int32_t c = 0; c < image.channels; ++c) {
      *to++ = static_cast<uint16_t>((*from++ * opacity + white * (white - opacity) + white / 2) / white);
    }
  }
  return image;
}

bool isLittleEndian() { return std::endian::native == std::endian::little; }

// libpng reports errors by longjmp: nothing in the two functions that call it may need a destructor.
bool readPixels(png_structp png, png_infop info, Input& input, DeepImage& image, std::vector<png_bytep>& rows) {
  if (setjmp(png_jmpbuf(png))) return false;  // NOLINT(cert-err52-cpp): it is libpng's way
  png_set_read_fn(png, &input, readInput);
  png_read_info(png, info);
  image.precision = png_get_bit_depth(png, info) == 16 ? 16 : 8;
  const uint64_t bytes = uint64_t{png_get_image_height(png, info)} * png_get_rowbytes(png, info);
  if (bytes / kMaxExpansion > input.bytes.size()) png_error(png, "too little data for so many pixels");
  png_set_expand_16(png);  // palettes to RGB, fewer than 16 bits to 16, transparent colours to opacity
  if (isLittleEndian()) png_set_swap(png);
  png_set_interlace_handling(png);
  png_read_update_info(png, info);
  const png_uint_32 width = png_get_image_width(png, info);
  const png_uint_32 height = png_get_image_height(png, info);
  image.reshape(static_cast<int32_t>(width), static_cast<int32_t>(height), png_get_channels(png, info));
  if (image.step() != static_cast<int32_t>(png_get_rowbytes(png, info))) png_error(png, "unexpected row layout");
  rows.resize(height);
  for (int32_t y = 0; y < image.height; ++y) rows[static_cast<size_t>(y)] = reinterpret_cast<png_bytep>(image.at(0, y));
  png_read_image(png, rows.data());
  return true;
}

template <class Sample>
int colourType(const BasicImage<Sample>& image) {
  return (image.channels < 3 ? PNG_COLOR_TYPE_GRAY : PNG_COLOR_TYPE_RGB) |
         (image.hasOpacity ? PNG_COLOR_MASK_ALPHA : 0);
}

template <class Sample>
bool writePixels(png_structp png, png_infop info, std::FILE* file, const BasicImage<Sample>& image) {
  if (setjmp(png_jmpbuf(png))) return false;  // NOLINT(cert-err52-cpp): it is libpng's way
  png_init_io(png, file);
  png_set_IHDR(png, info, static_cast<png_uint_32>(image.width), static_cast<png_uint_32>(image.height),
               image.precision, colourType(image), PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
               PNG_FILTER_TYPE_DEFAULT);
  png_set_compression_level(png, 3);
  png_write_info(png, info);
  if (sizeof(Sample) == 2 && isLittleEndian()) png_set_swap(png);
  for (int32_t y = 0; y < image.height; ++y) png_write_row(png, reinterpret_cast<png_const_bytep>(image.at(0, y)));
  png_write_end(png, info);
  return true;
}

}  // namespace

bool isPng(std::span<const uint8_t> bytes) { return bytes.size() >= 8 && png_sig_cmp(bytes.data(), 0, 8) == 0; }

DeepImage readPng(std::span<const uint8_t> bytes, Opacity opacity) {
  Message message;
  png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, &message, keepMessage, ignoreWarning);
  if (!png) throw Error("libpng could not start");
  png_infop info = png_create_info_struct(png);
  DeepImage image;
  std::vector<png_bytep> rows;
  Input input{bytes};
  bool done = false;
  try {
    done = info && readPixels(png, info, input, image, rows);
  } catch (const std::exception&) {  // out of memory, or more samples than a vector can hold
    std::strcpy(message.text, "no memory for so large an image");
  }
  png_destroy_read_struct(&png, &info, nullptr);
  if (!done) throw Error(message.text);
  // Every 8-bit value was made a 16-bit one by repeating it.
  if (image.precision == 8) {
    for (uint16_t& sample : image.samples) sample >>= 8;
  }
  image.hasOpacity = image.channels % 2 == 0;
  return image.hasOpacity && opacity == Opacity::overWhite ? overWhite(image) : image;
}

template <class Sample>
void writePng(const BasicImage<Sample>& image, std::FILE* file) {
  Message message;
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &message, keepMessage, ignoreWarning);
  if (!png) throw Error("libpng could not start");
  png_infop info = png_create_info_struct(png);
  const bool done = info && writePixels(png, info, file, image);
  png_destroy_write_struct(&png, &info);
  if (!done) throw Error(message.text);
}

template void writePng(const Image&, std::FILE*);
template void writePng(const DeepImage&, std::FILE*);

}  // namespace examples
