// The whole encoder and decoder of zorjpeg, in memory and on one thread, against libjpeg-turbo: the same photographs,
// quality, sampling, up-sampling and scale, interleaved RGB or CMYK. Both use their accurate integer transforms.
#include <turbojpeg.h>
#include <zorcore.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "common/image_file.h"
#include "jpeg/codec.h"
#include "support/compare.h"
#include "support/photographs.h"

namespace zorj::bench {
namespace {

namespace jpeg = examples::jpeg;
using examples::Image;

struct TurboHandle {
  void operator()(void* handle) const { tjDestroy(handle); }
};
using Turbo = std::unique_ptr<void, TurboHandle>;

void check(int status, const Turbo& turbo) {
  if (status == 0) return;
  std::fprintf(stderr, "libjpeg-turbo: %s\n", tjGetErrorStr2(turbo.get()));
  std::abort();
}

struct Setting {
  std::string name;
  jpeg::EncodeOptions options;
  int turboSampling = TJSAMP_444;
  int turboFormat = TJPF_RGB;
};

using SharedImage = std::shared_ptr<const Image>;
using SharedFile = std::shared_ptr<const std::vector<uint8_t>>;

void compareEncoders(const Setting& setting, const SharedImage& image) {
  const auto ours = std::make_shared<std::vector<uint8_t>>();
  const auto turbo = std::make_shared<Turbo>(tjInitCompress());
  const auto theirs =
      std::make_shared<std::vector<uint8_t>>(tjBufSize(image->width, image->height, setting.turboSampling));
  compare("encode " + setting.name, double(image->width) * image->height, "pixels",
          {{"zorj", [=] { jpeg::encode(*image, setting.options, *ours); }},
           {"libjpeg-turbo", [=] {
              unsigned char* bytes = theirs->data();
              unsigned long length = theirs->size();
              const int progressive = setting.options.progressive ? TJFLAG_PROGRESSIVE : 0;
              // It has no flag for optimised tables.
              setenv("TJ_OPTIMIZE", setting.options.optimize ? "1" : "0", 1);
              check(tjCompress2(turbo->get(), image->samples.data(), image->width, image->step(), image->height,
                                setting.turboFormat, &bytes, &length, setting.turboSampling, setting.options.quality,
                                TJFLAG_NOREALLOC | TJFLAG_ACCURATEDCT | progressive),
                    *turbo);
            }}});
}

// The pixels that a row counts are those of the decoded image.
void compareDecoders(const std::string& row, const SharedFile& file, const jpeg::DecodeOptions& options,
                     int turboFormat) {
  const auto ours = std::make_shared<Image>();
  jpeg::decode(*file, options, *ours);
  const auto turbo = std::make_shared<Turbo>(tjInitDecompress());
  const auto theirs = std::make_shared<Image>(ours->width, ours->height, ours->channels);
  const int flags = TJFLAG_ACCURATEDCT | (options.upsampling == jpeg::Upsampling::box ? TJFLAG_FASTUPSAMPLE : 0);
  compare("decode " + row, double(ours->width) * ours->height, "pixels",
          {{"zorj", [=] { jpeg::decode(*file, options, *ours); }},
           {"libjpeg-turbo", [=] {
              check(tjDecompress2(turbo->get(), file->data(), file->size(), theirs->samples.data(), theirs->width,
                                  theirs->step(), theirs->height, turboFormat, flags),
                    *turbo);
            }}});
}

SharedFile encoded(const Setting& setting, const SharedImage& image) {
  const auto file = std::make_shared<std::vector<uint8_t>>();
  jpeg::encode(*image, setting.options, *file);
  return file;
}

// Lossless coding of a photograph against the peer's baseline coding of it in 4:2:0 at quality 90.
void compareLossless(const Photograph& photograph) {
  const SharedImage& image = photograph.image;
  const auto deep = std::make_shared<const examples::DeepImage>(examples::withPrecision<uint16_t>(*image, 8));
  Setting setting = {photograph.name + " lossless, against baseline 4:2:0 q90", {90, jpeg::Sampling::s420}, TJSAMP_420};
  const auto turboFile = encoded(setting, image);
  setting.options.predictor = 1;
  compareEncoders(setting, image);
  const auto file = std::make_shared<std::vector<uint8_t>>();
  jpeg::encode(*deep, setting.options, *file);
  const auto ours = std::make_shared<Image>(), theirs = std::make_shared<Image>(image->width, image->height, 3);
  const auto turbo = std::make_shared<Turbo>(tjInitDecompress());
  compare("decode " + setting.name, double(image->width) * image->height, "pixels",
          {{"zorj", [=] { jpeg::decode(*file, {}, *ours); }},
           {"libjpeg-turbo", [=] {
              check(tjDecompress2(turbo->get(), turboFile->data(), turboFile->size(), theirs->samples.data(),
                                  theirs->width, theirs->step(), theirs->height, TJPF_RGB, TJFLAG_ACCURATEDCT),
                    *turbo);
            }}});
}

// The photograph with grey taken out of its inks and printed in black.
SharedImage inInk(const Image& rgb) {
  const auto cmyk = std::make_shared<Image>(rgb.width, rgb.height, 4);
  uint8_t* ink = cmyk->samples.data();
  for (const uint8_t* pixel = rgb.samples.data(); pixel != rgb.samples.data() + rgb.samples.size(); pixel += 3) {
    const uint8_t black = static_cast<uint8_t>((255 - std::max({pixel[0], pixel[1], pixel[2]})) / 2);
    for (int c = 0; c < 3; ++c) *ink++ = static_cast<uint8_t>(255 - pixel[c] - black);
    *ink++ = black;
  }
  return cmyk;
}

SharedImage inGrey(const Image& rgb) {
  const auto grey = std::make_shared<Image>(rgb.width, rgb.height, 1);
  for (size_t i = 0; i < grey->samples.size(); ++i) grey->samples[i] = rgb.samples[3 * i + 1];
  return grey;
}

// The kinds of files that are usual.
void compareUsual(const Photograph& photograph) {
  using jpeg::Sampling;
  const SharedImage& image = photograph.image;
  for (const int quality : {90, 75}) {
    for (const auto& [sampling, turboSampling, name] :
         {std::tuple(Sampling::s444, TJSAMP_444, " 4:4:4 q"), std::tuple(Sampling::s420, TJSAMP_420, " 4:2:0 q")}) {
      const std::string suffix = name + std::to_string(quality);
      Setting setting = {photograph.name + suffix, {quality, sampling}, turboSampling};
      compareEncoders(setting, image);
      compareDecoders(setting.name, encoded(setting, image), {}, TJPF_RGB);
      setting.name = photograph.name + " optimised" + suffix;
      setting.options.optimize = true;
      compareEncoders(setting, image);
      setting.name = photograph.name + " progressive" + suffix;
      setting.options.progressive = true;
      compareEncoders(setting, image);
      compareDecoders(setting.name, encoded(setting, image), {}, TJPF_RGB);
    }
  }
  compareLossless(photograph);
}

// Other samplings, up-samplings, scales and colours.
void compareOthers(const SharedImage& image) {
  using jpeg::Sampling;
  using jpeg::Upsampling;
  for (const int quality : {90, 75}) {
    const std::string suffix = " q" + std::to_string(quality);
    const Setting pairs = {"4:2:2" + suffix, {quality, Sampling::s422}, TJSAMP_422};
    const Setting squares = {"4:2:0" + suffix, {quality, Sampling::s420}, TJSAMP_420};
    compareEncoders(pairs, image);
    compareDecoders(pairs.name + " triangle", encoded(pairs, image), {Upsampling::triangle}, TJPF_RGB);
    for (const Setting& setting : {pairs, squares}) {
      compareDecoders(setting.name + " box", encoded(setting, image), {Upsampling::box}, TJPF_RGB);
    }
  }
  const SharedFile file = encoded({"", {90, Sampling::s420}}, image);
  for (const int scale : {2, 4, 8}) {
    compareDecoders("4:2:0 q90 scale 1/" + std::to_string(scale), file, {Upsampling::triangle, scale}, TJPF_RGB);
  }
  const std::pair<Setting, SharedImage> colors[] = {
      {{"grey q90", {90}, TJSAMP_GRAY, TJPF_GRAY}, inGrey(*image)},
      {{"YCCK 4:4:4 q90", {90, Sampling::s444}, TJSAMP_444, TJPF_CMYK}, inInk(*image)},
      {{"YCCK 4:2:0 q90", {90, Sampling::s420}, TJSAMP_420, TJPF_CMYK}, inInk(*image)}};
  for (const auto& [setting, picture] : colors) {
    compareEncoders(setting, picture);
    compareDecoders(setting.name, encoded(setting, picture), {}, setting.turboFormat);
  }
}

}  // namespace

void registerComparisons() {
  zorSetNumThreads(1);
  const std::vector<Photograph> all = photographs();
  for (const Photograph& photograph : all) compareUsual(photograph);
  compareOthers(all[0].image);
}

}  // namespace zorj::bench
