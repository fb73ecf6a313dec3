// Prints a digest of what each export, and each thing an example codec does, writes. It must be the same at every
// instruction-set level and number of threads, which the program sees to, and from every compiler at every level of
// optimisation, which compare_builds.sh does. Exits with 1 where it is not.
#include <zorcore.h>

#include <cinttypes>
#include <cstdio>
#include <filesystem>

#include "hostile/scene.h"
#include "support/isa_levels.h"
#ifdef ZORJ_EXAMPLES
#include "codecs/codec_work.h"
#endif

namespace zorj::test {
namespace {

constexpr int kThreads[] = {1, 2, 3, 8, 16};

// FNV-1a of 64 bits.
class Digest {
 public:
  void add(const uint8_t* bytes, size_t count) {
    for (size_t i = 0; i < count; ++i) value_ = (value_ ^ bytes[i]) * 0x100000001B3u;
  }
  uint64_t value() const { return value_; }

 private:
  uint64_t value_ = 0xCBF29CE484222325u;
};

int g_differences = 0;

// Prints what digest(threads) gives, and tells where it is not the same everywhere.
template <class DigestOf>
void printDigest(const std::string& name, const DigestOf& digestOf) {
  setIsa(Isa::kPortable);
  const uint64_t expected = digestOf(1);
  std::printf("%016" PRIx64 " %s\n", expected, name.c_str());
  forEachIsa([&](Isa isa) {
    for (const int threads : kThreads) {
      if (digestOf(threads) == expected) continue;
      std::fprintf(stderr, "%s is another at %s with %d threads\n", name.c_str(), isaName(isa), threads);
      ++g_differences;
    }
  });
}

// The smaller size has less than a vector left at the end of rows, the larger is shared among threads.
void printExport(const Export& function) {
  for (const RoiSize size : {RoiSize{20, 12}, RoiSize{196, 100}}) {
    Arena arena;
    Scene scene(function, size, arena);
    printDigest(function.name + " " + std::to_string(size.width), [&](int threads) {
      zorSetNumThreads(threads);
      scene.restore();
      const int status = scene.call();
      Digest digest;
      digest.add(reinterpret_cast<const uint8_t*>(&status), sizeof status);
      for (const auto& piece : arena.pieces()) {
        if (!piece->isPrivate()) digest.add(piece->data(), piece->size());
      }
      return digest.value();
    });
  }
}

#ifdef ZORJ_EXAMPLES
void printCodecs() {
  const std::filesystem::path directory = std::filesystem::temp_directory_path() / "zorj_digests";
  std::filesystem::create_directories(directory);
  zorSetNumThreads(1);
  std::vector<std::vector<CodecWork>> works(std::size(kThreads));
  for (size_t i = 0; i < works.size(); ++i) works[i] = codecWork(kThreads[i], directory.string());
  for (size_t number = 0; number < works[0].size(); ++number) {
    printDigest(works[0][number].name, [&](int threads) {
      const size_t i = static_cast<size_t>(std::find(kThreads, std::end(kThreads), threads) - kThreads);
      const std::vector<uint8_t> bytes = works[i][number].run();
      Digest digest;
      digest.add(bytes.data(), bytes.size());
      return digest.value();
    });
  }
  std::filesystem::remove_all(directory);
}
#endif

}  // namespace
}  // namespace zorj::test

int main() {
  for (const zorj::test::Export& function : zorj::test::exports()) zorj::test::printExport(function);
#ifdef ZORJ_EXAMPLES
  zorj::test::printCodecs();
#endif
  return zorj::test::g_differences == 0 ? 0 : 1;
}
