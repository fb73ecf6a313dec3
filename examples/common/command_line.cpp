#include "common/command_line.h"

#include <cstdio>
#include <new>

namespace examples {

std::string exitCodeHelp(const std::string& fileKind) {
  return "Exit status:\n"
         "  0  done\n"
         "  1  failed; there is no output file\n"
         "  2  bad command line\n"
         "  3  the " +
         fileKind + " file is damaged or truncated and was decoded as far as it goes";
}

int runSubcommand(CLI::App& app, int argc, char** argv, const std::map<CLI::App*, std::function<int()>>& subcommands) {
  try {
    app.require_subcommand(1);
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) return app.exit(error);
    std::fprintf(stderr, "%s: %s\n", app.get_name().c_str(), error.what());
    return kBadCommandLine;
  }
  return subcommands.at(app.get_subcommands().front())();
}

int runProgram(const char* name, int (*program)(int argc, char** argv), int argc, char** argv) {
  try {
    return program(argc, argv);
  } catch (const std::bad_alloc&) {
    std::fprintf(stderr, "%s: not enough memory\n", name);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s: %s\n", name, error.what());
  }
  return kFailed;
}

}  // namespace examples
