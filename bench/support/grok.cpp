#include "support/grok.h"

#include <grok.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace zorj::bench::grok {
namespace {

void require(bool condition, const char* what) {
  if (condition) return;
  std::fprintf(stderr, "Grok cannot %s\n", what);
  std::abort();
}

grk_image* makeImage(const examples::Image& picture) {
  const auto channels = static_cast<uint16_t>(picture.channels);
  std::vector<grk_image_comp> components(channels);
  for (grk_image_comp& component : components) {
    component = {};
    component.w = static_cast<uint32_t>(picture.width);
    component.h = static_cast<uint32_t>(picture.height);
    component.dx = component.dy = 1;
    component.prec = 8;
  }
  grk_image* const image =
      grk_image_new(channels, components.data(), channels == 3 ? GRK_CLRSPC_SRGB : GRK_CLRSPC_GRAY);
  require(image != nullptr, "make an image");
  image->x1 = components[0].w;
  image->y1 = components[0].h;
  for (uint16_t c = 0; c < channels; ++c) {
    const grk_image_comp& component = image->comps[c];
    for (int32_t y = 0; y < picture.height; ++y) {
      int32_t* const row = component.data + size_t{component.stride} * static_cast<size_t>(y);
      const uint8_t* const pixels = picture.at(0, y) + c;
      for (int32_t x = 0; x < picture.width; ++x) row[x] = pixels[x * channels];
    }
  }
  return image;
}

}  // namespace

// The result only tells of a plug-in.
void useThreads(uint32_t threads) { grk_initialize(nullptr, threads); }

std::vector<uint8_t> encode(const examples::Image& picture, int32_t levels, double ratio) {
  grk_cparameters parameters;
  grk_compress_set_default_params(&parameters);
  parameters.cod_format = GRK_FMT_J2K;
  parameters.numresolution = static_cast<uint8_t>(levels + 1);
  parameters.mct = picture.channels == 3 ? 1 : 0;
  parameters.irreversible = ratio > 0;
  parameters.numlayers = 1;
  parameters.layer_rate[0] = ratio;
  parameters.allocationByRateDistoration = true;

  // The codec releases the buffer. It looks for the start of a codestream even where one is to be written.
  constexpr uint8_t kStartOfCodestream[] = {0xff, 0x4f, 0xff, 0x51};
  grk_stream_params stream = {};
  stream.len = picture.samples.size() * 2 + 65536;
  stream.buf = new uint8_t[stream.len]();
  std::copy(std::begin(kStartOfCodestream), std::end(kStartOfCodestream), stream.buf);
  grk_image* const image = makeImage(picture);
  grk_codec* const codec = grk_compress_init(&stream, &parameters, image);
  require(codec != nullptr, "be set up");
  require(grk_compress(codec, nullptr), "encode");
  // It does not tell the length; the last marker does.
  constexpr uint8_t kEndOfCodestream[] = {0xff, 0xd9};
  const uint8_t* const limit = stream.buf + stream.len;
  const uint8_t* const end =
      std::find_end<const uint8_t*>(stream.buf, limit, std::begin(kEndOfCodestream), std::end(kEndOfCodestream));
  require(end != limit, "end the codestream");
  std::vector<uint8_t> file(stream.buf, stream.buf + (end - stream.buf) + 2);
  grk_object_unref(codec);
  grk_object_unref(&image->obj);
  return file;
}

void decode(std::span<const uint8_t> file, examples::Image& picture) {
  grk_decompress_core_params parameters;
  grk_decompress_set_default_params(&parameters);
  grk_stream_params stream = {};
  stream.buf = const_cast<uint8_t*>(file.data());
  stream.len = file.size();
  grk_codec* const codec = grk_decompress_init(&stream, &parameters);
  require(codec != nullptr, "be set up");
  grk_header_info header = {};
  require(grk_decompress_read_header(codec, &header), "read the header");
  require(grk_decompress(codec, nullptr), "decode");
  const grk_image* const image = grk_decompress_get_composited_image(codec);
  require(image != nullptr && image->comps[0].data != nullptr, "decode the image");
  picture.reshape(static_cast<int32_t>(image->comps[0].w), static_cast<int32_t>(image->comps[0].h), image->numcomps);
  for (uint16_t c = 0; c < image->numcomps; ++c) {
    const grk_image_comp& component = image->comps[c];
    for (int32_t y = 0; y < picture.height; ++y) {
      const int32_t* const row = component.data + size_t{component.stride} * static_cast<size_t>(y);
      uint8_t* const pixels = picture.at(0, y) + c;
      for (int32_t x = 0; x < picture.width; ++x) pixels[x * picture.channels] = static_cast<uint8_t>(row[x]);
    }
  }
  grk_object_unref(codec);
}

}  // namespace zorj::bench::grok
