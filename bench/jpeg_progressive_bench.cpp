// The progressive Huffman coders and the optimised tables, on the coefficients of a photograph's luminance, against
// libjpeg-turbo's transcoder: the same scans, to and from the same bytes, markers apart.
#include <zorj.h>

#include <cstdio>
// After <cstdio>, whose types it needs.
#include <jpeglib.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include "common/image_file.h"
#include "jpeg/huffman_spec.h"
#include "jpeg/huffman_state.h"
#include "support/compare.h"

namespace zorj::bench {
namespace {

using Bytes = std::vector<uint8_t>;
using Block = std::array<int16_t, 64>;
using Blocks = std::vector<Block>;

struct Scan {
  int32_t first, last, high, low;  // Ss, Se, Ah, Al
  bool refines() const { return high != 0; }
};

// What libjpeg-turbo makes of one component by default.
constexpr Scan kScript[] = {{0, 0, 0, 1}, {1, 5, 0, 2}, {6, 63, 0, 2}, {1, 63, 2, 1}, {0, 0, 1, 0}, {1, 63, 1, 0}};

void check(StatusCode status) {
  if (status == StatusOk) return;
  std::fprintf(stderr, "zorj: status %d\n", static_cast<int>(status));
  std::abort();
}

struct Tables {
  HuffmanEncodeSpec encode = {};
  HuffmanDecodeSpec decode = {};
  explicit Tables(const std::array<int32_t, 257>& statistics) {
    uint8_t bits[16], values[256];
    check(zoriEncodeHuffmanRawTableInit_JPEG_8u(statistics.data(), bits, values));
    check(zoriEncodeHuffmanSpecInit_JPEG_8u(bits, values, &encode));
    check(zoriDecodeHuffmanSpecInit_JPEG_8u(bits, values, &decode));
  }
};

// One scan of all blocks: its symbols counted, encoded and decoded.
class ScanCoder {
 public:
  ScanCoder(std::shared_ptr<const Blocks> blocks, Scan scan)
      : blocks_(std::move(blocks)), scan_(scan), bytes_(blocks_->size() * 128) {
    count();
    encode();
  }

  const uint8_t* begin() const { return bytes_.data(); }
  const uint8_t* end() const { return bytes_.data() + length_; }

  void count() {
    std::array<int32_t, 257> statistics = {1};  // so that scans without symbols have a table too
    if (scan_.first != 0 || !scan_.refines()) statistics[0] = 0;
    HuffmanEncodeState state = {};
    int16_t lastDc = 0;
    const auto countAc = scan_.refines() ? zoriGetHuffmanStatistics8x8_ACRefine_JPEG_16s_C1
                                         : zoriGetHuffmanStatistics8x8_ACFirst_JPEG_16s_C1;
    for (const Block& block : *blocks_) {
      if (scan_.first != 0) {
        countAc(block.data(), statistics.data(), scan_.first, scan_.last, scan_.low, &state, 0);
      } else if (!scan_.refines()) {
        zoriGetHuffmanStatistics8x8_DCFirst_JPEG_16s_C1(block.data(), statistics.data(), &lastDc, scan_.low);
      }
    }
    if (scan_.first != 0) countAc(nullptr, statistics.data(), 0, 0, 0, &state, 1);
    tables_ = Tables(statistics);
  }

  void encode() {
    length_ = 0;
    HuffmanEncodeState state = {};
    int16_t lastDc = 0;
    for (const Block& block : *blocks_) encodeBlock(block.data(), lastDc, state, 0);
    check(encodeBlock(nullptr, lastDc, state, 1));
  }

  void decode(Blocks& blocks) const {
    HuffmanDecodeState state = {};
    int16_t lastDc = 0;
    int32_t position = 0, marker = 0;
    for (Block& block : blocks) decodeBlock(block.data(), position, lastDc, marker, state);
  }

 private:
  StatusCode encodeBlock(const int16_t* block, int16_t& lastDc, HuffmanEncodeState& state, int32_t flush) {
    const auto room = static_cast<int32_t>(bytes_.size());
    const auto& [first, last, high, low] = scan_;
    if (first == 0 && high == 0) {
      return zoriEncodeHuffman8x8_DCFirst_JPEG_16s1u_C1(block, bytes_.data(), room, &length_, &lastDc, low,
                                                        &tables_.encode, &state, flush);
    }
    if (first == 0) {
      return zoriEncodeHuffman8x8_DCRefine_JPEG_16s1u_C1(block, bytes_.data(), room, &length_, low, &state, flush);
    }
    const auto encode =
        high == 0 ? zoriEncodeHuffman8x8_ACFirst_JPEG_16s1u_C1 : zoriEncodeHuffman8x8_ACRefine_JPEG_16s1u_C1;
    return encode(block, bytes_.data(), room, &length_, first, last, low, &tables_.encode, &state, flush);
  }

  void decodeBlock(int16_t* block, int32_t& position, int16_t& lastDc, int32_t& marker,
                   HuffmanDecodeState& state) const {
    const auto& [first, last, high, low] = scan_;
    if (first == 0 && high == 0) {
      zoriDecodeHuffman8x8_DCFirst_JPEG_1u16s_C1(bytes_.data(), length_, &position, block, &lastDc, &marker, low,
                                                 &tables_.decode, &state);
    } else if (first == 0) {
      zoriDecodeHuffman8x8_DCRefine_JPEG_1u16s_C1(bytes_.data(), length_, &position, block, &marker, low, &state);
    } else {
      const auto decode =
          high == 0 ? zoriDecodeHuffman8x8_ACFirst_JPEG_1u16s_C1 : zoriDecodeHuffman8x8_ACRefine_JPEG_1u16s_C1;
      decode(bytes_.data(), length_, &position, block, &marker, first, last, low, &tables_.decode, &state);
    }
  }

  std::shared_ptr<const Blocks> blocks_;
  Scan scan_;
  Tables tables_{{1}};
  Bytes bytes_;
  int32_t length_ = 0;
};

// A sequential scan with tables made for it.
void encodeOptimised(const Blocks& blocks, Bytes& bytes) {
  std::array<int32_t, 257> dc = {}, ac = {};
  int16_t lastDc = 0;
  for (const Block& block : blocks)
    zoriGetHuffmanStatistics8x8_JPEG_16s_C1(block.data(), dc.data(), ac.data(), &lastDc);
  const Tables dcTables(dc), acTables(ac);
  HuffmanEncodeState state = {};
  int32_t position = 0;
  lastDc = 0;
  bytes.resize(blocks.size() * 128);
  const auto room = static_cast<int32_t>(bytes.size());
  for (const Block& block : blocks) {
    zoriEncodeHuffman8x8_JPEG_16s1u_C1(block.data(), bytes.data(), room, &position, &lastDc, &dcTables.encode,
                                       &acTables.encode, &state, 0);
  }
  check(zoriEncodeHuffman8x8_JPEG_16s1u_C1(nullptr, bytes.data(), room, &position, &lastDc, &dcTables.encode,
                                           &acTables.encode, &state, 1));
}

// libjpeg-turbo with the coefficients of a file.
class Transcoder {
 public:
  explicit Transcoder(const Bytes& file) : file_(file) {
    source_.err = jpeg_std_error(&errors_);
    jpeg_create_decompress(&source_);
    jpeg_mem_src(&source_, file_.data(), file_.size());
    jpeg_read_header(&source_, TRUE);
    coefficients_ = jpeg_read_coefficients(&source_);
  }
  ~Transcoder() { jpeg_destroy_decompress(&source_); }
  Transcoder(const Transcoder&) = delete;
  Transcoder& operator=(const Transcoder&) = delete;

  Blocks blocks() {
    Blocks all;
    for (JDIMENSION y = 0; y < source_.comp_info[0].height_in_blocks; ++y) {
      const JBLOCKARRAY row =
          source_.mem->access_virt_barray(reinterpret_cast<j_common_ptr>(&source_), coefficients_[0], y, 1, FALSE);
      for (JDIMENSION x = 0; x < source_.comp_info[0].width_in_blocks; ++x) {
        std::memcpy(all.emplace_back().data(), row[0][x], sizeof(Block));
      }
    }
    return all;
  }

  Bytes write(bool progressive) {
    jpeg_compress_struct destination;
    destination.err = &errors_;
    jpeg_create_compress(&destination);
    unsigned char* bytes = nullptr;
    unsigned long length = 0;
    jpeg_mem_dest(&destination, &bytes, &length);
    jpeg_copy_critical_parameters(&source_, &destination);
    destination.optimize_coding = TRUE;
    if (progressive) jpeg_simple_progression(&destination);
    jpeg_write_coefficients(&destination, coefficients_);
    jpeg_finish_compress(&destination);
    jpeg_destroy_compress(&destination);
    Bytes written(bytes, bytes + length);
    std::free(bytes);
    return written;
  }

 private:
  Bytes file_;
  jpeg_error_mgr errors_;
  jpeg_decompress_struct source_;
  jvirt_barray_ptr* coefficients_;
};

Bytes encodeLuminance(const examples::Image& image, int quality) {
  jpeg_error_mgr errors;
  jpeg_compress_struct encoder;
  encoder.err = jpeg_std_error(&errors);
  jpeg_create_compress(&encoder);
  unsigned char* bytes = nullptr;
  unsigned long length = 0;
  jpeg_mem_dest(&encoder, &bytes, &length);
  encoder.image_width = static_cast<JDIMENSION>(image.width);
  encoder.image_height = static_cast<JDIMENSION>(image.height);
  encoder.input_components = 3;
  encoder.in_color_space = JCS_RGB;
  jpeg_set_defaults(&encoder);
  jpeg_set_colorspace(&encoder, JCS_GRAYSCALE);
  jpeg_set_quality(&encoder, quality, TRUE);
  jpeg_start_compress(&encoder, TRUE);
  while (encoder.next_scanline < encoder.image_height) {
    auto* row = const_cast<uint8_t*>(image.samples.data()) + encoder.next_scanline * static_cast<size_t>(image.step());
    jpeg_write_scanlines(&encoder, &row, 1);
  }
  jpeg_finish_compress(&encoder);
  jpeg_destroy_compress(&encoder);
  Bytes file(bytes, bytes + length);
  std::free(bytes);
  return file;
}

void compareWithTranscoder(const std::string& name, const Bytes& file) {
  const auto turbo = std::make_shared<Transcoder>(file);
  const auto blocks = std::make_shared<const Blocks>(turbo->blocks());
  const auto progressive = std::make_shared<const Bytes>(turbo->write(true));
  const auto coders = std::make_shared<std::vector<ScanCoder>>();
  for (const Scan& scan : kScript) {
    const ScanCoder& coder = coders->emplace_back(blocks, scan);
    if (std::search(progressive->begin(), progressive->end(), coder.begin(), coder.end()) != progressive->end())
      continue;
    std::fprintf(stderr, "libjpeg-turbo's scan of positions %d to %d differs\n", scan.first, scan.last);
    std::abort();
  }
  const auto withTurbo = [](std::vector<Variant> variants, const std::function<void()>& theirs) {
    variants.push_back({"libjpeg-turbo", theirs});
    return variants;
  };
  const auto count = static_cast<double>(blocks->size());

  compare("progressive encode " + name, count, "blocks",
          withTurbo(atEveryLevel([=] {
                      for (ScanCoder& coder : *coders) {
                        coder.count();
                        coder.encode();
                      }
                    }),
                    [=] { turbo->write(true); }));
  const auto decoded = std::make_shared<Blocks>(blocks->size());
  compare("progressive decode " + name, count, "blocks",
          withTurbo(atEveryLevel([=] {
                      std::memset(decoded->data(), 0, decoded->size() * sizeof(Block));
                      for (const ScanCoder& coder : *coders) coder.decode(*decoded);
                    }),
                    [=] { Transcoder{*progressive}; }));
  const auto bytes = std::make_shared<Bytes>();
  compare("optimised encode " + name, count, "blocks",
          withTurbo(atEveryLevel([=] { encodeOptimised(*blocks, *bytes); }), [=] { turbo->write(false); }));
}

// Each scan on its own.
void compareScans(const std::string& name, const Bytes& file) {
  const auto blocks = std::make_shared<const Blocks>(Transcoder(file).blocks());
  const auto count = static_cast<double>(blocks->size());
  const auto before = std::make_shared<Blocks>(blocks->size());
  for (const Scan& scan : kScript) {
    const auto coder = std::make_shared<ScanCoder>(blocks, scan);
    const std::string row =
        std::string(scan.first == 0 ? "DC" : "AC") + (scan.refines() ? " refine " : " first ") +
        (scan.first == 0 ? "" : std::to_string(scan.first) + "-" + std::to_string(scan.last) + " ") +
        "Al=" + std::to_string(scan.low) + " " + name;
    if (scan.first != 0) compare("count " + row, count, "blocks", atEveryLevel([=] { coder->count(); }));
    compare("encode " + row, count, "blocks", atEveryLevel([=] { coder->encode(); }));
    const auto start = std::make_shared<const Blocks>(*before);
    const auto decoded = std::make_shared<Blocks>(blocks->size());
    compare("decode " + row, count, "blocks", atEveryLevel([=] {
              // A refinement needs the blocks as they were.
              std::memcpy(decoded->data(), start->data(), start->size() * sizeof(Block));
              coder->decode(*decoded);
            }));
    coder->decode(*before);
  }
}

}  // namespace

void registerComparisons() {
  const examples::Image image = examples::readImage(ZORJ_PHOTOGRAPH);
  for (const int quality : {90, 75})
    compareWithTranscoder("q" + std::to_string(quality), encodeLuminance(image, quality));
  compareScans("q75", encodeLuminance(image, 75));
}

}  // namespace zorj::bench
