// zorj-demo: takes a picture through the example codecs, holds the results against independent decoders, measures, and
// makes a page of it all.
#include <zorcore.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "common/command_line.h"
#include "common/image_file.h"
#include "gallery/gallery.h"
#include "gallery/page.h"

namespace {

using examples::gallery::Gallery;

int demonstrate(const std::string& picture, const std::filesystem::path& directory) {
  std::filesystem::create_directories(directory);
  Gallery gallery(examples::readImage(picture), directory);
  if (gallery.original().channels == 4) gallery = Gallery(examples::cmykToRgb(gallery.original()), directory);
  zorSetNumThreads(1);
  std::printf("%s: %d x %d, %.1f megapixels. One thread, in memory:\n\n", picture.c_str(), gallery.original().width,
              gallery.original().height, gallery.pixels() / 1e6);
  std::printf("%-12s %-32s %11s %6s %9s %8s %8s   %s\n", "family", "coding", "size", "bits/p", "PSNR", "encode*",
              "decode*", "check**");
  for (const auto& room : {&examples::gallery::showJpeg, &examples::gallery::showJpeg2k, &examples::gallery::showTiff,
                           &examples::gallery::showTextures, &examples::gallery::showPhotoCoreTransform}) {
    room(gallery);
  }
  const std::filesystem::path page = directory / "index.html";
  writePage(gallery, std::filesystem::path(picture).filename().string() + " through zorj", page);
  std::printf(
      "\n*  In megapixels per second.\n"
      "** An independent decoder, and the largest difference of a sample from what it decodes: of JPEG before\n"
      "   up-sampling and colour conversion, where 1 is within rounding; of DXT, 8 is the difference by design.\n\n"
      "The files and their decoded pictures are in %s; look at %s.\n",
      directory.c_str(), page.c_str());
  if (gallery.agrees()) return examples::kDone;
  std::fprintf(stderr, "zorj-demo: an independent decoder does not agree\n");
  return examples::kFailed;
}

int run(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: zorj-demo IMAGE.png|ppm|pgm|pam DIRECTORY\n");
    return examples::kBadCommandLine;
  }
  return demonstrate(argv[1], argv[2]);
}

}  // namespace

int main(int argc, char** argv) { return examples::runProgram("zorj-demo", &run, argc, argv); }
