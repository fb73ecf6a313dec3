// zorj2k: encodes and decodes JPEG 2000 files.
#include <zorcore.h>

#include <cstdio>

#include "common/command_line.h"
#include "common/error.h"
#include "common/files.h"
#include "common/image_file.h"
#include "jpeg2k/codec.h"

namespace {

using examples::addChoice;
using examples::Error;
namespace jpeg2k = examples::jpeg2k;

constexpr const char* kExamples =
    "Examples:\n"
    "  zorj2k encode photo.png photo.jp2\n"
    "  zorj2k encode photo.png photo.jp2 --ratio 10 --layers 8 --progression RPCL\n"
    "  zorj2k decode photo.jp2 photo.ppm\n"
    "  zorj2k decode photo.jp2 detail.png --region 400,300,640,480\n\n";

struct Paths {
  std::string input;
  std::string output;
};

template <class AnyImage>
jpeg2k::DecodeReport decodeAndWrite(const std::vector<uint8_t>& bytes, const jpeg2k::DecodeOptions& options,
                                    const std::string& output) {
  AnyImage image;
  const jpeg2k::DecodeReport report = jpeg2k::decode(bytes, options, image);
  examples::writeImage(output, image);
  return report;
}

int decodeFile(const Paths& paths, const jpeg2k::DecodeOptions& options) {
  examples::imageFormatOf(paths.output);  // refuses a bad name before the work
  const std::vector<uint8_t> bytes = examples::readFile(paths.input);
  jpeg2k::DecodeReport report;
  zorSetNumThreads(1);  // the decoder has threads of its own
  try {
    report = jpeg2k::describe(bytes).precision == 8 ? decodeAndWrite<examples::Image>(bytes, options, paths.output)
                                                    : decodeAndWrite<examples::DeepImage>(bytes, options, paths.output);
  } catch (const Error& error) {
    throw Error(paths.input + ": " + error.what());
  }
  if (report.complete()) return examples::kDone;
  std::fprintf(stderr, "zorj2k: %s: %s\n", paths.input.c_str(), report.problem.c_str());
  return examples::kIncomplete;
}

void addThreads(CLI::App& command, int32_t& threads) {
  command
      .add_option("--threads", threads,
                  "threads to use; one for each processor if not\ngiven; the result does not depend on it")
      ->option_text("N")
      ->check(CLI::Range(1, 1024));
}

void describeDecode(CLI::App& command, Paths& paths, jpeg2k::DecodeOptions& options) {
  command.add_option("input", paths.input, "JP2 file or codestream")->required()->option_text(" ");
  command
      .add_option("output", paths.output,
                  "file to write: its name ends in .png, .ppm, .pgm\nor .pam; CMYK stays CMYK in a PAM file, and is\n"
                  "multiplied out to RGB in others")
      ->required()
      ->option_text(" ");
  command.add_option("--reduce", options.reduce, "halve the width and height N times")
      ->option_text("N")
      ->check(CLI::Range(0, 32));
  command.add_option("--layers", options.layers, "decode N quality layers only")
      ->option_text("N")
      ->check(CLI::Range(1, 65535));
  command
      .add_option_function<std::vector<int32_t>>(
          "--region",
          [&options](const std::vector<int32_t>& numbers) {
            options.region = {numbers[0], numbers[1], numbers[2], numbers[3]};
            if (options.region.width == 0 || options.region.height == 0) {
              throw CLI::ValidationError("--region", "is empty");
            }
          },
          "decode a part of the picture: column, row, width\nand height in pixels of the full size")
      ->option_text("X,Y,W,H")
      ->delimiter(',')
      ->expected(4)
      ->check(CLI::Range(0, INT32_MAX));
  command.add_option("--tile", options.tile, "decode one tile, counted from 0 in rows")
      ->option_text("N")
      ->check(CLI::Range(0, 65534));
  addThreads(command, options.threads);
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app("Encodes and decodes JPEG 2000 files.", "zorj2k");
  app.footer(kExamples + examples::exitCodeHelp("JPEG 2000"));
  Paths paths;
  jpeg2k::DecodeOptions decodeOptions;
  decodeOptions.threads = ownGetNumThreads();
  CLI::App* const decodeCommand = app.add_subcommand("decode", "Make a PNG, PPM, PGM or PAM file of a JPEG 2000 file");
  describeDecode(*decodeCommand, paths, decodeOptions);
  return examples::runSubcommand(app, argc, argv, {{decodeCommand, [&] { return decodeFile(paths, decodeOptions); }}});
}
