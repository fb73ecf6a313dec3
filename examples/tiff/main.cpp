// zortiff: encodes and decodes TIFF files.
#include <cstdio>

#include "common/command_line.h"
#include "common/error.h"
#include "common/files.h"
#include "common/image_file.h"
#include "tiff/codec.h"
#include "tiff/directory.h"

namespace {

using examples::DeepImage;
using examples::Error;
namespace tiff = examples::tiff;

constexpr const char* kExamples =
    "Examples:\n"
    "  zortiff encode photo.png photo.tif\n"
    "  zortiff decode scan.tif scan.png\n"
    "  zortiff info scan.tif\n\n";

struct Paths {
  std::string input;
  std::string output;
};

// What `work` makes of the input file; its errors name the file.
template <class Work>
auto withInput(const Paths& paths, const Work& work) {
  const std::vector<uint8_t> bytes = examples::readFile(paths.input);
  try {
    return work(bytes);
  } catch (const Error& error) {
    throw Error(paths.input + ": " + error.what());
  }
}

int encodeFile(const Paths& paths, tiff::Compression compression) {
  std::vector<uint8_t> bytes;
  tiff::encode(examples::readDeepImage(paths.input), compression, bytes);
  examples::OutputFile file(paths.output);
  file.write(bytes);
  file.commit();
  return examples::kDone;
}

int decodeFile(const Paths& paths) {
  examples::imageFormatOf(paths.output);  // refuses a bad name before the work
  DeepImage image;
  const tiff::DecodeReport report =
      withInput(paths, [&](const std::vector<uint8_t>& bytes) { return tiff::decode(bytes, image); });
  examples::writeImage(paths.output, image);
  if (report.complete()) return examples::kDone;
  std::fprintf(stderr, "zortiff: %s: %s\n", paths.input.c_str(), report.problem.c_str());
  return examples::kIncomplete;
}

std::string photometricName(uint32_t photometric) {
  switch (photometric) {
    case tiff::kWhiteIsZero:
      return "grey (0 is white)";
    case tiff::kBlackIsZero:
      return "grey";
    case tiff::kRgb:
      return "RGB";
    case tiff::kSeparated:
      return "CMYK";
    default:
      return "photometric interpretation " + std::to_string(photometric);
  }
}

std::string compressionName(uint32_t compression) {
  if (compression == uint32_t(tiff::Compression::none)) return "uncompressed";
  if (compression == uint32_t(tiff::Compression::packBits)) return "PackBits";
  return "compression " + std::to_string(compression);
}

int describeFile(const Paths& paths) {
  withInput(paths, [&](const std::vector<uint8_t>& bytes) {
    const size_t images = tiff::countImages(bytes);
    const tiff::Description d = tiff::describe(bytes);
    std::printf("%s: image 1 of %zu\n%u x %u pixels, %s, %u x %u bits%s\n%s, %s, %zu %s of %u rows\n",
                paths.input.c_str(), images, d.width, d.height, photometricName(d.photometric).c_str(),
                d.samplesPerPixel, d.bitsPerSample, d.separatePlanes ? ", in planes" : "",
                compressionName(d.compression).c_str(), d.littleEndian ? "little-endian" : "big-endian",
                d.stripOffsets.size(), d.stripOffsets.size() == 1 ? "strip" : "strips", d.rowsPerStrip);
  });
  return examples::kDone;
}

int run(int argc, char** argv) {
  CLI::App app("Encodes and decodes TIFF files, uncompressed or with PackBits.", "zortiff");
  app.footer(kExamples + examples::exitCodeHelp("TIFF"));
  Paths paths;
  tiff::Compression compression = tiff::Compression::packBits;
  CLI::App* const encodeCommand = app.add_subcommand("encode", "Make a TIFF file of a PNG, PPM, PGM or PAM file");
  encodeCommand->add_option("input", paths.input, "PNG, PPM, PGM or PAM file")->required()->option_text(" ");
  encodeCommand->add_option("output", paths.output, "TIFF file to write")->required()->option_text(" ");
  examples::addChoice<tiff::Compression>(*encodeCommand, "--compression", compression,
                                         {{"packbits", tiff::Compression::packBits}, {"none", tiff::Compression::none}},
                                         "packbits (if not given) or none");
  CLI::App* const decodeCommand = app.add_subcommand("decode", "Make a PNG, PPM, PGM or PAM file of a TIFF file");
  decodeCommand->add_option("input", paths.input, "TIFF file: its first image is decoded")
      ->required()
      ->option_text(" ");
  decodeCommand
      ->add_option("output", paths.output,
                   "file to write: its name ends in .png, .ppm, .pgm\nor .pam; CMYK stays CMYK in a PAM file alone")
      ->required()
      ->option_text(" ");
  CLI::App* const infoCommand = app.add_subcommand("info", "Say what a TIFF file holds");
  infoCommand->add_option("input", paths.input, "TIFF file")->required()->option_text(" ");
  return examples::runSubcommand(app, argc, argv,
                                 {{encodeCommand, [&] { return encodeFile(paths, compression); }},
                                  {decodeCommand, [&] { return decodeFile(paths); }},
                                  {infoCommand, [&] { return describeFile(paths); }}});
}

}  // namespace

int main(int argc, char** argv) { return examples::runProgram("zortiff", &run, argc, argv); }
