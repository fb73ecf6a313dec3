// zorjpeg: encodes and decodes JPEG files.
#include <zorcore.h>

#include <cstdio>

#include "common/command_line.h"
#include "common/error.h"
#include "common/files.h"
#include "common/image_file.h"
#include "jpeg/codec.h"

namespace {

using examples::addChoice;
using examples::Error;
namespace jpeg = examples::jpeg;

constexpr const char* kExamples =
    "Examples:\n"
    "  zorjpeg encode photo.png photo.jpg --quality 85 --sampling 420 --progressive\n"
    "  zorjpeg encode scan.pgm scan.jpg --lossless 4\n"
    "  zorjpeg decode photo.jpg photo.ppm\n"
    "  zorjpeg decode photo.jpg thumbnail.png --scale 1/8\n\n";

struct Paths {
  std::string input;
  std::string output;
};

int encodeFile(const Paths& paths, const std::string& script, jpeg::EncodeOptions options) {
  if (!script.empty()) {
    const std::vector<uint8_t> text = examples::readFile(script);
    try {
      options.script = jpeg::parseScript({text.begin(), text.end()});
    } catch (const Error& error) {
      throw Error(script + ": " + error.what());
    }
    options.progressive = true;
  }
  std::vector<uint8_t> bytes;
  if (options.predictor > 0 || options.precision > 8) {
    jpeg::encode(examples::readDeepImage(paths.input), options, bytes);
  } else {
    jpeg::encode(examples::readImage(paths.input), options, bytes);
  }
  examples::OutputFile file(paths.output);
  file.write(bytes);
  file.commit();
  return examples::kDone;
}

template <class AnyImage>
jpeg::DecodeReport decodeAndWrite(const std::vector<uint8_t>& bytes, const jpeg::DecodeOptions& options,
                                  const std::string& output) {
  AnyImage image;
  const jpeg::DecodeReport report = jpeg::decode(bytes, options, image);
  examples::writeImage(output, image);
  return report;
}

int decodeFile(const Paths& paths, const jpeg::DecodeOptions& options) {
  examples::imageFormatOf(paths.output);  // refuses a bad name before the work
  const std::vector<uint8_t> bytes = examples::readFile(paths.input);
  jpeg::DecodeReport report;
  zorSetNumThreads(1);  // the decoder has threads of its own
  try {
    if (jpeg::describe(bytes).precision == 8) {
      report = decodeAndWrite<examples::Image>(bytes, options, paths.output);
    } else {
      report = decodeAndWrite<examples::DeepImage>(bytes, options, paths.output);
    }
  } catch (const Error& error) {
    throw Error(paths.input + ": " + error.what());
  }
  if (report.complete()) return examples::kDone;
  std::fprintf(stderr, "zorjpeg: %s: %s\n", paths.input.c_str(), report.problem.c_str());
  return examples::kIncomplete;
}

void describeEncode(CLI::App& command, Paths& paths, std::string& script, jpeg::EncodeOptions& options) {
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
  command.add_flag("--optimize", options.optimize, "make Huffman tables for the image: a smaller file");
  CLI::Option* const progressive =
      command.add_flag("--progressive", options.progressive, "scans of growing detail: a smaller file still");
  CLI::Option* const scriptOption =
      command
          .add_option("--script", script,
                      "progressive, with the scans of this file, one on\na line: components: first-last, high, low;"
                      "\nfor example 0,1,2: 0-0, 0, 1;")
          ->option_text("FILE");
  CLI::Option* const precision =
      command.add_option("--precision", options.precision, "8 (if not given) or 12 bits a sample")
          ->option_text("N")
          ->check(CLI::IsMember({8, 12}))
          ->excludes(progressive)
          ->excludes(scriptOption);
  CLI::Option* const lossless =
      command
          .add_option(
              "--lossless", options.predictor,
              "lossless, 2 to 16 bits a sample, by this predictor\nof 1 to 7: 1 left, 2 above, 4 left + above -\n"
              "above left, 7 the mean of left and above, ...")
          ->option_text("PREDICTOR")
          ->check(CLI::Range(1, 7))
          ->excludes(progressive)
          ->excludes(scriptOption)
          ->excludes(precision);
  command.add_option("--point-transform", options.pointTransform, "with --lossless: drop the N lowest bits")
      ->option_text("N")
      ->check(CLI::Range(0, 15))
      ->needs(lossless);
}

void describeDecode(CLI::App& command, Paths& paths, jpeg::DecodeOptions& options) {
  command.add_option("input", paths.input, "JPEG file")->required()->option_text(" ");
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

}  // namespace

int main(int argc, char** argv) {
  CLI::App app("Encodes and decodes JPEG files.", "zorjpeg");
  app.footer(kExamples + examples::exitCodeHelp("JPEG"));
  Paths paths;
  std::string script;
  jpeg::EncodeOptions encodeOptions;
  jpeg::DecodeOptions decodeOptions;
  decodeOptions.threads = ownGetNumThreads();
  CLI::App* const encodeCommand = app.add_subcommand("encode", "Make a JPEG file of a PNG, PPM, PGM or PAM file");
  CLI::App* const decodeCommand = app.add_subcommand("decode", "Make a PNG, PPM, PGM or PAM file of a JPEG file");
  describeEncode(*encodeCommand, paths, script, encodeOptions);
  describeDecode(*decodeCommand, paths, decodeOptions);
  return examples::runSubcommand(app, argc, argv,
                                 {{encodeCommand, [&] { return encodeFile(paths, script, encodeOptions); }},
                                  {decodeCommand, [&] { return decodeFile(paths, decodeOptions); }}});
}
