// Everything the example codecs do, each with a picture or a file of its own: what comes out are bytes.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace zorj::test {

struct CodecWork {
  std::string name;
  std::function<std::vector<uint8_t>()> run;
};

// With so many threads where a codec takes a number. Files are written below `directory`, and removed.
std::vector<CodecWork> codecWork(int threads, const std::string& directory);

}  // namespace zorj::test
