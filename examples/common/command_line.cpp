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
  const auto report = [&](const char* what) { std::fprintf(stderr, "%s: %s\n", app.get_name().c_str(), what); };
  try {
    app.require_subcommand(1);
    app.parse(argc, argv);
    return subcommands.at(app.get_subcommands().front())();
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) return app.exit(error);
    report(error.what());
    return kBadCommandLine;
  } catch (const std::bad_alloc&) {
    report("not enough memory");
  } catch (const std::exception& error) {
    report(error.what());
  }
  return kFailed;
}

}  // namespace examples
