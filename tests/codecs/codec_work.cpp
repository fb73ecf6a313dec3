#include "codecs/codec_work.h"

#include <cstdio>
#include <cstring>
#include <stdexcept>

#include "common/files.h"
#include "common/image_file.h"
#include "dds/codec.h"
#include "interop/pictures.h"
#include "jpeg/codec.h"
#include "jpeg2k/codec.h"
#include "tiff/codec.h"

namespace zorj::test {
namespace {

namespace jpeg = examples::jpeg;
namespace jpeg2k = examples::jpeg2k;
namespace tiff = examples::tiff;
namespace dds = examples::dds;
using Bytes = std::vector<uint8_t>;

template <class Sample>
Bytes bytesOf(const std::vector<Sample>& samples) {
  Bytes bytes(samples.size() * sizeof(Sample));
  std::memcpy(bytes.data(), samples.data(), bytes.size());
  return bytes;
}

// Memory that is missing must never be taken for damage.
template <class Report>
void expectComplete(const Report& report) {
  if (!report.complete()) throw std::logic_error("taken for a damaged file: " + report.problem);
}

// Decodes to pixels whatever Decode reads: decode(file, options, image).
template <class Image, class Options, class Decode>
std::function<Bytes()> decoding(const Bytes& file, const Options& options, const Decode& decode) {
  return [=] {
    Image image;
    expectComplete(decode(file, options, image));
    return bytesOf(image.samples);
  };
}

class Works {
 public:
  Works(int threads, const std::string& directory) : threads_(threads), directory_(directory) {
    addJpeg();
    addJpeg2k();
    addOthers();
    addFiles();
  }
  std::vector<CodecWork> take() { return std::move(works_); }

 private:
  // Adds an encoder, and runs it for the file that a decoder is to read.
  template <class Encode>
  Bytes addEncoder(const std::string& name, const Encode& encode) {
    const auto run = [encode] {
      Bytes file;
      encode(file);
      return file;
    };
    works_.push_back({name, run});
    return run();
  }

  void addJpeg() {
    addJpegPair("baseline", colours_, {.sampling = jpeg::Sampling::s420, .restartInterval = 4});
    addJpegPair("progressive", colours_, {.sampling = jpeg::Sampling::s422, .progressive = true});
    addJpegPair("of CMYK", inks_, {.optimize = true});
    addJpegPair("of 12 bits", deep_, {.precision = 12});
    addJpegPair("lossless", deep_, {.predictor = 4});
  }
  template <class Image>
  void addJpegPair(const std::string& name, const Image& image, const jpeg::EncodeOptions& options) {
    const Bytes file = addEncoder("encode JPEG " + name, [=](Bytes& to) { jpeg::encode(image, options, to); });
    const auto decode = [](const Bytes& from, const jpeg::DecodeOptions& how, Image& to) {
      return jpeg::decode(from, how, to);
    };
    works_.push_back({"decode JPEG " + name, decoding<Image>(file, jpeg::DecodeOptions{.threads = threads_}, decode)});
  }

  void addJpeg2k() {
    jpeg2k::EncodeOptions lossless;
    lossless.threads = threads_;
    addJpeg2kPair("lossless", colours_, lossless);
    addJpeg2kPair("of 12 bits", deep_, lossless);
    jpeg2k::EncodeOptions lossy = lossless;
    lossy.ratio = 8;
    lossy.layers = 2;
    lossy.levels = 3;
    lossy.tile = {32, 40};
    lossy.precinct = {32, 32};
    lossy.style = jpeg2k::block_style::bypass | jpeg2k::block_style::segsym;
    addJpeg2kPair("lossy", interop::picture(60, 40, 3), lossy);
  }
  template <class Image>
  void addJpeg2kPair(const std::string& name, const Image& image, const jpeg2k::EncodeOptions& options) {
    const Bytes file = addEncoder("encode JPEG 2000 " + name, [=](Bytes& to) { jpeg2k::encode(image, options, to); });
    jpeg2k::DecodeOptions how;
    how.threads = threads_;
    const auto decode = [](const Bytes& from, const jpeg2k::DecodeOptions& options_, Image& to) {
      return jpeg2k::decode(from, options_, to);
    };
    works_.push_back({"decode JPEG 2000 " + name, decoding<Image>(file, how, decode)});
  }

  void addOthers() {
    for (const auto compression : {tiff::Compression::none, tiff::Compression::packBits}) {
      const std::string name = compression == tiff::Compression::none ? "plain" : "PackBits";
      const DeepImage image = deep_;
      const Bytes file = addEncoder("encode TIFF " + name, [=](Bytes& to) { tiff::encode(image, compression, to); });
      const auto decode = [](const Bytes& from, int, DeepImage& to) { return tiff::decode(from, to); };
      works_.push_back({"decode TIFF " + name, decoding<DeepImage>(file, 0, decode)});
    }
    for (const auto format : {dds::Format::dxt1, dds::Format::dxt3, dds::Format::dxt5, dds::Format::ycocgDxt5}) {
      const std::string name = dds::nameOf(format);
      const Image image = colours_;
      const Bytes file = addEncoder("encode " + name, [=](Bytes& to) { to = dds::encode(image, format, true); });
      works_.push_back({"decode " + name, [file] { return dds::decode(file).samples; }});
    }
  }

  // PNG and PNM files, which all programs read and write.
  void addFiles() {
    for (const char* name : {"a.png", "a.ppm"}) {
      const std::string path = directory_ + "/" + name;
      const Image image = colours_;
      works_.push_back({std::string("write and read ") + name, [=] {
                          const struct Removed {
                            const std::string& path;
                            ~Removed() { std::remove(path.c_str()); }
                          } removed{path};
                          examples::writeImage(path, image);
                          return examples::readImage(path).samples;
                        }});
    }
  }

  using Image = examples::Image;
  using DeepImage = examples::DeepImage;

  const int threads_;
  const std::string directory_;
  const Image colours_ = interop::picture(150, 90, 3), inks_ = interop::picture(70, 50, 4);
  const DeepImage deep_ = interop::deepPicture(70, 50, 3, 12);
  std::vector<CodecWork> works_;
};

}  // namespace

std::vector<CodecWork> codecWork(int threads, const std::string& directory) { return Works(threads, directory).take(); }

}  // namespace zorj::test
