// zorjpeg: encodes and decodes JPEG files.
#include <zorcore.h>

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
    "  zorjpeg encode photo.png photo.jpg --quality 85 --sampling 420\n"
    "  zorjpeg decode photo.jpg photo.ppm\n"
    "  zorjpeg decode photo.jpg thumbnail.png --scale 1/8\n\n"
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

int decodeFile(const Paths& paths, const jpeg::DecodeOptions& options) {
  examples::imageFormatOf(paths.output);  // refuses a bad name before the work
  const std::vector<uint8_t> bytes = examples::readFile(paths.input);
  Image image;
  jpeg::DecodeReport report;
  zorSetNumThreads(1);  // the decoder has threads of its own
  try {
    report = jpeg::decode(bytes, options, image);
  } catch (const Error& error) {
    throw Error(paths.input + ": " + error.what());
  }
  examples::writeImage(paths.output, image);
  if (report.complete()) return kDone;
  std::fprintf(stderr, "zorjpeg: %s: %s\n", paths.input.c_str(), report.problem.c_str());
  return kIncomplete;
}

// An option whose values have names.
template <class Value>
void addChoice(CLI::App& command, const std::string& name, Value& value, const std::map<std::string, Value>& choices,
               const std::string& description) {
  command
      .add_option_function<std::string>(
          name, [&value, choices](const std::string& choice) { value = choices.at(choice); }, description)
      ->option_text("NAME")
      ->check(CLI::IsMember(choices));
}

void describeEncode(CLI::App& command, Paths& paths, jpeg::EncodeOptions& options) {
  command.add_option("input", paths.input, "PNG, PPM, PGM or PAM file")->required()->option_text(" ");
  command.add_option("output", paths.output, "JPEG file to write")->required()->option_text(" ");
  command.add_option("--quality", options.quality, "1 (smallest file) to 100 (best picture); 90 if not given")
      ->option_text("N")
      ->check(CLI::Range(1, 100));
  addChoice<jpeg::Sampling>(
      command, "--sampling", options.sampling,
      {{"444", jpeg::Sampling::s444},
       {"422", jpeg::Sampling::s422},
       {"420", jpeg::Sampling::s420},
       {"411", jpeg::Sampling::s420}},
      "444 (if not given), 422 or 420: a chroma sample\nfor each pixel, for 2 x 1 pixels, or for 2 x 2;\n"
      "411, the library's name for it, means 420 too");
  command.add_flag_callback(
      "--no-conversion", [&options] { options.convertColors = false; },
      "code RGB or CMYK as it is, not as YCbCr or YCCK:\na larger file; it is always 444");
  command
      .add_option("--restart", options.restartInterval,
                  "write a restart marker every N MCUs, which limits\nwhat damage to the file destroys")
      ->option_text("N")
      ->check(CLI::Range(0, 65535));
}

void describeDecode(CLI::App& command, Paths& paths, jpeg::DecodeOptions& options) {
  command.add_option("input", paths.input, "baseline JPEG file")->required()->option_text(" ");
  command
      .add_option("output", paths.output,
                  "file to write: its name ends in .png, .ppm, .pgm\nor .pam; CMYK stays CMYK in a PAM file, and is\n"
                  "multiplied out to RGB in others: without colour\nmanagement, (255 - ink) (255 - K) / 255")
      ->required()
      ->option_text(" ");
  addChoice<jpeg::Upsampling>(command, "--upsample", options.upsampling,
                              {{"triangle", jpeg::Upsampling::triangle}, {"box", jpeg::Upsampling::box}},
                              "triangle (if not given): interpolate chroma that\nseveral pixels share; box: repeat it");
  addChoice<int32_t>(command, "--scale", options.scale, {{"1", 1}, {"1/2", 2}, {"1/4", 4}, {"1/8", 8}},
                     "1 (if not given), 1/2, 1/4 or 1/8 of the width\nand height");
  command
      .add_option("--threads", options.threads,
                  "threads to use; one for each processor if not\ngiven; the result does not depend on it")
      ->option_text("N")
      ->check(CLI::Range(1, 1024));
}

int run(int argc, char** argv) {
  CLI::App app("Encodes and decodes baseline JPEG files.", "zorjpeg");
  app.require_subcommand(1);
  app.footer(kFooter);
  Paths paths;
  jpeg::EncodeOptions encodeOptions;
  jpeg::DecodeOptions decodeOptions;
  decodeOptions.threads = ownGetNumThreads();
  CLI::App* const encodeCommand = app.add_subcommand("encode", "Make a JPEG file of a PNG, PPM, PGM or PAM file");
  CLI::App* const decodeCommand = app.add_subcommand("decode", "Make a PNG, PPM, PGM or PAM file of a JPEG file");
  describeEncode(*encodeCommand, paths, encodeOptions);
  describeDecode(*decodeCommand, paths, decodeOptions);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) return app.exit(error);
    std::fprintf(stderr, "zorjpeg: %s\n", error.what());
    return kBadCommandLine;
  }
  return encodeCommand->parsed() ? encodeFile(paths, encodeOptions) : decodeFile(paths, decodeOptions);
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
