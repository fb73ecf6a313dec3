// What the programs' command lines have in common: exit codes, messages of one line, options whose values have names.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <map>
#include <string>

namespace examples {

enum ExitCode { kDone = 0, kFailed = 1, kBadCommandLine = 2, kIncomplete = 3 };

// The end of a program's help, for exit code 3 with what is wrong with a file of this kind then.
std::string exitCodeHelp(const std::string& fileKind);

// Parses the command line, then runs the chosen subcommand by its function, which returns an exit code. Reports
// exceptions and bad command lines to the standard error as "program: what is wrong".
int runSubcommand(CLI::App& app, int argc, char** argv, const std::map<CLI::App*, std::function<int()>>& subcommands);

template <class Value>
void addChoice(CLI::App& command, const std::string& name, Value& value, const std::map<std::string, Value>& choices,
               const std::string& description) {
  command
      .add_option_function<std::string>(
          name, [&value, choices](const std::string& choice) { value = choices.at(choice); }, description)
      ->option_text("NAME")
      ->check(CLI::IsMember(choices));
}

}  // namespace examples
