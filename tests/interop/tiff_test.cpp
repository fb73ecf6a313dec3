// zortiff's files against libtiff, in both directions; damaged files; and the program itself.
#include <tiffio.h>
#include <zorj.h>

#include <array>
#include <cstring>
#include <memory>
#include <set>

#include "common/error.h"
#include "interop/pictures.h"
#include "interop/program_test.h"
#include "tiff/codec.h"
#include "tiff/directory.h"

namespace interop {
namespace {

namespace tiff = examples::tiff;
using examples::Error;
using tiff::Compression;

// Rows of noise, of runs and of both, which make all kinds of packets.
DeepImage page(int32_t width, int32_t height, int32_t channels, int32_t precision) {
  DeepImage image = deepPicture(width, height, channels, precision);
  const int32_t row = width * channels;
  for (int32_t y = 0; y < height; ++y) {
    if (y % 4 == 0) std::fill_n(image.at(0, y), row, image.samples[0]);
    if (y % 4 == 1) {
      for (int32_t i = 0; i < row; ++i) image.at(0, y)[i] = image.at(0, y)[i - i % (1 + i / 7 % 5)];
    }
  }
  return image;
}

struct PeerOptions {
  uint16_t compression = COMPRESSION_PACKBITS;
  const char* byteOrder = "l";
  uint32_t rowsPerStrip = 3;
  bool separatePlanes = false;
  bool whiteIsZero = false;
  int32_t opacityChannels = 0;
};

using TiffFile = std::unique_ptr<TIFF, decltype(&TIFFClose)>;

// Samples as libtiff takes them: of their own size, in the processor's byte order.
std::vector<uint8_t> packed(const std::vector<uint16_t>& samples, int32_t precision) {
  if (precision == 8) return {samples.begin(), samples.end()};
  const auto* const bytes = reinterpret_cast<const uint8_t*>(samples.data());
  return {bytes, bytes + 2 * samples.size()};
}

void peerWrite(const std::string& path, const DeepImage& image, const PeerOptions& options) {
  const TiffFile file(TIFFOpen(path.c_str(), (std::string("w") + options.byteOrder).c_str()), &TIFFClose);
  ASSERT_TRUE(file);
  const int32_t channels = image.channels + options.opacityChannels;
  TIFFSetField(file.get(), TIFFTAG_IMAGEWIDTH, image.width);
  TIFFSetField(file.get(), TIFFTAG_IMAGELENGTH, image.height);
  TIFFSetField(file.get(), TIFFTAG_BITSPERSAMPLE, image.precision);
  TIFFSetField(file.get(), TIFFTAG_SAMPLESPERPIXEL, channels);
  TIFFSetField(file.get(), TIFFTAG_COMPRESSION, options.compression);
  TIFFSetField(file.get(), TIFFTAG_ROWSPERSTRIP, options.rowsPerStrip);
  TIFFSetField(file.get(), TIFFTAG_PLANARCONFIG, options.separatePlanes ? PLANARCONFIG_SEPARATE : PLANARCONFIG_CONTIG);
  const uint16_t grey = options.whiteIsZero ? PHOTOMETRIC_MINISWHITE : PHOTOMETRIC_MINISBLACK;
  const uint16_t color = image.channels == 3 ? PHOTOMETRIC_RGB : PHOTOMETRIC_SEPARATED;
  TIFFSetField(file.get(), TIFFTAG_PHOTOMETRIC, image.channels == 1 ? grey : color);
  const uint16_t opacity = EXTRASAMPLE_UNASSALPHA;
  if (options.opacityChannels > 0) TIFFSetField(file.get(), TIFFTAG_EXTRASAMPLES, 1, &opacity);
  const int32_t planes = options.separatePlanes ? channels : 1;
  for (int32_t plane = 0; plane < planes; ++plane) {
    for (int32_t y = 0; y < image.height; ++y) {
      std::vector<uint16_t> samples;
      for (int32_t x = 0; x < image.width; ++x) {
        for (int32_t c = plane; c < plane + channels / planes; ++c) {
          samples.push_back(c < image.channels ? image.at(x, y)[c] : static_cast<uint16_t>(x));
        }
      }
      std::vector<uint8_t> row = packed(samples, image.precision);
      ASSERT_EQ(TIFFWriteScanline(file.get(), row.data(), static_cast<uint32_t>(y), static_cast<uint16_t>(plane)), 1);
    }
  }
}

uint32_t fieldOf(TIFF* file, uint32_t tag) {
  uint16_t value = 0;
  EXPECT_EQ(TIFFGetField(file, tag, &value), 1) << tag;
  return value;
}

DeepImage peerRead(const std::string& path) {
  const TiffFile file(TIFFOpen(path.c_str(), "r"), &TIFFClose);
  if (!file) return {};
  uint32_t width = 0, height = 0;
  TIFFGetField(file.get(), TIFFTAG_IMAGEWIDTH, &width);
  TIFFGetField(file.get(), TIFFTAG_IMAGELENGTH, &height);
  const auto channels = static_cast<int32_t>(fieldOf(file.get(), TIFFTAG_SAMPLESPERPIXEL));
  DeepImage image(static_cast<int32_t>(width), static_cast<int32_t>(height), channels);
  image.precision = static_cast<int32_t>(fieldOf(file.get(), TIFFTAG_BITSPERSAMPLE));
  const std::array<uint32_t, 5> photometric = {0, PHOTOMETRIC_MINISBLACK, 0, PHOTOMETRIC_RGB, PHOTOMETRIC_SEPARATED};
  EXPECT_EQ(fieldOf(file.get(), TIFFTAG_PHOTOMETRIC), photometric[static_cast<size_t>(channels)]);
  std::vector<uint8_t> row(static_cast<size_t>(TIFFScanlineSize(file.get())));
  for (int32_t y = 0; y < image.height; ++y) {
    EXPECT_EQ(TIFFReadScanline(file.get(), row.data(), static_cast<uint32_t>(y), 0), 1);
    if (image.precision == 8) {
      std::copy(row.begin(), row.end(), image.at(0, y));
    } else {
      std::memcpy(image.at(0, y), row.data(), row.size());
    }
  }
  return image;
}

void expectSame(const DeepImage& ours, const DeepImage& theirs) {
  ASSERT_EQ(ours.width, theirs.width);
  ASSERT_EQ(ours.height, theirs.height);
  ASSERT_EQ(ours.channels, theirs.channels);
  EXPECT_EQ(ours.precision, theirs.precision);
  EXPECT_EQ(ours.samples, theirs.samples);
}

std::vector<uint8_t> encoded(const DeepImage& image, Compression compression = Compression::packBits) {
  std::vector<uint8_t> file;
  tiff::encode(image, compression, file);
  return file;
}

class Tiff : public ProgramTest {
 protected:
  Tiff() : ProgramTest(ZORTIFF_PROGRAM) {
    TIFFSetWarningHandler(nullptr);
    TIFFSetErrorHandler(nullptr);
  }

  // Sizes from a pixel to several strips, of all kinds of samples.
  template <class Check>
  static void forEachKind(const Check& check) {
    std::vector<Size> sizes = oddSizes();
    sizes.push_back({700, 190});
    for (const Size size : sizes) {
      for (const int32_t channels : {1, 3, 4}) {
        for (const int32_t precision : {8, 16}) {
          SCOPED_TRACE(testing::Message()
                       << size.width << " x " << size.height << " x " << channels << " of " << precision << " bits");
          check(page(size.width, size.height, channels, precision));
        }
      }
    }
  }
};

TEST_F(Tiff, LibtiffReadsWhatItWrites) {
  forEachKind([&](const DeepImage& image) {
    for (const Compression compression : {Compression::packBits, Compression::none}) {
      write("a.tif", encoded(image, compression));
      expectSame(peerRead(path("a.tif")), image);
    }
  });
  EXPECT_EQ(shell("tiffinfo -D a.tif >out 2>err"), 0);
  EXPECT_EQ(message(), "");
}

TEST_F(Tiff, ReadsWhatLibtiffWrites) {
  forEachKind([&](const DeepImage& image) {
    PeerOptions options;
    for (const uint16_t compression : {COMPRESSION_PACKBITS, COMPRESSION_NONE}) {
      for (const char* byteOrder : {"l", "b"}) {
        for (const bool separatePlanes : {false, true}) {
          options.compression = compression;
          options.byteOrder = byteOrder;
          options.separatePlanes = separatePlanes;
          options.rowsPerStrip = options.rowsPerStrip % 17 + 7;
          options.opacityChannels = 1 - options.opacityChannels;
          peerWrite(path("a.tif"), image, options);
          DeepImage decoded;
          EXPECT_EQ(tiff::decode(examples::readFile(path("a.tif")), decoded).problem, "");
          expectSame(decoded, image);
        }
      }
    }
  });
  DeepImage image = page(40, 30, 1, 16), decoded;
  PeerOptions options;
  options.whiteIsZero = true;
  peerWrite(path("a.tif"), image, options);
  EXPECT_TRUE(tiff::decode(examples::readFile(path("a.tif")), decoded).complete());
  for (uint16_t& sample : image.samples) sample = static_cast<uint16_t>(65535 - sample);
  expectSame(decoded, image);
}

TEST_F(Tiff, ReadsWhatTiffcpPacks) {
  for (const int32_t precision : {8, 16}) {
    const DeepImage image = page(233, 120, 3, precision);
    write("a.tif", encoded(image, Compression::none));
    for (const char* options : {"-r 1", "-r 50 -B", precision == 8 ? "-L -p separate" : "-L"}) {
      ASSERT_EQ(shell(std::string("tiffcp -c packbits ") + options + " a.tif b.tif"), 0);
      DeepImage decoded;
      EXPECT_EQ(tiff::decode(examples::readFile(path("b.tif")), decoded).problem, "");
      expectSame(decoded, image);
    }
  }
}

TEST_F(Tiff, ScalesOtherPrecisions) {
  for (const int32_t precision : {1, 5, 12}) {
    const DeepImage image = page(19, 11, 3, precision);
    DeepImage decoded;
    tiff::decode(encoded(image), decoded);
    expectSame(decoded, examples::withPrecision<uint16_t>(image, precision > 8 ? 16 : 8));
  }
}

// What the split is for: the high bytes of a smooth picture pack, while its samples do not.
TEST_F(Tiff, SplitRowsPackBetter) {
  const int32_t width = 500;
  std::vector<uint16_t> row(width), joined(width);
  for (int32_t x = 0; x < width; ++x) row[static_cast<size_t>(x)] = static_cast<uint16_t>(12 * x + x % 2 * 5);
  std::vector<uint8_t> high(width), low(width), strip(4 * width);
  uint8_t* const planes[2] = {high.data(), low.data()};
  ASSERT_EQ(zoriSplitRow_TIFF_16u8u_C1(row.data(), planes, width), StatusOk);
  const auto capacity = static_cast<int32_t>(strip.size());
  int32_t whole = 0, split = 0, position = 0;
  ASSERT_EQ(zoriPackBitsRow_TIFF_8u_C1(reinterpret_cast<const uint8_t*>(row.data()), 2 * width, strip.data(), &whole,
                                       capacity),
            StatusOk);
  for (const uint8_t* plane : planes) {
    ASSERT_EQ(zoriPackBitsRow_TIFF_8u_C1(plane, width, strip.data(), &split, capacity), StatusOk);
  }
  EXPECT_LT(split, whole * 3 / 4);
  std::vector<uint8_t> unpacked(2 * width);
  const uint8_t* const halves[2] = {unpacked.data(), unpacked.data() + width};
  for (int32_t plane = 0; plane < 2; ++plane) {
    ASSERT_EQ(zoriUnpackBitsRow_TIFF_8u_C1(strip.data(), &position, split, unpacked.data() + plane * width, width),
              StatusOk);
  }
  EXPECT_EQ(position, split);
  ASSERT_EQ(zoriJoinRow_TIFF_8u16u_C1(halves, joined.data(), width), StatusOk);
  EXPECT_EQ(joined, row);
}

// A file of ours whose fields can be changed.
struct Patched {
  explicit Patched(std::vector<uint8_t> file) : bytes(std::move(file)) {}

  uint32_t at(size_t offset, size_t size) const {
    uint32_t value = 0;
    for (size_t i = size; i-- > 0;) value = value << 8 | bytes[offset + i];
    return value;
  }
  void set(size_t offset, size_t size, uint32_t value) {
    for (size_t i = 0; i < size; ++i) bytes[offset + i] = static_cast<uint8_t>(value >> (8 * i));
  }
  size_t directory() const { return at(4, 4); }
  size_t entry(tiff::Tag tag) const {
    size_t offset = directory() + 2;
    while (at(offset, 2) != tag) offset += 12;
    return offset;
  }
  // The n-th value of a field.
  size_t value(tiff::Tag tag, size_t n = 0) const {
    const size_t field = entry(tag), size = at(field + 2, 2) == tiff::kShort ? 2 : 4;
    return (at(field + 4, 4) * size <= 4 ? field + 8 : at(field + 8, 4)) + n * size;
  }

  std::vector<uint8_t> bytes;
};

std::string errorOf(const std::vector<uint8_t>& file) {
  try {
    DeepImage image;
    tiff::decode(file, image);
    tiff::countImages(file);
  } catch (const Error& error) {
    return error.what();
  }
  return "";
}

// Each strip a row that lies at the end of the same megabyte of nothing: those that a program can be expected to read
// are read.
TEST_F(Tiff, StripsInOnePlace) {
  const auto damagedOf = [](uint32_t strips) {
    constexpr uint32_t kWidth = 100, kBytes = 1 << 20, kStart = 8;
    std::vector<uint8_t> file;
    const auto add = [&](uint32_t value, int bytes) {
      for (int i = 0; i < bytes; ++i) file.push_back(static_cast<uint8_t>(value >> 8 * i));
    };
    const uint32_t arrays = kStart + kBytes, directory = arrays + 8 * strips;
    add(0x002A4949, 4);
    add(directory, 4);
    file.resize(arrays - 2, 0x80);
    add(257 - kWidth, 1);
    add(99, 1);
    for (uint32_t i = 0; i < strips; ++i) add(kStart, 4);
    for (uint32_t i = 0; i < strips; ++i) add(kBytes, 4);
    add(9, 2);
    using namespace tiff;
    const uint32_t entries[9][3] = {{kImageWidth, 1, kWidth},
                                    {kImageLength, 1, strips},
                                    {kBitsPerSample, 1, 8},
                                    {kCompression, 1, uint32_t(Compression::packBits)},
                                    {kPhotometric, 1, kBlackIsZero},
                                    {kStripOffsets, strips, arrays},
                                    {kSamplesPerPixel, 1, 1},
                                    {kRowsPerStrip, 1, 1},
                                    {kStripByteCounts, strips, arrays + 4 * strips}};
    for (const auto& [tag, count, value] : entries) {
      add(tag, 2);
      add(4, 2);
      add(count, 4);
      add(value, 4);
    }
    add(0, 4);
    DeepImage image;
    const std::string problem = decode(file, image).problem;
    EXPECT_EQ(image.samples[0], 99);
    return problem;
  };
  EXPECT_EQ(damagedOf(20), "");
  EXPECT_NE(damagedOf(60), "");
}

TEST_F(Tiff, RefusesBadDirectories) {
  const Patched good(encoded(page(400, 300, 3, 8)));
  ASSERT_EQ(errorOf(good.bytes), "");
  for (size_t length = 0; length < good.bytes.size(); length += length + 500 < good.bytes.size() ? 97 : 1) {
    EXPECT_NE(errorOf({good.bytes.begin(), good.bytes.begin() + static_cast<ptrdiff_t>(length)}), "") << length;
  }
  const auto expectError = [&](size_t offset, size_t size, uint32_t value, const std::string& says) {
    Patched file = good;
    file.set(offset, size, value);
    EXPECT_NE(errorOf(file.bytes).find(says), std::string::npos) << says << ": " << errorOf(file.bytes);
  };
  using namespace tiff;
  expectError(0, 1, 'M', "not a TIFF");
  expectError(2, 2, 43, "BigTIFF");
  expectError(4, 4, 0xFFFFFFF0, "the file ends");
  expectError(good.directory(), 2, 0xFFFF, "the file ends");
  expectError(good.directory() + 2 + 12 * 13, 4, uint32_t(good.directory()), "circle");
  expectError(good.directory() + 2 + 12 * 13, 4, 0x7FFFFFFF, "the file ends");
  expectError(good.value(kImageWidth), 4, 0, "bad width");
  expectError(good.value(kImageLength), 4, 0xFFFFFFFF, "bad width");
  expectError(good.value(kImageWidth), 4, 1 << 24, "too little data");
  expectError(good.entry(kImageWidth), 2, 999, "lacks field 256");
  expectError(good.value(kBitsPerSample), 2, 16, "different kinds");
  expectError(good.entry(kBitsPerSample) + 4, 4, 1 << 30, "damaged");
  expectError(good.entry(kBitsPerSample) + 8, 4, 0xFFFFFFFE, "the file ends");
  expectError(good.entry(kBitsPerSample) + 2, 2, kRational, "no number");
  expectError(good.value(kCompression), 2, 5, "compression 5");
  expectError(good.value(kPhotometric), 2, 6, "photometric interpretation 6");
  expectError(good.value(kSamplesPerPixel), 2, 2, "samples a pixel");
  expectError(good.value(kSamplesPerPixel), 2, 17, "samples a pixel");
  expectError(good.entry(kResolutionUnit), 2, kTileWidth, "tiles");
  expectError(good.entry(kResolutionUnit), 2, kPredictor, "predictor");
  expectError(good.entry(kResolutionUnit), 2, kSampleFormat, "unsigned");
  expectError(good.entry(kResolutionUnit), 2, kFillOrder, "reversed bits");
}

TEST_F(Tiff, DecodesDamagedStripsAsFarAsTheyGo) {
  const DeepImage image = page(400, 300, 3, 8);
  const int32_t rowsPerStrip = 54, row = image.width * 3;
  for (const Compression compression : {Compression::packBits, Compression::none}) {
    const Patched good(encoded(image, compression));
    ASSERT_EQ(good.at(good.value(tiff::kRowsPerStrip), 4), uint32_t(rowsPerStrip));
    const size_t offset = good.value(tiff::kStripOffsets, 2), count = good.value(tiff::kStripByteCounts, 2);
    // Rows 0 to `last` of the third strip are there, and all of the others.
    const auto expectRows = [&](const Patched& file, int32_t last, const std::string& says) {
      DeepImage decoded;
      const tiff::DecodeReport report = tiff::decode(file.bytes, decoded);
      EXPECT_NE(report.problem.find("strip 3 of 6 " + says), std::string::npos) << report.problem;
      for (int32_t y = 0; y < image.height; ++y) {
        const int32_t inStrip = y - 2 * rowsPerStrip;
        if (inStrip == last) continue;
        const bool missing = inStrip > last && inStrip < rowsPerStrip;
        const std::vector<uint16_t> expected(image.at(0, y), image.at(0, y) + row), zeros(expected.size());
        const std::vector<uint16_t> actual(decoded.at(0, y), decoded.at(0, y) + row);
        EXPECT_EQ(actual, missing ? zeros : expected) << y;
      }
    };
    Patched file = good;
    file.set(offset, 4, 0xFFFFFFF0);
    expectRows(file, -1, "lies beyond the end of the file");
    file = good;
    file.set(count, 4, 0);
    expectRows(file, 0, "is damaged or incomplete from row 108 on");
    file.set(count, 4, good.at(count, 4) - 1);
    expectRows(file, rowsPerStrip - 1, "is damaged or incomplete from row 161 on");
    if (compression == Compression::none) {
      file.set(count, 4, uint32_t(5 * row + 7));
      expectRows(file, 5, "is damaged or incomplete from row 113 on");
    }
  }
}

// The last byte of the file is the header of a run.
TEST_F(Tiff, ReadsNothingBehindTheFile) {
  DeepImage image(100, 1, 1);
  image.precision = 8;
  Patched file(encoded(image));
  file.set(file.value(tiff::kStripOffsets), 4, uint32_t(file.bytes.size()));
  file.bytes.push_back(0x9D);
  EXPECT_EQ(errorOf(file.bytes), "strip 1 of 1 is damaged or incomplete from row 0 on");
}

TEST_F(Tiff, SurvivesAnyBytes) {
  Random random(5);
  std::set<std::string> outcomes;
  for (int round = 0; round < 4000; ++round) {
    std::vector<uint8_t> file = encoded(page(30, 20, round % 2 == 0 ? 1 : 3, round % 3 == 0 ? 16 : 8));
    for (int changes = 1 + round % 4; changes > 0; --changes) {
      // Half of the changes hit the directory, at the end of the file.
      const auto range = static_cast<int32_t>(changes % 2 == 0 ? file.size() : std::min<size_t>(file.size(), 180));
      file[file.size() - 1 - static_cast<size_t>(random.between(0, range - 1))] = static_cast<uint8_t>(random.next());
    }
    outcomes.insert(errorOf(file));
  }
  EXPECT_GT(outcomes.size(), 10u);
}

TEST_F(Tiff, ProgramEncodesDecodesAndDescribes) {
  const DeepImage deep = page(70, 50, 3, 16), cmyk = page(70, 50, 4, 8);
  examples::writeImage(path("deep.png"), deep);
  examples::writeImage(path("cmyk.pam"), cmyk);
  for (const char* options : {"", "--compression packbits", "--compression none"}) {
    ASSERT_EQ(run(std::string("encode deep.png a.tif ") + options), 0) << message();
    ASSERT_EQ(run("decode a.tif b.png"), 0) << message();
    expectSame(examples::readDeepImage(path("b.png")), deep);
  }
  ASSERT_EQ(run("encode cmyk.pam a.tif"), 0) << message();
  ASSERT_EQ(run("decode a.tif b.pam"), 0) << message();
  expectSame(examples::readDeepImage(path("b.pam")), cmyk);
  ASSERT_EQ(run("info a.tif"), 0) << message();
  EXPECT_EQ(text("out"),
            "a.tif: image 1 of 1\n70 x 50 pixels, CMYK, 4 x 8 bits\nPackBits, little-endian, 1 strip of 50 rows\n");
}

TEST_F(Tiff, ProgramReportsWhatIsWrong) {
  examples::writeImage(path("in.png"), page(70, 50, 3, 8));
  ASSERT_EQ(run("encode in.png a.tif --compression none"), 0) << message();
  Patched file(examples::readFile(path("a.tif")));
  file.set(file.value(tiff::kStripByteCounts), 4, 70 * 3 * 20);
  write("short.tif", file.bytes);
  for (const char* arguments : {"", "encode in.png", "encode in.png b.tif --compression lzw", "info"}) {
    expectFailure(arguments, 2, "");
  }
  expectFailure("encode a.tif b.tif", 1, "neither a PNG");
  expectFailure("decode in.png b.png", 1, "in.png: not a TIFF file");
  expectFailure("info missing.tif", 1, "missing.tif: No such file");
  expectFailure("decode a.tif b.gif", 1, "b.gif");
  expectFailure("decode a.tif b.pgm", 1, "does not fit");
  EXPECT_EQ(run("decode short.tif b.png"), 3);
  EXPECT_EQ(message(), "zortiff: short.tif: strip 1 of 1 is damaged or incomplete from row 20 on\n");
  EXPECT_EQ(examples::readImage(path("b.png")).height, 50);
}

}  // namespace
}  // namespace interop
