// zorj2k: encodes and decodes JPEG 2000 files.
#include "common/command_line.h"
#include "jpeg2k/decode_command.h"
#include "jpeg2k/encode_command.h"

namespace jpeg2k = examples::jpeg2k;

namespace {

constexpr const char* kExamples =
    "Examples:\n"
    "  zorj2k encode photo.png photo.jp2\n"
    "  zorj2k encode photo.png photo.jp2 --ratio 10 --layers 8 --progression RPCL\n"
    "  zorj2k decode photo.jp2 photo.ppm\n"
    "  zorj2k decode photo.jp2 detail.png --region 400,300,640,480\n\n";

int run(int argc, char** argv) {
  CLI::App app("Encodes and decodes JPEG 2000 files.", "zorj2k");
  app.footer(kExamples + examples::exitCodeHelp("JPEG 2000"));
  jpeg2k::EncodeCommand encode;
  jpeg2k::DecodeCommand decode;
  CLI::App* const encodeCommand = app.add_subcommand("encode", "Make a JPEG 2000 file of a PNG, PPM, PGM or PAM file");
  CLI::App* const decodeCommand = app.add_subcommand("decode", "Make a PNG, PPM, PGM or PAM file of a JPEG 2000 file");
  jpeg2k::describeEncode(*encodeCommand, encode);
  jpeg2k::describeDecode(*decodeCommand, decode);
  return examples::runSubcommand(app, argc, argv,
                                 {{encodeCommand, [&] { return jpeg2k::runEncode(encode); }},
                                  {decodeCommand, [&] { return jpeg2k::runDecode(decode); }}});
}

}  // namespace

int main(int argc, char** argv) { return examples::runProgram("zorj2k", &run, argc, argv); }
