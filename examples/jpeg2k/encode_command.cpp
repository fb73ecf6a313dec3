#include "jpeg2k/encode_command.h"

#include <zorcore.h>

#include <algorithm>
#include <cctype>
#include <map>
#include <sstream>

#include "common/command_line.h"
#include "common/error.h"
#include "common/files.h"
#include "common/image_file.h"
#include "jpeg2k/codec.h"

namespace examples::jpeg2k {
namespace {

// "64x32", or "64" for a square.
Extent parseExtent(const std::string& text) {
  std::istringstream stream(text);
  Extent extent;
  char by = 'x';
  stream >> extent.width;
  extent.height = extent.width;
  if (stream && !stream.eof()) stream >> by >> extent.height;
  if (!stream || !stream.eof() || by != 'x' || extent.width < 0 || extent.height < 0)
    throw CLI::ValidationError(text + " is no size: they are given as WxH");
  return extent;
}

uint32_t parseStyle(const std::string& text) {
  static const std::map<std::string, uint32_t> kModes = {
      {"bypass", block_style::bypass},   {"reset", block_style::reset}, {"termall", block_style::termall},
      {"vcausal", block_style::vcausal}, {"pterm", block_style::pterm}, {"segsym", block_style::segsym}};
  uint32_t style = 0;
  std::istringstream stream(text);
  for (std::string name; std::getline(stream, name, ',');) {
    const auto mode = kModes.find(name);
    if (mode == kModes.end()) throw CLI::ValidationError(name + " is no mode of code-blocks");
    style |= mode->second;
  }
  return style;
}

CLI::Option* addExtent(CLI::App& command, const std::string& name, Extent& extent, const std::string& description) {
  return command
      .add_option_function<std::string>(
          name, [&extent](const std::string& text) { extent = parseExtent(text); }, description)
      ->option_text("WxH");
}

bool isCodestreamName(const std::string& path) {
  std::string lower = path;
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return lower.ends_with(".j2k") || lower.ends_with(".j2c") || lower.ends_with(".jpc");
}

void describeQuality(CLI::App& command, EncodeOptions& options) {
  CLI::Option* const lossless = command.add_flag_callback(
      "--lossless", [] {},
      "keep every sample as it is, by the 5/3 wavelet: so\nit is if no size or quality is asked for");
  CLI::Option* const ratio =
      command
          .add_option("--ratio", options.ratio,
                      "a file whose size is at most that of the samples\ndivided by R, by the 9/7 wavelet")
          ->option_text("R")
          ->check(CLI::PositiveNumber)
          ->excludes(lossless);
  command.add_option("--psnr", options.psnr, "a file with this peak signal-to-noise ratio, by the\n9/7 wavelet")
      ->option_text("DB")
      ->check(CLI::PositiveNumber)
      ->excludes(lossless)
      ->excludes(ratio);
  command
      .add_option("--layers", options.layers,
                  "quality layers: each but the last has half of the\nfile up to the end of the next one")
      ->option_text("N")
      ->check(CLI::Range(1, 65535));
}

}  // namespace

void describeEncode(CLI::App& command, EncodeCommand& encode) {
  EncodeOptions& options = encode.options;
  command.add_option("input", encode.input, "PNG, PPM, PGM or PAM file")->required()->option_text(" ");
  command
      .add_option("output", encode.output,
                  "file to write: a bare codestream if its name ends\nin .j2k, .j2c or .jpc, else a JP2 file")
      ->required()
      ->option_text(" ");
  describeQuality(command, options);
  addChoice<Progression>(
      command, "--progression", options.progression,
      {{"LRCP", Progression::lrcp},
       {"RLCP", Progression::rlcp},
       {"RPCL", Progression::rpcl},
       {"PCRL", Progression::pcrl},
       {"CPRL", Progression::cprl}},
      "what comes first in the file: LRCP (if not given)\nquality layers, RLCP and RPCL resolutions,\n"
      "PCRL places, CPRL components");
  command.add_option("--levels", options.levels, "levels of the wavelet: 0 to 32, 5 if not given")
      ->option_text("N")
      ->check(CLI::Range(0, 32));
  addExtent(command, "--block", options.block, "size of code-blocks, 64x64 if not given");
  addExtent(command, "--precinct", options.precinct, "size of precincts, as large as can be if not given");
  addExtent(command, "--tile", options.tile, "size of tiles, the whole image if not given");
  command
      .add_option_function<std::string>(
          "--mode", [&options](const std::string& text) { options.style = parseStyle(text); },
          "how code-blocks are coded, names with commas\nbetween them: bypass, reset, termall, vcausal,\npterm, segsym")
      ->option_text("NAMES");
  command.add_flag_callback(
      "--no-conversion", [&options] { options.convertColors = false; }, "code RGB as it is: a larger file");
  command.add_flag("--sop", options.sop, "markers before packets, by which decoders find their\nway through damage");
  command.add_flag("--eph", options.eph, "markers behind the headers of packets");
  options.threads = ownGetNumThreads();
  command
      .add_option("--threads", options.threads,
                  "threads to use; one for each processor if not\ngiven; the file does not depend on it")
      ->option_text("N")
      ->check(CLI::Range(1, 1024));
}

int runEncode(EncodeCommand encode) {
  encode.options.codestreamOnly = isCodestreamName(encode.output);
  zorSetNumThreads(1);  // the encoder has threads of its own
  std::vector<uint8_t> bytes;
  jpeg2k::encode(readDeepImage(encode.input), encode.options, bytes);
  OutputFile file(encode.output);
  file.write(bytes);
  file.commit();
  return kDone;
}

}  // namespace examples::jpeg2k
