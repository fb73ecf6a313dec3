#include "common/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <memory>

#include "common/error.h"

namespace examples {
namespace fs = std::filesystem;

std::vector<uint8_t> readFile(const std::string& path) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"), std::fclose);
  if (!file) throw Error(path + ": " + std::strerror(errno));
  std::vector<uint8_t> bytes;
  uint8_t piece[1 << 16];
  while (const size_t count = std::fread(piece, 1, sizeof piece, file.get())) {
    bytes.insert(bytes.end(), piece, piece + count);
  }
  if (std::ferror(file.get())) throw Error(path + ": " + std::strerror(errno));
  return bytes;
}

OutputFile::OutputFile(const std::string& path) : path_(path) {
  std::error_code ignored;
  const fs::file_status status = fs::status(path, ignored);
  if (fs::exists(status) && !fs::is_regular_file(status)) {
    file_ = std::fopen(path.c_str(), "wb");
  } else {
    // Through a symbolic link: the file it leads to is replaced, not the link.
    if (fs::exists(status)) path_ = fs::canonical(path, ignored).string();
    temporary_ = path_ + "." + std::to_string(getpid()) + ".part";
    const int descriptor = open(temporary_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (descriptor >= 0) file_ = fdopen(descriptor, "wb");
  }
  if (!file_) fail();
}

OutputFile::~OutputFile() {
  if (file_) std::fclose(file_);
  if (!temporary_.empty()) unlink(temporary_.c_str());
}

void OutputFile::write(std::span<const uint8_t> bytes) {
  if (!bytes.empty() && std::fwrite(bytes.data(), 1, bytes.size(), file_) != bytes.size()) fail();
}

void OutputFile::commit() {
  std::FILE* const file = file_;
  file_ = nullptr;
  const bool written = !std::ferror(file);
  if (std::fclose(file) != 0 || !written) fail();
  if (!temporary_.empty() && std::rename(temporary_.c_str(), path_.c_str()) != 0) fail();
  temporary_.clear();
}

void OutputFile::fail() const { throw Error(path_ + ": cannot be written: " + std::strerror(errno)); }

}  // namespace examples
