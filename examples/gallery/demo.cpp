// zorj-demo: takes a picture through the example codecs, holds the results against independent decoders, measures, and
// makes a page of it all.
#include <zorcore.h>

#include <cstdio>
#include <cstring>
#include <filesystem>

#include "common/command_line.h"
#include "common/error.h"
#include "common/files.h"
#include "common/image_file.h"
#include "common/png_file.h"
#include "common/pnm_file.h"
#include "gallery/gallery.h"
#include "gallery/page.h"
#include "jpeg/codec.h"

namespace {

using examples::Image;
using examples::gallery::Gallery;

constexpr uint8_t kJpegStart[] = {0xff, 0xd8, 0xff};

// A photograph is often a JPEG file.
Image readPicture(const std::string& path) {
  const std::vector<uint8_t> bytes = examples::readFile(path);
  Image image;
  if (bytes.size() > 3 && std::memcmp(bytes.data(), kJpegStart, 3) == 0) {
    const std::string problem = examples::jpeg::decode(bytes, {}, image).problem;
    if (!problem.empty()) throw examples::Error(path + ": " + problem);
  } else if (examples::isPng(bytes) || examples::isPnm(bytes)) {
    image = examples::readImage(path);
  } else {
    throw examples::Error(path + ": neither a JPEG, a PNG nor a binary PGM, PPM or PAM file");
  }
  return image.channels == 4 ? examples::cmykToRgb(image) : image;
}

int demonstrate(const std::string& picture, const std::filesystem::path& directory, bool quick) {
  Gallery gallery(readPicture(picture), directory, quick);
  std::filesystem::create_directories(directory);
  zorSetNumThreads(1);
  std::printf("%s: %d x %d, %.2f megapixels. On one thread, in memory:\n\n%-10s %-29s", picture.c_str(),
              gallery.original().width, gallery.original().height, gallery.megapixels(), "family", "coding");
  for (const char* head : {"size", "bits/pixel", "PSNR", "encode*", "decode*"}) std::printf(" %10s", head);
  std::printf("   independent decoder**\n");
  for (const auto& room : {&examples::gallery::showJpeg, &examples::gallery::showJpeg2k, &examples::gallery::showTiff,
                           &examples::gallery::showTextures, &examples::gallery::showPhotoCoreTransform}) {
    room(gallery);
  }
  const std::filesystem::path page = directory / "index.html";
  writePage(gallery, std::filesystem::path(picture).filename().string() + " through zorj", page);
  std::printf(
      "\n*  In megapixels per second.\n"
      "** The largest difference of a sample from what it decodes, and the largest that is right.\n\n"
      "The files and their decoded pictures are in %s; all of it to look at: %s\n",
      directory.c_str(), page.c_str());
  if (gallery.faults() == 0) return examples::kDone;
  std::fprintf(stderr, "zorj-demo: wrong results: %d\n", static_cast<int>(gallery.faults()));
  return examples::kFailed;
}

int run(int argc, char** argv) {
  const bool quick = argc > 1 && std::strcmp(argv[1], "--quick") == 0;
  if (argc != (quick ? 4 : 3)) {
    std::fprintf(stderr, "usage: zorj-demo [--quick] IMAGE.jpg|png|ppm|pgm|pam DIRECTORY\n");
    return examples::kBadCommandLine;
  }
  return demonstrate(argv[argc - 2], argv[argc - 1], quick);
}

}  // namespace

int main(int argc, char** argv) { return examples::runProgram("zorj-demo", &run, argc, argv); }
