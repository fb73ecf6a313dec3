// The whole encoder and decoder of zorj2k, in memory, against OpenJPEG and, on one thread, Grok: the same photograph,
// block size, levels and layers; both from and to interleaved RGB. The rows of two threads go by the clock. Names of
// lossy rows give what both reach at the same size.
#include <zorcore.h>

#include <cmath>
#include <cstdio>
#include <memory>

#include "common/image_file.h"
#include "interop/openjpeg.h"
#include "jpeg2k/codec.h"
#include "support/compare.h"
#ifdef ZORJ_BENCH_GROK
#include "support/grok.h"
#endif

namespace zorj::bench {
namespace {

namespace jpeg2k = examples::jpeg2k;
namespace openjpeg = interop::openjpeg;
using examples::Image;
using SharedImage = std::shared_ptr<const Image>;
using File = std::vector<uint8_t>;

struct Setting {
  std::string name;
  jpeg2k::EncodeOptions options;
};

opj_cparameters_t peerParameters(const jpeg2k::EncodeOptions& options) {
  opj_cparameters_t parameters = openjpeg::defaults();
  parameters.tcp_mct = 1;
  parameters.irreversible = options.ratio > 0 ? 1 : 0;
  parameters.tcp_rates[0] = static_cast<float>(options.ratio);
  parameters.numresolution = options.levels + 1;
  parameters.cblockw_init = options.block.width;
  parameters.cblockh_init = options.block.height;
  return parameters;
}

double psnr(const Image& a, const Image& b) {
  double sum = 0;
  for (size_t i = 0; i < a.samples.size(); ++i) sum += std::pow(a.samples[i] - b.samples[i], 2);
  return 10 * std::log10(255.0 * 255.0 * static_cast<double>(a.samples.size()) / sum);
}

File encoded(const Image& image, const jpeg2k::EncodeOptions& options) {
  File file;
  jpeg2k::encode(image, options, file);
  return file;
}

std::string qualities(const Image& image, const jpeg2k::EncodeOptions& options) {
  if (options.ratio == 0) return "";
  Image ours, theirs;
  openjpeg::decode(encoded(image, options), {}, ours);
  openjpeg::decode(openjpeg::encode(image, peerParameters(options)), {}, theirs);
  char text[64];
  std::snprintf(text, sizeof text, " (%.2f dB, OpenJPEG %.2f dB)", psnr(image, ours), psnr(image, theirs));
  return text;
}

void compareEncoders(Setting setting, const SharedImage& image) {
  const auto file = std::make_shared<File>();
  const opj_cparameters_t parameters = peerParameters(setting.options);
  const double pixels = double(image->width) * image->height;
  const std::string row = "encode " + setting.name;
  const auto ours = [=](int32_t threads) {
    return [=, options = setting.options]() mutable {
      options.threads = threads;
      jpeg2k::encode(*image, options, *file);
    };
  };
  const auto theirs = [=](int threads) {
    return [=] { benchmark::DoNotOptimize(openjpeg::encode(*image, parameters, false, threads)); };
  };
  std::vector<Variant> alone = {{"zorj", ours(1)}, {"OpenJPEG", theirs(1)}};
#ifdef ZORJ_BENCH_GROK
  alone.push_back({"Grok", [=, options = setting.options] {
                     benchmark::DoNotOptimize(grok::encode(*image, options.levels, options.ratio));
                   }});
#endif
  compare(row + qualities(*image, setting.options), pixels, "pixels", alone);
  compare(row + ", 2 threads", pixels, "pixels",
          {{"zorj", ours(2)}, {"zorj on 1 thread", ours(1)}, {"OpenJPEG", theirs(2)}}, true);
}

void compareDecoders(const Setting& setting, const SharedImage& image) {
  const auto file = std::make_shared<const File>(encoded(*image, setting.options));
  const auto decoded = std::make_shared<Image>(*image);
  const double pixels = double(image->width) * image->height;
  const std::string row = "decode " + setting.name;
  const auto ours = [=](int32_t threads) {
    return [=] {
      jpeg2k::DecodeOptions options;
      options.threads = threads;
      jpeg2k::decode(*file, options, *decoded);
    };
  };
  const auto theirs = [=](int threads) {
    return [=] {
      openjpeg::DecodeSettings settings;
      settings.threads = threads;
      openjpeg::decode(*file, settings, *decoded);
    };
  };
  std::vector<Variant> alone = {{"zorj", ours(1)}, {"OpenJPEG", theirs(1)}};
#ifdef ZORJ_BENCH_GROK
  alone.push_back({"Grok", [=] { grok::decode(*file, *decoded); }});
#endif
  compare(row, pixels, "pixels", alone);
  compare(row + ", 2 threads", pixels, "pixels",
          {{"zorj", ours(2)}, {"zorj on 1 thread", ours(1)}, {"OpenJPEG", theirs(2)}}, true);
}

}  // namespace

void registerComparisons() {
  zorSetNumThreads(1);
#ifdef ZORJ_BENCH_GROK
  grok::useThreads(1);
#endif
  const auto image = std::make_shared<const Image>(examples::readImage(ZORJ_PHOTOGRAPH));
  Setting lossless = {"lossless", {}}, lossy = {"10:1", {}};
  lossy.options.ratio = 10;
  for (const Setting& setting : {lossless, lossy}) {
    compareEncoders(setting, image);
    compareDecoders(setting, image);
  }
}

}  // namespace zorj::bench
