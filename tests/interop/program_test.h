// What tests of the programs have in common: a directory of their own with two pictures, and runs in it.
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "common/files.h"
#include "common/image_file.h"
#include "interop/pictures.h"

namespace interop {

namespace fs = std::filesystem;

class ProgramTest : public testing::Test {
 protected:
  explicit ProgramTest(const std::string& program) : name_(fs::path(program).filename()), program_(program) {
    directory_ = fs::path(testing::TempDir()) /
                 (name_ + "_" + std::string(testing::UnitTest::GetInstance()->current_test_info()->name()));
    fs::remove_all(directory_);
    fs::create_directories(directory_);
    examples::writeImage(path("in.png"), picture(70, 50, 3));
    examples::writeImage(path("grey.pgm"), picture(70, 50, 1));
  }
  ~ProgramTest() override { fs::remove_all(directory_); }

  std::string path(const std::string& name) const { return (directory_ / name).string(); }

  int run(const std::string& arguments) const { return shell("'" + program_ + "' " + arguments + " >out 2>err"); }
  // The exit code of a command line, run in the directory.
  int shell(const std::string& line) const {
    const int status = std::system(("cd '" + directory_.string() + "' && " + line).c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
  std::string text(const std::string& name) const {
    const std::vector<uint8_t> bytes = examples::readFile(path(name));
    return {bytes.begin(), bytes.end()};
  }
  std::string message() const { return text("err"); }

  void write(const std::string& name, std::span<const uint8_t> bytes) const {
    examples::OutputFile file(path(name));
    file.write(bytes);
    file.commit();
  }

  // Fails with this exit code, one line that says this, and no file but those there before.
  void expectFailure(const std::string& arguments, int code, const std::string& says) const {
    const auto files = [&] { return std::distance(fs::directory_iterator(directory_), fs::directory_iterator()); };
    run("--help");
    const auto before = files();
    EXPECT_EQ(run(arguments), code) << arguments;
    const std::string said = message();
    EXPECT_NE(said.find(says), std::string::npos) << arguments << ": " << said;
    EXPECT_EQ(said.rfind(name_ + ": ", 0), 0u) << said;
    EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 1) << said;
    EXPECT_EQ(files(), before) << arguments;
  }

  std::string name_, program_;
  fs::path directory_;
};

}  // namespace interop
