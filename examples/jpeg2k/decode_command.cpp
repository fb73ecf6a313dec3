#include "jpeg2k/decode_command.h"

#include <zorcore.h>

#include <cstdio>

#include "common/command_line.h"
#include "common/error.h"
#include "common/files.h"
#include "common/image_file.h"

namespace examples::jpeg2k {
namespace {

template <class AnyImage>
DecodeReport decodeAndWrite(const std::vector<uint8_t>& bytes, const DecodeOptions& options,
                            const std::string& output) {
  AnyImage image;
  const DecodeReport report = decode(bytes, options, image);
  writeImage(output, image);
  return report;
}

}  // namespace

int runDecode(const DecodeCommand& decode) {
  imageFormatOf(decode.output);  // refuses a bad name before the work
  const std::vector<uint8_t> bytes = readFile(decode.input);
  DecodeReport report;
  zorSetNumThreads(1);  // the decoder has threads of its own
  try {
    report = describe(bytes).precision == 8 ? decodeAndWrite<Image>(bytes, decode.options, decode.output)
                                            : decodeAndWrite<DeepImage>(bytes, decode.options, decode.output);
  } catch (const Error& error) {
    throw Error(decode.input + ": " + error.what());
  }
  if (report.complete()) return kDone;
  std::fprintf(stderr, "zorj2k: %s: %s\n", decode.input.c_str(), report.problem.c_str());
  return kIncomplete;
}

void describeDecode(CLI::App& command, DecodeCommand& decode) {
  DecodeOptions& options = decode.options;
  command.add_option("input", decode.input, "JP2 file or codestream")->required()->option_text(" ");
  command
      .add_option("output", decode.output,
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
  options.threads = ownGetNumThreads();
  command
      .add_option("--threads", options.threads,
                  "threads to use; one for each processor if not\ngiven; the result does not depend on it")
      ->option_text("N")
      ->check(CLI::Range(1, 1024));
}

}  // namespace examples::jpeg2k
