// The command `zorj2k decode`.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

#include "jpeg2k/codec.h"

namespace examples::jpeg2k {

struct DecodeCommand {
  std::string input;
  std::string output;
  DecodeOptions options;
};

// Adds the options to a subcommand; they are stored in `decode` when it is parsed.
void describeDecode(CLI::App& command, DecodeCommand& decode);
// Returns an exit code.
int runDecode(const DecodeCommand& decode);

}  // namespace examples::jpeg2k
