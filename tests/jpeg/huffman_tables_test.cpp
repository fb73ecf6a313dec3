#include <gtest/gtest.h>
#include <zorcore.h>
#include <zorj.h>

#include <cstring>

#include "jpeg/huffman_spec.h"
#include "jpeg/huffman_state.h"
#include "support/arguments.h"
#include "support/huffman_data.h"

namespace zorj::test {
namespace {

struct Built {
  HuffmanEncodeSpec encode;
  HuffmanDecodeSpec decode;
  StatusCode encodeStatus;
  StatusCode decodeStatus;
};

Built build(const HuffmanLists& lists) {
  Built built;
  std::memset(static_cast<void*>(&built), 0xA5, sizeof built);
  built.encodeStatus = zoriEncodeHuffmanSpecInit_JPEG_8u(lists.bits.data(), lists.values.data(), &built.encode);
  built.decodeStatus = zoriDecodeHuffmanSpecInit_JPEG_8u(lists.bits.data(), lists.values.data(), &built.decode);
  return built;
}

bool isZero(const HuffmanEncodeSpec& spec) {
  const HuffmanEncodeSpec zero = {};
  return std::memcmp(&spec, &zero, sizeof zero) == 0;
}

TEST(HuffmanTables, HoldTheCanonicalCodes) {
  Random random(1);
  for (int round = 0; round < 200; ++round) {
    const HuffmanLists lists = round == 0   ? typicalDcLists()
                               : round == 1 ? typicalAcLists()
                                            : randomLists(random, firstSymbols(1 + random.next() % 256));
    const Built built = build(lists);
    ASSERT_EQ(built.encodeStatus, StatusOk);
    ASSERT_EQ(built.decodeStatus, StatusOk);

    HuffmanEncodeSpec encode = {};
    HuffmanDecodeSpec decode = {};
    std::fill_n(decode.maxCode + 1, 17, uint16_t{0xFFFF});
    size_t index = 0;
    for (const reference::HuffmanCode& code : reference::canonicalCodes(lists)) {
      encode.codes[code.symbol] = {static_cast<uint16_t>(code.code), static_cast<uint16_t>(code.length)};
      decode.symbols[index] = code.symbol;
      if (decode.maxCode[code.length] == 0xFFFF) {
        decode.minCode[code.length] = static_cast<uint16_t>(code.code);
        decode.symbolIndex[code.length] = static_cast<uint16_t>(index);
      }
      decode.maxCode[code.length] = static_cast<uint16_t>(code.code);
      for (uint32_t byte = 0; byte < 256; ++byte) {
        if (code.length <= 8 && byte >> (8 - code.length) == code.code) {
          decode.fastLookup[byte] = {code.symbol, static_cast<uint16_t>(code.length)};
        }
      }
      ++index;
    }
    EXPECT_EQ(std::memcmp(&built.encode, &encode, sizeof encode), 0) << "round " << round;
    EXPECT_EQ(std::memcmp(&built.decode, &decode, sizeof decode), 0) << "round " << round;
  }
}

TEST(HuffmanTables, AcceptWhatTheyPromise) {
  struct Case {
    const char* what;
    std::array<uint8_t, 16> bits;
    StatusCode encodeStatus;
    StatusCode decodeStatus;
  };
  const Case cases[] = {
      {"no codes", {}, StatusOk, StatusOk},
      {"256 codes", {0, 0, 0, 0, 0, 0, 0, 0, 128, 128}, StatusOk, StatusOk},
      {"257 codes", {0, 0, 0, 0, 0, 0, 0, 0, 128, 129}, StatusBadHuffmanTable, StatusBadHuffmanTable},
      {"the code of all ones", {1, 2}, StatusBadHuffmanTable, StatusOk},
      {"the code of all ones, 16 bits",
       {1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 2},
       StatusBadHuffmanTable,
       StatusOk},
      {"a code too many, short", {2, 1}, StatusBadHuffmanTable, StatusBadHuffmanTable},
      {"a code too many, 8 bits", {1, 1, 1, 1, 1, 1, 1, 3}, StatusBadHuffmanTable, StatusOk},
      {"two codes too many, 8 bits", {1, 1, 1, 1, 1, 1, 1, 4}, StatusBadHuffmanTable, StatusBadHuffmanTable},
      {"codes too many, long", {1, 1, 1, 1, 1, 1, 1, 1, 9}, StatusBadHuffmanTable, StatusOk},
  };
  for (const Case& c : cases) {
    const Built built = build({c.bits, std::vector<uint8_t>(257)});
    EXPECT_EQ(built.encodeStatus, c.encodeStatus) << c.what;
    EXPECT_EQ(built.decodeStatus, c.decodeStatus) << c.what;
    if (c.encodeStatus != StatusOk) {
      EXPECT_TRUE(isZero(built.encode)) << c.what;
    }
  }
  const Built twice = build({{0, 0, 3}, {7, 9, 7}});
  EXPECT_EQ(twice.encode.codes[7].value, 2) << "the later code of a symbol listed twice";
  EXPECT_EQ(twice.decode.fastLookup[0].value, 7) << "both codes of a symbol listed twice";
}

// T.81 K.2 in its simplest form: sizes by merging the two rarest, then the same limit to 16 bits.
TEST(HuffmanTables, ListsFromStatisticsAreOptimal) {
  Random random(2);
  for (int round = 0; round < 300; ++round) {
    std::array<int32_t, 256> statistics{};
    for (int32_t& count : statistics) {
      if (!random.oneIn(3)) count = static_cast<int32_t>(random.next() & ((1u << (1 + round % 20)) - 1));
    }
    // Frequencies that grow like Fibonacci's numbers give codes of more than 16 bits.
    if (round % 7 == 0) statistics[0] = statistics[1] = 1;
    for (size_t i = 2; round % 7 == 0 && i < 25; ++i) statistics[i] = statistics[i - 1] + statistics[i - 2] + 1;
    statistics[17] += 1;

    HuffmanLists lists{{}, std::vector<uint8_t>(257, 0xA5)};
    ASSERT_EQ(zoriEncodeHuffmanRawTableInit_JPEG_8u(statistics.data(), lists.bits.data(), lists.values.data()),
              StatusOk);

    // Weights with the slot number below the count: of equals, the highest number is the least.
    struct Tree {
      uint64_t weight;
      int slot;
      std::vector<int> leaves;
    };
    std::vector<Tree> trees;
    for (int i = 0; i < 257; ++i) {
      const int32_t count = i == 256 ? 1 : statistics[static_cast<size_t>(i)];
      if (count > 0) trees.push_back({static_cast<uint64_t>(count), i, {i}});
    }
    const size_t coded = trees.size() - 1;
    std::array<int, 257> sizes{};
    while (trees.size() > 1) {
      std::sort(trees.begin(), trees.end(), [](const Tree& a, const Tree& b) {
        return a.weight != b.weight ? a.weight > b.weight : a.slot < b.slot;
      });
      Tree rarest = trees.back();
      trees.pop_back();
      const Tree second = trees.back();
      trees.pop_back();
      rarest.weight += second.weight;
      rarest.leaves.insert(rarest.leaves.end(), second.leaves.begin(), second.leaves.end());
      for (const int leaf : rarest.leaves) ++sizes[static_cast<size_t>(leaf)];
      trees.push_back(rarest);
    }
    std::vector<uint8_t> values;
    for (int size = 1; size <= 257; ++size) {
      for (int i = 0; i < 256; ++i) {
        if (sizes[static_cast<size_t>(i)] == size) values.push_back(static_cast<uint8_t>(i));
      }
    }
    ASSERT_EQ(values.size(), coded);
    EXPECT_TRUE(std::equal(values.begin(), values.end(), lists.values.begin())) << "round " << round;
    EXPECT_EQ(lists.values[coded], 0xA5) << "a byte past the last symbol";

    const int longest = *std::max_element(sizes.begin(), sizes.end());
    int32_t count = 0, space = 0;
    for (int length = 1; length <= 16; ++length) {
      const int32_t codes = lists.bits[static_cast<size_t>(length - 1)];
      count += codes;
      space += codes << (16 - length);
      if (longest > 16) continue;
      const ptrdiff_t expected = std::count(sizes.begin(), sizes.end(), length) - (length == longest ? 1 : 0);
      EXPECT_EQ(codes, expected) << "round " << round;
    }
    EXPECT_EQ(count, static_cast<int32_t>(coded));
    EXPECT_LT(space, 65536);
    EXPECT_EQ(build(lists).encodeStatus, StatusOk);
  }
}

TEST(HuffmanTables, StatisticsThatGiveNoLists) {
  std::array<int32_t, 256> statistics{};
  HuffmanLists lists{{}, std::vector<uint8_t>(256, 0xA5)};
  lists.bits.fill(0xA5);
  const HuffmanLists before = lists;
  const auto statusOf = [&] {
    return zoriEncodeHuffmanRawTableInit_JPEG_8u(statistics.data(), lists.bits.data(), lists.values.data());
  };
  EXPECT_EQ(statusOf(), StatusBadHuffmanTable) << "nothing counted";
  for (size_t i = 0; i < 34; ++i) statistics[i] = static_cast<int32_t>(std::min(std::pow(1.62, i), 9e8));
  EXPECT_EQ(statusOf(), StatusBadHuffmanTable) << "a code of more than 32 bits";
  statistics.fill(0);
  statistics[3] = 1'000'000'001;
  EXPECT_EQ(statusOf(), StatusBadHuffmanTable) << "nothing below the ceiling";
  EXPECT_EQ(lists.bits, before.bits);
  EXPECT_EQ(lists.values, before.values);

  statistics[3] = -5;  // as unsigned, beyond the ceiling as well
  statistics[200] = 1'000'000'000;
  EXPECT_EQ(statusOf(), StatusOk);
  EXPECT_EQ(lists.bits[0], 1);
  EXPECT_EQ(lists.values[0], 200);
}

// All tables and states: sizes, allocation, release, and what happens without memory.
template <class Object, class GetSize, class InitAlloc, class Free>
void expectLifecycle(const GetSize& getSize, const InitAlloc& initAlloc, const Free& release, int32_t expectedSize,
                     const Object& initialised, size_t comparedBytes) {
  int32_t size = 0;
  EXPECT_EQ(getSize(&size), StatusOk);
  EXPECT_EQ(size, expectedSize);
  EXPECT_EQ(getSize(nullptr), StatusNullPointer);
  EXPECT_EQ(release(nullptr), StatusNullPointer);
  EXPECT_EQ(initAlloc(nullptr), StatusNullPointer);

  Object* object = nullptr;
  ASSERT_EQ(initAlloc(&object), StatusOk);
  EXPECT_EQ(std::memcmp(object, &initialised, comparedBytes), 0);
  EXPECT_EQ(release(object), StatusOk);

  const ZorAllocator none = {[](size_t, size_t, void*) -> void* { return nullptr; }, [](void*, void*) {}, nullptr};
  zorSetAllocator(&none);
  EXPECT_EQ(initAlloc(&object), StatusNullPointer);
  zorSetAllocator(nullptr);
}

TEST(HuffmanTables, Lifecycle) {
  const HuffmanLists lists = typicalAcLists();
  const uint8_t *bits = lists.bits.data(), *values = lists.values.data();
  const Built built = build(lists);
  expectLifecycle<HuffmanEncodeSpec>(
      &zoriEncodeHuffmanSpecGetBufSize_JPEG_8u,
      [&](HuffmanEncodeSpec** out) { return zoriEncodeHuffmanSpecInitAlloc_JPEG_8u(bits, values, out); },
      &zoriEncodeHuffmanSpecFree_JPEG_8u, 1024, built.encode, 1024);
  expectLifecycle<HuffmanDecodeSpec>(
      &zoriDecodeHuffmanSpecGetBufSize_JPEG_8u,
      [&](HuffmanDecodeSpec** out) { return zoriDecodeHuffmanSpecInitAlloc_JPEG_8u(bits, values, out); },
      &zoriDecodeHuffmanSpecFree_JPEG_8u, 1644, built.decode, 1644);

  // All but the last word is cleared.
  HuffmanEncodeState encodeState;
  std::memset(static_cast<void*>(&encodeState), 0xA5, sizeof encodeState);
  EXPECT_EQ(zoriEncodeHuffmanStateInit_JPEG_8u(&encodeState), StatusOk);
  EXPECT_EQ(encodeState.unused, 0xA5A5A5A5u);
  expectLifecycle<HuffmanEncodeState>(&zoriEncodeHuffmanStateGetBufSize_JPEG_8u,
                                      &zoriEncodeHuffmanStateInitAlloc_JPEG_8u, &zoriEncodeHuffmanStateFree_JPEG_8u,
                                      1048, HuffmanEncodeState{}, 1044);
  HuffmanDecodeState decodeState;
  std::memset(static_cast<void*>(&decodeState), 0xA5, sizeof decodeState);
  EXPECT_EQ(zoriDecodeHuffmanStateInit_JPEG_8u(&decodeState), StatusOk);
  EXPECT_EQ(decodeState.unused, 0xA5A5A5A5u);
  expectLifecycle<HuffmanDecodeState>(&zoriDecodeHuffmanStateGetBufSize_JPEG_8u,
                                      &zoriDecodeHuffmanStateInitAlloc_JPEG_8u, &zoriDecodeHuffmanStateFree_JPEG_8u, 24,
                                      HuffmanDecodeState{}, 20);
  EXPECT_EQ(std::memcmp(&encodeState, std::vector<uint8_t>(1044).data(), 1044), 0);
  EXPECT_EQ(std::memcmp(&decodeState, std::vector<uint8_t>(20).data(), 20), 0);
  EXPECT_EQ(zoriEncodeHuffmanStateInit_JPEG_8u(nullptr), StatusNullPointer);
  EXPECT_EQ(zoriDecodeHuffmanStateInit_JPEG_8u(nullptr), StatusNullPointer);

  // A list that is refused still hands out the block, all zero.
  const uint8_t tooMany[16] = {3};
  HuffmanEncodeSpec* refused = nullptr;
  EXPECT_EQ(zoriEncodeHuffmanSpecInitAlloc_JPEG_8u(tooMany, values, &refused), StatusBadHuffmanTable);
  ASSERT_NE(refused, nullptr);
  EXPECT_TRUE(isZero(*refused));
  zoriEncodeHuffmanSpecFree_JPEG_8u(refused);
}

TEST(HuffmanTables, NullPointers) {
  const HuffmanLists lists = typicalAcLists();
  const uint8_t *bits = lists.bits.data(), *values = lists.values.data();
  const int32_t statistics[256] = {1};
  HuffmanLists out = lists;
  HuffmanEncodeSpec encode = {}, *encodePointer = nullptr;
  HuffmanDecodeSpec decode = {}, *decodePointer = nullptr;
  const auto written = [&] {
    return !isZero(encode) || decode.maxCode[1] != 0 || encodePointer || decodePointer || out.bits != lists.bits ||
           out.values != lists.values;
  };
  const std::vector<StatusCode> threeNulls(3, StatusNullPointer);
  const auto expectNulls = [&](const char* what, const auto& call, auto* first, auto* second, auto* third) {
    expectArgumentOrder(
        what, threeNulls,
        [&](const Faults& f) { return call(f.pointer(0, first), f.pointer(1, second), f.pointer(2, third)); }, written);
  };
  expectNulls("encoder table", zoriEncodeHuffmanSpecInit_JPEG_8u, bits, values, &encode);
  expectNulls("decoder table", zoriDecodeHuffmanSpecInit_JPEG_8u, bits, values, &decode);
  expectNulls("allocated encoder table", zoriEncodeHuffmanSpecInitAlloc_JPEG_8u, bits, values, &encodePointer);
  expectNulls("allocated decoder table", zoriDecodeHuffmanSpecInitAlloc_JPEG_8u, bits, values, &decodePointer);
  expectNulls("lists", zoriEncodeHuffmanRawTableInit_JPEG_8u, statistics, out.bits.data(), out.values.data());
}

}  // namespace
}  // namespace zorj::test
