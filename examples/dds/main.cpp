// zordds: encodes, decodes and describes DDS texture files.
#include <CLI/CLI.hpp>
#include <cstdio>

#include "common/command_line.h"
#include "common/error.h"
#include "common/files.h"
#include "common/image_file.h"
#include "dds/codec.h"

namespace {

using examples::Error;
using examples::Image;
namespace dds = examples::dds;

constexpr const char* kFooter =
    "Examples:\n"
    "  zordds encode photo.png photo.dds --format dxt1 --mipmaps\n"
    "  zordds decode photo.dds photo.png\n\n"
    "Exit status:\n"
    "  0  done\n"
    "  1  failed; there is no output file\n"
    "  2  bad command line";

struct Options {
  std::string input;
  std::string output;
  dds::Format format = dds::Format::dxt1;
  bool mipmaps = false;
  int level = 0;
};

// Adds the file's name to what `work` says of it.
template <class Work>
auto onFile(const std::string& path, const Work& work) {
  const std::vector<uint8_t> bytes = examples::readFile(path);
  try {
    return work(bytes);
  } catch (const Error& error) {
    throw Error(path + ": " + error.what());
  }
}

void encodeFile(const Options& options) {
  const Image image = examples::readImage(options.input, examples::Opacity::keep);
  const std::vector<uint8_t> bytes = dds::encode(image, options.format, options.mipmaps);
  examples::OutputFile file(options.output);
  file.write(bytes);
  file.commit();
}

void decodeFile(const Options& options) {
  examples::imageFormatOf(options.output);  // refuses a bad name before the work
  const Image image =
      onFile(options.input, [&](const std::vector<uint8_t>& bytes) { return dds::decode(bytes, options.level); });
  examples::writeImage(options.output, image);
}

void describeFile(const Options& options) {
  const dds::Texture texture =
      onFile(options.input, [](const std::vector<uint8_t>& bytes) { return dds::parse(bytes); });
  std::printf("%s, DirectX %s header, %d level%s\n", dds::nameOf(texture.format), texture.dx10 ? "10" : "9",
              texture.levels, texture.levels == 1 ? "" : "s");
  for (int i = 0; i < texture.levels; ++i) {
    const dds::Level level = texture.level(i);
    std::printf("level %d: %d x %d pixels, %zu bytes\n", i, level.width, level.height, level.bytes);
  }
}

void describeEncode(CLI::App& command, Options& options) {
  command.add_option("input", options.input, "PNG, PPM, PGM or PAM file")->required()->option_text(" ");
  command.add_option("output", options.output, "DDS file to write")->required()->option_text(" ");
  examples::addChoice<dds::Format>(
      command, "--format", options.format,
      {{"dxt1", dds::Format::dxt1},
       {"dxt3", dds::Format::dxt3},
       {"dxt5", dds::Format::dxt5},
       {"ycocg-dxt5", dds::Format::ycocgDxt5}},
      "dxt1 (if not given; opaque), dxt3, dxt5, or\nycocg-dxt5 (opaque; for decoders that know it)");
  command.add_flag("--mipmaps", options.mipmaps, "add the smaller levels, down to 1 x 1");
}

void describeDecode(CLI::App& command, Options& options) {
  command.add_option("input", options.input, "DDS file: DXT1, DXT3, DXT5 or BC7")->required()->option_text(" ");
  command
      .add_option("output", options.output,
                  "file to write: its name ends in .png, .ppm or .pgm;\nopacity fits .png alone")
      ->required()
      ->option_text(" ");
  command.add_option("--level", options.level, "level of the mip chain; 0, the largest, if not given")
      ->option_text("N")
      ->check(CLI::Range(0, 31));
}

int run(int argc, char** argv) {
  CLI::App app("Encodes, decodes and describes DDS texture files.", "zordds");
  app.footer(kFooter);
  Options options;
  CLI::App* const encodeCommand = app.add_subcommand("encode", "Make a DDS file of a PNG, PPM, PGM or PAM file");
  CLI::App* const decodeCommand = app.add_subcommand("decode", "Make a PNG, PPM or PGM file of a DDS file");
  CLI::App* const infoCommand = app.add_subcommand("info", "Say what a DDS file holds");
  describeEncode(*encodeCommand, options);
  describeDecode(*decodeCommand, options);
  infoCommand->add_option("input", options.input, "DDS file")->required()->option_text(" ");
  const auto done = [&](void (*work)(const Options&)) {
    return [work, &options] {
      work(options);
      return int{examples::kDone};
    };
  };
  return examples::runSubcommand(
      app, argc, argv,
      {{encodeCommand, done(&encodeFile)}, {decodeCommand, done(&decodeFile)}, {infoCommand, done(&describeFile)}});
}

}  // namespace

int main(int argc, char** argv) { return examples::runProgram("zordds", &run, argc, argv); }
