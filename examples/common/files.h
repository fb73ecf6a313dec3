// Whole files, read and written.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <span>
#include <string>
#include <vector>

namespace examples {

std::vector<uint8_t> readFile(const std::string& path);

// A file that appears under its name only when commit() is called, complete: until then the data goes into a temporary
// file beside it, which the destructor removes. Devices and pipes are written directly.
class OutputFile {
 public:
  explicit OutputFile(const std::string& path);
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  std::FILE* stream() { return file_; }
  void write(std::span<const uint8_t> bytes);
  void commit();

 private:
  [[noreturn]] void fail() const;

  std::string path_;
  std::string temporary_;
  std::FILE* file_ = nullptr;
};

}  // namespace examples
