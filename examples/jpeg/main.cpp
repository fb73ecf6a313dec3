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
    "Exit status: 0 done; 1 failed, no output file; 2 bad command line; 3 the JPEG file is damaged or truncated and "
    "was decoded as far as it goes.";

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
  command.add_option("input", paths.input, "PNG, PPM or PGM file")->required();
  command.add_option("output", paths.output, "JPEG file to write")->required();
  command.add_option("--quality", options.quality, "from 1 (smallest) to 100 (best)")
      ->check(CLI::Range(1, 100))
      ->capture_default_str();
  static const std::map<std::string, jpeg::Sampling> samplings = {
      {"444", jpeg::Sampling::s444}, {"422", jpeg::Sampling::s422}, {"411", jpeg::Sampling::s411}};
  command
      .add_option_function<std::string>(
          "--sampling", [&options](const std::string& name) { options.sampling = samplings.at(name); },
          "chroma sampling of colour images: 444 a sample for each pixel (the default), 422 for 2 x 1 pixels, "
          "411 for 2 x 2")
      ->option_text("444|422|411")
      ->check(CLI::IsMember(samplings));
  command.add_option("--restart", options.restartInterval, "write a restart marker every so many MCUs; 0 for none")
      ->check(CLI::Range(0, 65535))
      ->capture_default_str();
}

void describeDecode(CLI::App& command, Paths& paths) {
  command.add_option("input", paths.input, "baseline JPEG file")->required();
  command.add_option("output", paths.output, "PNG, PPM or PGM file to write; the name's end tells which")->required();
}

int run(int argc, char** argv) {
  CLI::App app("Encodes and decodes baseline JPEG files.", "zorjpeg");
  app.require_subcommand(1);
  app.footer(kFooter);
  Paths paths;
  jpeg::EncodeOptions options;
  CLI::App* const encodeCommand = app.add_subcommand("encode", "Make a JPEG file of a PNG, PPM or PGM file");
  CLI::App* const decodeCommand = app.add_subcommand("decode", "Make a PNG, PPM or PGM file of a JPEG file");
  encodeCommand->footer(kFooter);
  decodeCommand->footer(kFooter);
  describeEncode(*encodeCommand, paths, options);
  describeDecode(*decodeCommand, paths);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) return app.exit(error);
    std::fprintf(stderr, "zorjpeg: %s\n", error.what());
    return kBadCommandLine;
  }
  return *encodeCommand ? encodeFile(paths, options) : decodeFile(paths);
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
