// The whole encoder and decoder of zorjpeg, in memory and on one thread, against libjpeg-turbo: the same photograph,
// quality and sampling, interleaved RGB. Both use their accurate integer transforms and replicate chroma.
#include <turbojpeg.h>

#include <cstdio>
#include <cstdlib>
#include <memory>

#include "common/image_file.h"
#include "jpeg/codec.h"
#include "support/compare.h"

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
  const char* name;
  jpeg::Sampling sampling;
  int turboSampling;
};

constexpr Setting kSettings[] = {{"4:4:4", jpeg::Sampling::s444, TJSAMP_444},
                                 {"2x2 chroma", jpeg::Sampling::s411, TJSAMP_420}};

void compareEncoders(const std::string& row, const std::shared_ptr<const Image>& image, int quality,
                     const Setting& setting) {
  const auto ours = std::make_shared<std::vector<uint8_t>>();
  const auto turbo = std::make_shared<Turbo>(tjInitCompress());
  const auto theirs =
      std::make_shared<std::vector<uint8_t>>(tjBufSize(image->width, image->height, setting.turboSampling));
  compare("encode " + row, double(image->width) * image->height, "pixels",
          {{"zorj",
            [=] {
              jpeg::encode(*image, {quality, setting.sampling, 0}, *ours);
            }},
           {"libjpeg-turbo", [=] {
              unsigned char* bytes = theirs->data();
              unsigned long length = theirs->size();
              check(
                  tjCompress2(turbo->get(), image->samples.data(), image->width, image->step(), image->height, TJPF_RGB,
                              &bytes, &length, setting.turboSampling, quality, TJFLAG_NOREALLOC | TJFLAG_ACCURATEDCT),
                  *turbo);
            }}});
}

void compareDecoders(const std::string& row, const Image& image, int quality, const Setting& setting) {
  const auto file = std::make_shared<std::vector<uint8_t>>();
  jpeg::encode(image, {quality, setting.sampling, 0}, *file);
  const auto ours = std::make_shared<Image>();
  const auto turbo = std::make_shared<Turbo>(tjInitDecompress());
  const auto theirs = std::make_shared<Image>(image.width, image.height, 3);
  compare("decode " + row, double(image.width) * image.height, "pixels",
          {{"zorj", [=] { jpeg::decode(*file, *ours); }},
           {"libjpeg-turbo", [=] {
              check(tjDecompress2(turbo->get(), file->data(), file->size(), theirs->samples.data(), theirs->width,
                                  theirs->step(), theirs->height, TJPF_RGB, TJFLAG_FASTUPSAMPLE | TJFLAG_ACCURATEDCT),
                    *turbo);
            }}});
}

}  // namespace

void registerComparisons() {
  const auto image = std::make_shared<const Image>(examples::readImage(ZORJ_PHOTOGRAPH));
  for (const Setting& setting : kSettings) {
    for (const int quality : {90, 75}) {
      const std::string row = std::string(setting.name) + " q" + std::to_string(quality);
      compareEncoders(row, image, quality, setting);
      compareDecoders(row, *image, quality, setting);
    }
  }
}

}  // namespace zorj::bench
