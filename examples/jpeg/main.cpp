// zorjpeg: encodes and decodes JPEG files.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <map>
#include <new>

#include "common/error.h"
#include "common/files.h"
#include "common/image_file.h"
#include "jpeg/codec.h"

namespace {

using examples::Error;
using examples::Image;
namespace jpeg = examples::jpeg;

enum ExitCode { kDone = 0, kFailed = 1, kBadCommandLine = 2, kIncomplete = 3 };

constexpr const char* kFooter =
    "Examples:\n"
    "  zorjpeg encode photo.png photo.jpg --quality 85 --sampling 411\n"
    "  zorjpeg decode photo.jpg photo.ppm\n\n"
    "Exit status:\n"
    "  0  done\n"
    "  1  failed; there is no output file\n"
    "  2  bad command line\n"
    "  3  the JPEG file is damaged or truncated and was decoded as far as it goes";

struct Paths {
  std::string input;
  std::string output;
};

int encodeFile(const Paths& paths, const jpeg::EncodeOptions& options) {
  const Image image = examples::readImage(paths.input);
  std::vector<uint8_t> bytes;
  jpeg::encode(image, options, bytes);
  examples::OutputFile file(paths.output);
  file.write(bytes);
  file.commit();
  return kDone;
}

int decodeFile(const Paths& paths) {
  examples::imageFormatOf(paths.output);  // refuses a bad name before the work
  const std::vector<uint8_t> bytes = examples::readFile(paths.input);
  Image image;
  jpeg::DecodeReport report;
  try {
    report = jpeg::decode(bytes, image);
  } catch (const Error& error) {
    throw Error(paths.input + ": " + error.what());
  }
  examples::writeImage(paths.output, image);
  if (report.complete()) return kDone;
  std::fprintf(stderr, "zorjpeg: %s: %s\n", paths.input.c_str(), report.problem.c_str());
  return kIncomplete;
}

void describeEncode(CLI::App& command, Paths& paths, jpeg::EncodeOptions& options) {
  command.add_option("input", paths.input, "PNG, PPM or PGM file")->required()->option_text(" ");
  command.add_option("output", paths.output, "JPEG file to write")->required()->option_text(" ");
  command.add_option("--quality", options.quality, "1 (smallest file) to 100 (best picture); 90 if not given")
      ->option_text("N")
      ->check(CLI::Range(1, 100));
  static const std::map<std::string, jpeg::Sampling> samplings = {
      {"444", jpeg::Sampling::s444}, {"422", jpeg::Sampling::s422}, {"411", jpeg::Sampling::s411}};
  command
      .add_option_function<std::string>(
          "--sampling", [&options](const std::string& name) { options.sampling = samplings.at(name); },
          "444 (if not given), 422 or 411: a chroma sample\nfor each pixel, for 2 x 1 pixels, or for 2 x 2")
      ->option_text("S")
      ->check(CLI::IsMember(samplings));
  command
      .add_option("--restart", options.restartInterval,
                  "write a restart marker every N MCUs, which limits\nwhat damage to the file destroys")
      ->option_text("N")
      ->check(CLI::Range(0, 65535));
}

void describeDecode(CLI::App& command, Paths& paths) {
  command.add_option("input", paths.input, "baseline JPEG file")->required()->option_text(" ");
  command.add_option("output", paths.output, "file to write: its name ends in .png, .ppm or .pgm")
      ->required()
      ->option_text(" ");
}

int run(int argc, char** argv) {
  CLI::App app("Encodes and decodes baseline JPEG files.", "zorjpeg");
  app.require_subcommand(1);
  app.footer(kFooter);
  Paths paths;
  jpeg::EncodeOptions options;
  CLI::App* const encodeCommand = app.add_subcommand("encode", "Make a JPEG file of a PNG, PPM or PGM file");
  CLI::App* const decodeCommand = app.add_subcommand("decode", "Make a PNG, PPM or PGM file of a JPEG file");
  describeEncode(*encodeCommand, paths, options);
  describeDecode(*decodeCommand, paths);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) return app.exit(error);
    std::fprintf(stderr, "zorjpeg: %s\n", error.what());
    return kBadCommandLine;
  }
  return encodeCommand->parsed() ? encodeFile(paths, options) : decodeFile(paths);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run(argc, argv);
  } catch (const std::bad_alloc&) {
    std::fprintf(stderr, "zorjpeg: not enough memory\n");
  } catch (const std::exception& error) {
    std::fprintf(stderr, "zorjpeg: %s\n", error.what());
  }
  return kFailed;
}
