#include "interop/openjpeg.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>

namespace interop::openjpeg {
namespace {

template <auto destroy>
struct Destroy {
  template <class T>
  void operator()(T* object) const {
    destroy(object);
  }
};
using Codec = std::unique_ptr<opj_codec_t, Destroy<opj_destroy_codec>>;
using Stream = std::unique_ptr<opj_stream_t, Destroy<opj_stream_destroy>>;
using OpjImage = std::unique_ptr<opj_image_t, Destroy<opj_image_destroy>>;

struct Messages {
  std::string text;
  bool warned = false;

  void listen(opj_codec_t* codec) {
    opj_set_error_handler(
        codec, [](const char* message, void* self) { static_cast<Messages*>(self)->text += message; }, this);
    opj_set_warning_handler(
        codec,
        [](const char* message, void* self) {
          static_cast<Messages*>(self)->text += message;
          static_cast<Messages*>(self)->warned = true;
        },
        this);
  }
  void require(bool condition, const char* what) const {
    if (!condition) throw std::runtime_error(std::string("OpenJPEG cannot ") + what + ": " + text);
  }
};

struct Reader {
  std::span<const uint8_t> bytes;
  size_t at = 0;

  static OPJ_SIZE_T read(void* buffer, OPJ_SIZE_T count, void* self) {
    Reader& reader = *static_cast<Reader*>(self);
    const size_t length = std::min<size_t>(count, reader.bytes.size() - reader.at);
    if (length == 0) return static_cast<OPJ_SIZE_T>(-1);
    std::memcpy(buffer, reader.bytes.data() + reader.at, length);
    reader.at += length;
    return length;
  }
  static OPJ_OFF_T skip(OPJ_OFF_T count, void* self) {
    Reader& reader = *static_cast<Reader*>(self);
    const auto length = std::min<OPJ_OFF_T>(count, static_cast<OPJ_OFF_T>(reader.bytes.size() - reader.at));
    reader.at += static_cast<size_t>(length);
    return length;
  }
  static OPJ_BOOL seek(OPJ_OFF_T to, void* self) {
    Reader& reader = *static_cast<Reader*>(self);
    if (to < 0 || static_cast<size_t>(to) > reader.bytes.size()) return OPJ_FALSE;
    reader.at = static_cast<size_t>(to);
    return OPJ_TRUE;
  }
};

struct Writer {
  std::vector<uint8_t> bytes;
  size_t at = 0;

  static OPJ_SIZE_T write(void* buffer, OPJ_SIZE_T count, void* self) {
    Writer& writer = *static_cast<Writer*>(self);
    writer.bytes.resize(std::max(writer.bytes.size(), writer.at + count));
    std::memcpy(writer.bytes.data() + writer.at, buffer, count);
    writer.at += count;
    return count;
  }
  static OPJ_OFF_T skip(OPJ_OFF_T count, void* self) {
    Writer& writer = *static_cast<Writer*>(self);
    writer.at += static_cast<size_t>(count);
    writer.bytes.resize(std::max(writer.bytes.size(), writer.at));
    return count;
  }
  static OPJ_BOOL seek(OPJ_OFF_T to, void* self) {
    static_cast<Writer*>(self)->at = static_cast<size_t>(to);
    return OPJ_TRUE;
  }
};

bool isJp2(std::span<const uint8_t> file) { return file.size() > 4 && file[0] == 0; }

struct ComponentSize {
  uint32_t dx, dy, precision;
  bool isSigned;
};

OpjImage makeImage(uint32_t x0, uint32_t y0, uint32_t x1, uint32_t y1, const std::vector<ComponentSize>& sizes) {
  std::vector<opj_image_cmptparm_t> parameters;
  for (const ComponentSize& size : sizes) {
    const auto divide = [](uint32_t value, uint32_t by) { return (value + by - 1) / by; };
    opj_image_cmptparm_t component = {};
    component.dx = size.dx;
    component.dy = size.dy;
    component.x0 = x0;
    component.y0 = y0;
    component.w = divide(x1, size.dx) - divide(x0, size.dx);
    component.h = divide(y1, size.dy) - divide(y0, size.dy);
    component.prec = size.precision;
    component.sgnd = size.isSigned ? 1 : 0;
    parameters.push_back(component);
  }
  const OPJ_COLOR_SPACE space = sizes.size() >= 3 ? OPJ_CLRSPC_SRGB : OPJ_CLRSPC_GRAY;
  OpjImage image(opj_image_create(static_cast<OPJ_UINT32>(sizes.size()), parameters.data(), space));
  if (!image) throw std::runtime_error("OpenJPEG cannot make an image");
  image->x0 = x0;
  image->y0 = y0;
  image->x1 = x1;
  image->y1 = y1;
  return image;
}

template <class Sample>
OpjImage makeImage(const examples::BasicImage<Sample>& picture) {
  const auto channels = static_cast<size_t>(picture.channels);
  OpjImage image =
      makeImage(0, 0, static_cast<uint32_t>(picture.width), static_cast<uint32_t>(picture.height),
                std::vector<ComponentSize>(channels, {1, 1, static_cast<uint32_t>(picture.precision), false}));
  for (size_t c = 0; c < channels; ++c) {
    for (size_t i = c, j = 0; i < picture.samples.size(); i += channels, ++j)
      image->comps[c].data[j] = picture.samples[i];
  }
  return image;
}

OpjImage makeImage(const PeerImage& picture) {
  std::vector<ComponentSize> sizes;
  for (const PeerImage::Component& component : picture.components)
    sizes.push_back({component.dx, component.dy, component.precision, component.isSigned});
  OpjImage image = makeImage(picture.x0, picture.y0, picture.x1, picture.y1, sizes);
  for (size_t c = 0; c < sizes.size(); ++c)
    std::copy(picture.components[c].samples.begin(), picture.components[c].samples.end(), image->comps[c].data);
  return image;
}

}  // namespace

static OpjImage read(std::span<const uint8_t> file, const DecodeSettings& settings) {
  const Codec codec(opj_create_decompress(isJp2(file) ? OPJ_CODEC_JP2 : OPJ_CODEC_J2K));
  Messages messages;
  messages.listen(codec.get());
  opj_dparameters_t parameters;
  opj_set_default_decoder_parameters(&parameters);
  parameters.cp_reduce = settings.reduce;
  parameters.cp_layer = settings.layers;
  messages.require(opj_setup_decoder(codec.get(), &parameters), "be set up");
  opj_decoder_set_strict_mode(codec.get(), settings.strict ? OPJ_TRUE : OPJ_FALSE);
  if (settings.threads > 1) opj_codec_set_threads(codec.get(), settings.threads);

  Reader reader = {file};
  const Stream stream(opj_stream_default_create(OPJ_TRUE));
  opj_stream_set_user_data(stream.get(), &reader, nullptr);
  opj_stream_set_user_data_length(stream.get(), file.size());
  opj_stream_set_read_function(stream.get(), &Reader::read);
  opj_stream_set_skip_function(stream.get(), &Reader::skip);
  opj_stream_set_seek_function(stream.get(), &Reader::seek);

  opj_image_t* made = nullptr;
  const bool headerRead = opj_read_header(stream.get(), codec.get(), &made);
  OpjImage image(made);
  messages.require(headerRead, "read the header");
  // The whole image; without this call the peer gets reduced sizes at an offset wrong.
  messages.require(opj_set_decode_area(codec.get(), made, 0, 0, 0, 0), "choose the whole image");
  messages.require(opj_decode(codec.get(), stream.get(), made), "decode");
  messages.require(opj_end_decompress(codec.get(), stream.get()) || !settings.strict, "end");
  messages.require(!settings.strict || !messages.warned, "decode without warnings");

  for (size_t c = 0; c < image->numcomps; ++c) messages.require(image->comps[c].data != nullptr, "decode a component");
  return image;
}

std::vector<ComponentSamples> decode(std::span<const uint8_t> file, const DecodeSettings& settings) {
  const OpjImage image = read(file, settings);
  std::vector<ComponentSamples> components(image->numcomps);
  for (size_t c = 0; c < components.size(); ++c) {
    const opj_image_comp_t& from = image->comps[c];
    components[c] = {static_cast<int32_t>(from.w), static_cast<int32_t>(from.h), static_cast<int32_t>(from.prec),
                     from.sgnd != 0, std::vector<uint16_t>(size_t{from.w} * from.h)};
    const int32_t raised = from.sgnd != 0 ? 1 << (from.prec - 1) : 0;
    std::transform(from.data, from.data + components[c].samples.size(), components[c].samples.begin(),
                   [=](int32_t sample) { return static_cast<uint16_t>(sample + raised); });
  }
  return components;
}

void decode(std::span<const uint8_t> file, const DecodeSettings& settings, Image& image) {
  const OpjImage from = read(file, settings);
  image.reshape(static_cast<int32_t>(from->comps[0].w), static_cast<int32_t>(from->comps[0].h),
                static_cast<int32_t>(from->numcomps));
  const size_t channels = from->numcomps;
  for (size_t c = 0; c < channels; ++c) {
    for (size_t i = c, j = 0; i < image.samples.size(); i += channels, ++j)
      image.samples[i] = static_cast<uint8_t>(from->comps[c].data[j]);
  }
}

opj_cparameters_t defaults() {
  opj_cparameters_t parameters;
  opj_set_default_encoder_parameters(&parameters);
  parameters.tcp_numlayers = 1;
  parameters.tcp_rates[0] = 0;
  parameters.cp_disto_alloc = 1;
  return parameters;
}

static std::vector<uint8_t> write(opj_image_t* image, const opj_cparameters_t& parameters, bool codestreamOnly,
                                  int threads, const char* const* extraOptions) {
  const Codec codec(opj_create_compress(codestreamOnly ? OPJ_CODEC_J2K : OPJ_CODEC_JP2));
  Messages messages;
  messages.listen(codec.get());
  opj_cparameters_t copy = parameters;
  messages.require(opj_setup_encoder(codec.get(), &copy, image), "be set up");
  // Even one thread would be another than the caller's.
  if (threads > 1) opj_codec_set_threads(codec.get(), threads);
  if (extraOptions != nullptr)
    messages.require(opj_encoder_set_extra_options(codec.get(), extraOptions), "take an option");

  Writer writer;
  const Stream stream(opj_stream_default_create(OPJ_FALSE));
  opj_stream_set_user_data(stream.get(), &writer, nullptr);
  opj_stream_set_write_function(stream.get(), &Writer::write);
  opj_stream_set_skip_function(stream.get(), &Writer::skip);
  opj_stream_set_seek_function(stream.get(), &Writer::seek);
  messages.require(opj_start_compress(codec.get(), image, stream.get()), "start");
  messages.require(opj_encode(codec.get(), stream.get()), "encode");
  messages.require(opj_end_compress(codec.get(), stream.get()), "end");
  return std::move(writer.bytes);
}

std::vector<uint8_t> encode(const PeerImage& image, const opj_cparameters_t& parameters, bool codestreamOnly,
                            int threads, const char* const* extraOptions) {
  return write(makeImage(image).get(), parameters, codestreamOnly, threads, extraOptions);
}

std::vector<uint8_t> encode(const DeepImage& image, const opj_cparameters_t& parameters, bool codestreamOnly,
                            int threads, const char* const* extraOptions) {
  return write(makeImage(image).get(), parameters, codestreamOnly, threads, extraOptions);
}

std::vector<uint8_t> encode(const Image& image, const opj_cparameters_t& parameters, bool codestreamOnly, int threads,
                            const char* const* extraOptions) {
  return write(makeImage(image).get(), parameters, codestreamOnly, threads, extraOptions);
}

}  // namespace interop::openjpeg
