// The command `zorj2k encode`.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

#include "jpeg2k/encode_options.h"

namespace examples::jpeg2k {

struct EncodeCommand {
  std::string input;
  std::string output;
  EncodeOptions options;
};

// Adds the options to a subcommand; they are stored in `encode` when it is parsed.
void describeEncode(CLI::App& command, EncodeCommand& encode);
// Returns an exit code. A codestream is written where the name ends in .j2k, .j2c or .jpc, else a JP2 file.
int runEncode(EncodeCommand encode);

}  // namespace examples::jpeg2k
