// A program of the examples, run in a directory of its own.
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <utility>

#include "common/files.h"
#include "common/image_file.h"
#include "interop/pictures.h"

namespace interop {

namespace fs = std::filesystem;

class Command : public testing::Test {
 protected:
  explicit Command(std::string program) : program_(std::move(program)), name_(fs::path(program_).filename()) {}

  void SetUp() override {
    directory_ = fs::path(testing::TempDir()) /
                 (name_ + "_" + std::string(testing::UnitTest::GetInstance()->current_test_info()->name()));
    fs::remove_all(directory_);
    fs::create_directories(directory_);
    examples::writeImage(path("in.png"), picture(70, 50, 3));
    examples::writeImage(path("grey.pgm"), picture(70, 50, 1));
  }
  void TearDown() override { fs::remove_all(directory_); }

  std::string path(const std::string& name) const { return (directory_ / name).string(); }

  int run(const std::string& arguments) {
    const std::string line = "cd '" + directory_.string() + "' && " + program_ + " " + arguments + " >out 2>err";
    const int status = std::system(line.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
  std::string message() const {
    const std::vector<uint8_t> bytes = examples::readFile(path("err"));
    return {bytes.begin(), bytes.end()};
  }

  void write(const std::string& name, std::span<const uint8_t> bytes) {
    examples::OutputFile file(path(name));
    file.write(bytes);
    file.commit();
  }

  // Fails with this exit code, one line that says this, and no file but those there before.
  void expectFailure(const std::string& arguments, int code, const std::string& says) {
    const auto files = [&] { return std::distance(fs::directory_iterator(directory_), fs::directory_iterator()); };
    run("--help");
    const auto before = files();
    EXPECT_EQ(run(arguments), code) << arguments;
    const std::string text = message();
    EXPECT_NE(text.find(says), std::string::npos) << arguments << ": " << text;
    EXPECT_EQ(text.rfind(name_ + ": ", 0), 0u) << text;
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1) << text;
    EXPECT_EQ(files(), before) << arguments;
  }

  std::string program_;
  std::string name_;
  fs::path directory_;
};

}  // namespace interop
