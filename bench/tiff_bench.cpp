// TIFF rows: PackBits against libtiff, which packs and unpacks strips in memory through its public interface, and split
// and join against a copy of as many bytes.
#include <tiffio.h>
#include <zorj.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/compare.h"

namespace zorj::bench {
namespace {

using Bytes = std::vector<uint8_t>;
constexpr int32_t kRowBytes = 3000, kRows = 64;
constexpr int32_t kStripBytes = kRowBytes * kRows, kPackedBytes = kStripBytes + kStripBytes / 64;

// A TIFF file in memory.
struct MemoryFile {
  Bytes bytes;
  uint64_t at = 0;
};

tmsize_t readFile(thandle_t handle, void* to, tmsize_t count) {
  auto& file = *static_cast<MemoryFile*>(handle);
  const auto left = static_cast<tmsize_t>(file.bytes.size() - std::min<uint64_t>(file.at, file.bytes.size()));
  const tmsize_t read = std::min(count, left);
  std::memcpy(to, file.bytes.data() + file.at, static_cast<size_t>(read));
  file.at += static_cast<uint64_t>(read);
  return read;
}
tmsize_t writeFile(thandle_t handle, void* from, tmsize_t count) {
  auto& file = *static_cast<MemoryFile*>(handle);
  file.bytes.resize(std::max<size_t>(file.bytes.size(), file.at + static_cast<size_t>(count)));
  std::memcpy(file.bytes.data() + file.at, from, static_cast<size_t>(count));
  file.at += static_cast<uint64_t>(count);
  return count;
}
toff_t seekFile(thandle_t handle, toff_t offset, int whence) {
  auto& file = *static_cast<MemoryFile*>(handle);
  file.at = offset + (whence == SEEK_CUR ? file.at : whence == SEEK_END ? file.bytes.size() : 0);
  return file.at;
}
toff_t sizeOfFile(thandle_t handle) { return static_cast<MemoryFile*>(handle)->bytes.size(); }
int closeFile(thandle_t) { return 0; }
int mapFile(thandle_t handle, void** base, toff_t* size) {
  auto& file = *static_cast<MemoryFile*>(handle);
  *base = file.bytes.data();
  *size = file.bytes.size();
  return 1;
}
void unmapFile(thandle_t, void*, toff_t) {}

struct CloseTiff {
  void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};
using Tiff = std::unique_ptr<TIFF, CloseTiff>;

// Reading maps the file, so that libtiff decodes the strip where it lies.
Tiff openTiff(MemoryFile& file, const char* mode) {
  return Tiff(TIFFClientOpen("rows", mode, &file, &readFile, &writeFile, &seekFile, &closeFile, &sizeOfFile, &mapFile,
                             &unmapFile));
}

// The peer's file of one strip that is written again and again.
struct Peer {
  MemoryFile file;
  Tiff tiff;
};

std::shared_ptr<Peer> peerWriter() {
  auto peer = std::make_shared<Peer>();
  peer->file.bytes.reserve(2 * kPackedBytes);
  peer->tiff = openTiff(peer->file, "w");
  TIFF* const tiff = peer->tiff.get();
  TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, kRowBytes);
  TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, kRows);
  TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, kRows);
  TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
  TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 1);
  TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
  TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_PACKBITS);
  TIFFWriteBufferSetup(tiff, nullptr, 2 * kPackedBytes);
  return peer;
}

void compareRows(const std::string& name, const std::shared_ptr<Bytes>& strip) {
  const auto packed = std::make_shared<Bytes>(kPackedBytes);
  const auto pack = [=] {
    int32_t position = 0;
    for (int32_t y = 0; y < kRows; ++y) {
      zoriPackBitsRow_TIFF_8u_C1(strip->data() + y * kRowBytes, kRowBytes, packed->data(), &position, kPackedBytes);
    }
    return position;
  };
  const auto writer = peerWriter();
  const auto peerPack = [=] { TIFFWriteEncodedStrip(writer->tiff.get(), 0, strip->data(), kStripBytes); };
  auto packVariants = atEveryLevel(pack);
  packVariants.push_back({"libtiff", peerPack});
  compare("Pack " + name, kStripBytes, "bytes", packVariants);

  // Each unpacks a strip that libtiff packed.
  const auto reader = std::make_shared<Peer>();
  {
    const auto once = peerWriter();
    TIFFWriteEncodedStrip(once->tiff.get(), 0, strip->data(), kStripBytes);
    TIFFWriteDirectory(once->tiff.get());
    TIFFFlush(once->tiff.get());
    reader->file.bytes = once->file.bytes;
  }
  reader->tiff = openTiff(reader->file, "r");
  const auto source = std::make_shared<Bytes>(kPackedBytes), out = std::make_shared<Bytes>(kStripBytes);
  const auto length =
      static_cast<int32_t>(TIFFReadRawStrip(reader->tiff.get(), 0, source->data(), tmsize_t{kPackedBytes}));
  const auto unpack = [=] {
    int32_t position = 0;
    for (int32_t y = 0; y < kRows; ++y) {
      zoriUnpackBitsRow_TIFF_8u_C1(source->data(), &position, length, out->data() + y * kRowBytes, kRowBytes);
    }
  };
  auto unpackVariants = atEveryLevel(unpack);
  unpackVariants.push_back(
      {"libtiff", [=] { TIFFReadEncodedStrip(reader->tiff.get(), 0, out->data(), tmsize_t{kStripBytes}); }});
  compare("Unpack " + name, kStripBytes, "bytes", unpackVariants);
  unpack();
  const bool ours = *out == *strip;
  TIFFReadEncodedStrip(reader->tiff.get(), 0, out->data(), tmsize_t{kStripBytes});
  if (!ours || *out != *strip) throw std::runtime_error("the strips of " + name + " differ");
}

using Fill = std::function<uint8_t(std::mt19937&, int32_t x, int32_t y)>;

std::shared_ptr<Bytes> strip(const Fill& fill) {
  std::mt19937 random(1);
  auto bytes = std::make_shared<Bytes>(kStripBytes);
  for (int32_t i = 0; i < kStripBytes; ++i) {
    (*bytes)[static_cast<size_t>(i)] = fill(random, i % kRowBytes, i / kRowBytes);
  }
  return bytes;
}

}  // namespace

void registerComparisons() {
  TIFFSetWarningHandler(nullptr);
  // Smooth brightness with the noise of a sensor: equal neighbours now and then, three in a row rarely.
  compareRows("photographic", strip([](std::mt19937& random, int32_t x, int32_t y) {
                std::normal_distribution<double> noise(0, 2);
                return static_cast<uint8_t>(128 + 90 * std::sin(x / 150.0 + y / 40.0) + noise(random));
              }));
  compareRows("literals", strip([](std::mt19937&, int32_t x, int32_t) { return static_cast<uint8_t>(x); }));
  compareRows("blank", strip([](std::mt19937&, int32_t, int32_t) { return uint8_t{255}; }));
  // Lines of text on white: runs and grey edges of a few pixels in turn, and blank rows between.
  auto ink = std::make_shared<int>(0);
  compareRows("scanned page", strip([ink](std::mt19937& random, int32_t, int32_t y) {
                if (y % 16 < 5) return uint8_t{255};
                if (random() % 8 == 0) *ink = static_cast<int>(random() % 4);
                if (*ink == 3) return static_cast<uint8_t>(random());
                return static_cast<uint8_t>(*ink == 0 ? 0 : 255);
              }));
  // Short runs and short literals in turn, of no pattern.
  auto left = std::make_shared<int>(0);
  auto value = std::make_shared<uint8_t>();
  compareRows("short runs", strip([=](std::mt19937& random, int32_t, int32_t) {
                if ((*left)-- == 0) {
                  *left = static_cast<int>(random() % 8);
                  *value = static_cast<uint8_t>(random());
                }
                return *value;
              }));

  constexpr int32_t kWidth = 4000;
  const auto samples = std::make_shared<std::vector<uint16_t>>(kWidth);
  const auto high = std::make_shared<Bytes>(kWidth), low = std::make_shared<Bytes>(kWidth);
  const auto source = std::make_shared<Bytes>(2 * kWidth), target = std::make_shared<Bytes>(2 * kWidth);
  const Variant memcpyOfAsMany = {"memcpy", [=] { std::memcpy(target->data(), source->data(), 2 * kWidth); }};
  auto split = atEveryLevel([=] {
    uint8_t* const planes[2] = {high->data(), low->data()};
    zoriSplitRow_TIFF_16u8u_C1(samples->data(), planes, kWidth);
  });
  split.push_back(memcpyOfAsMany);
  compare("Split row of 4000", 2 * kWidth, "bytes", split);
  auto join = atEveryLevel([=] {
    const uint8_t* const planes[2] = {high->data(), low->data()};
    zoriJoinRow_TIFF_8u16u_C1(planes, samples->data(), kWidth);
  });
  join.push_back(memcpyOfAsMany);
  compare("Join row of 4000", 2 * kWidth, "bytes", join);
}

}  // namespace zorj::bench
