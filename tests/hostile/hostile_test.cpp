// Calls every export with everything a caller can get wrong, one argument or element at a time and in pairs.
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <map>
#include <set>

#include "hostile/scene.h"
#include "support/isa_levels.h"

namespace zorj::test {
namespace {

constexpr RoiSize kSize = {20, 12};
constexpr Value kMost = std::numeric_limits<int32_t>::max(), kLeast = std::numeric_limits<int32_t>::min();

// What the headers say of a value in one place of an otherwise valid call.
struct Verdict {
  enum { kAllowed, kAllowedAlone, kRefused, kUndefined } kind;
  StatusCode status = StatusOk;  // of a refusal
  const char* why = "";          // it is undefined
};
constexpr Verdict kAllowed = {Verdict::kAllowed};
constexpr Verdict refused(StatusCode status) { return {Verdict::kRefused, status}; }
constexpr Verdict undefined(const char* why) { return {Verdict::kUndefined, StatusOk, why}; }

constexpr Verdict kLargerThanMemory = undefined("a size, length or step that leads beyond the memory provided");

bool contains(const std::string& text, const char* part) { return text.find(part) != std::string::npos; }

bool isOneOf(const std::string& name, std::initializer_list<const char*> names) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

// Steps of images: below 1 is refused, where rows may go upwards only those that are too small.
Verdict verdictOnStep(const Export& function, Value value) {
  const bool signedStep = function.has("Texture") || function.has("PCT");
  const Value least = function.has("PCT") ? 32 : 1;
  if (value >= 0 ? value < least : !signedStep) return refused(StatusBadStep);
  return value == kLeast || value == kMost ? kLargerThanMemory : kAllowed;
}

// Sizes, lengths and counts: below 1 is refused; what is larger than the memory cannot be noticed.
Verdict verdictOnExtent(const Export& function, const std::string& name, Value value) {
  if (value > 1 && value < kMost) return kAllowed;
  if (contains(name, "pTile.")) {
    if (function.has("GetBufSize") || contains(name, ".x") || contains(name, ".y")) return kAllowed;
    if (value > 0) return value == 1 ? kAllowed : kLargerThanMemory;
    return function.has("_C1IR") ? kAllowed : refused(StatusBadSize);  // in place a tile may be empty
  }
  if (isOneOf(name, {"segLen", "nSegments", "*pSegLen"})) return value == kMost ? kLargerThanMemory : kAllowed;
  if (name == "srcLength" && function.has("DecodeHuffman8x8_JPEG")) {
    if (value <= 0) return value == 0 ? kAllowed : refused(StatusBadArgument);
  }
  if (value < 1)
    return refused(function.has("Row_TIFF_16u8u") || function.has("Row_TIFF_8u16u") ? StatusBadStep : StatusBadSize);
  // The photo core wants whole blocks, and steps that cover the row.
  if (function.has("PCT")) return refused(name == "width" && value == kMost ? StatusBadStep : StatusBadSize);
  if (value == 1) return kAllowed;
  // More room than there is does no harm as long as it is not needed.
  if (isOneOf(name, {"dstLength", "*pDstLen"}) && !function.has("Unpack")) return {Verdict::kAllowedAlone};
  if (contains(name, "maxSize") || name == "components") return kAllowed;
  return name.starts_with("srcRoiSize") && function.has("SampleUpH2V1") ? kAllowed : kLargerThanMemory;
}

bool isExtent(const std::string& name) {
  return contains(name, "iSize.") || contains(name, "maxSize") || contains(name, "pTile.") ||
         isOneOf(name, {"width", "height", "srcWidth", "samples", "components", "srcLength", "dstLength", "segLen",
                        "nSegments", "*pSegLen", "*pDstLen"});
}

// Everything else is what a function is to do: the range is told by its comment.
Verdict verdictOnOption(const Export& function, const std::string& name, Value value) {
  const auto within = [value](Value low, Value high, StatusCode otherwise) {
    return low <= value && value <= high ? kAllowed : refused(otherwise);
  };
  if (isOneOf(name, {"Ss", "Se"})) return within(1, 63, StatusBadArgument);
  if (name == "Al") return within(0, 13, StatusBadArgument);
  if (name == "predictor") return within(1, 7, StatusBadArgument);
  if (name == "precision") return within(2, 16, StatusBadArgument);
  if (name == "pointTransform") return within(0, kMost, StatusBadArgument);
  if (name == "qualityFactor") return within(1, kMost, StatusBadArgument);
  if (name == "pass" || name == "segment") return within(0, name == "pass" ? 1 : 0, StatusBadPassNumber);
  if (contains(name, "Position") && function.has("Direct")) {
    if (value < 0 && function.has("Decode")) return refused(StatusBadArgument);
    return value < 0 || value == kMost ? undefined("a position in memory of no told length") : kAllowed;
  }
  if (name == "*pPrefetchedCount") return within(0, kMost, StatusBadArgument);
  return kAllowed;
}

Verdict verdictOn(const Export& function, const Place& place, Value value) {
  if (place.isPointer && value) {  // what is no object
    const bool isMarked = place.parameter->type.starts_with("J2k") && !function.has("EncodeFree");
    if (function.has("Init_")) return undefined("memory for an object that is too small");
    return isMarked ? refused(StatusBadContext) : undefined("an object that was not initialised and carries no mark");
  }
  if (place.isPointer) return place.parameter->nullable ? kAllowed : refused(StatusNullPointer);
  if (place.parameter->kind == Kind::kStep || place.parameter->kind == Kind::kValues)
    return verdictOnStep(function, value);
  return isExtent(place.name) ? verdictOnExtent(function, place.name, value)
                              : verdictOnOption(function, place.name, value);
}

struct Change {
  const Place* place;
  Value value;
  Verdict verdict;

  std::string text() const {
    return place->name + " = " + (!place->isPointer ? std::to_string(value) : value ? "no object" : "null");
  }
};

std::vector<Change> changesOf(const Export& function, const Scene& scene) {
  std::vector<Change> changes;
  for (const Place& place : scene.places()) {
    std::vector<Value> values = {0, 1, -1, kLeast, kMost};
    if (place.isPointer) values = {0};
    if (place.parameter->kind == Kind::kObject) values = {0, scene.noObject()};
    for (const Value value : values) changes.push_back({&place, value, verdictOn(function, place, value)});
  }
  return changes;
}

// The status of a fault in what is coded, or of a room that is too small: what was done until then stays.
bool isFaultInData(int status) {
  switch (status) {
    case StatusBufferEnd:
    case StatusHuffmanDataError:
    case StatusBadHuffmanTable:
    case StatusBlockOverrun:
    case StatusCodeBlockError:
    case StatusPackBitsError:
      return true;
    default:
      return false;
  }
}

bool isDocumented(const Export& function, int status) {
  if (function.header == "zorj/jpeg_progressive.h" && isFaultInData(status)) return true;  // as of sequential coding
  return status == StatusOk ||
         std::find(function.statuses.begin(), function.statuses.end(), status) != function.statuses.end();
}

// The call that is being made, for when it does not come back.
const char* g_call = "";
[[noreturn, maybe_unused]] void tellCall(int) {
  std::fprintf(stderr, "crashed: %s\n", g_call);
  std::_Exit(EXIT_FAILURE);
}

// Calls with the changes, and expects of memory what is always promised. Returns the status.
int callWith(const Export& function, Scene& scene, Arena& arena, const std::vector<Change>& changes,
             const std::string& what) {
  scene.restore();
  bool widely = false;  // rows that lie in one another are written in other places
  for (const Change& change : changes) {
    scene.set(*change.place, change.value);
    widely |= change.place->parameter->kind == Kind::kStep || change.place->parameter->kind == Kind::kValues;
  }
  const Arena::Contents before = arena.contents();
  g_call = what.c_str();
  const int status = scene.call();
  EXPECT_TRUE(isDocumented(function, status)) << what << ": status " << status;
  if (status < 0 && !isFaultInData(status)) {
    // No memory is the only failure that is told in an output as well: by a null address.
    const auto kept = status == StatusNoMemory ? Arena::Bytes::kPublic : Arena::Bytes::kAll;
    EXPECT_EQ(arena.changed(before, kept), "") << what << " was refused (" << status << ") but has written";
    EXPECT_EQ(arena.liveAllocations(), 0) << what;
  } else if (!widely) {
    EXPECT_EQ(arena.changed(before, Arena::Bytes::kForbidden), "") << what << " has written outside its outputs";
  }
  EXPECT_FALSE(arena.releasedUnknown()) << what;
  return status;
}

struct Counts {
  int single = 0, pairs = 0, moved = 0;
  // What was not called: the reasons, the changes, and the functions.
  std::map<std::string, std::map<std::string, std::set<std::string>>> undefinedCalls;
};

void expectSingles(const Export& function, Scene& scene, Arena& arena, Counts& counts) {
  for (const Change& change : changesOf(function, scene)) {
    const std::string what = function.name + " with " + change.text();
    if (change.verdict.kind == Verdict::kUndefined) {
      counts.undefinedCalls[change.verdict.why][change.text()].insert(function.name);
      continue;
    }
    const int status = callWith(function, scene, arena, {change}, what);
    if (change.verdict.kind == Verdict::kRefused) {
      EXPECT_EQ(status, change.verdict.status) << what;
    } else {
      EXPECT_TRUE(status >= 0 || isFaultInData(status) || status == StatusNoMemory) << what << ": status " << status;
    }
    ++counts.single;
  }
}

// Of two changes that are refused either's status may come first. With one that is, the other may be anything: its
// memory is not looked at.
void expectPairs(const Export& function, Scene& scene, Arena& arena, Counts& counts) {
  const std::vector<Change> changes = changesOf(function, scene);
  for (const Change& first : changes) {
    if (first.verdict.kind != Verdict::kAllowed && first.verdict.kind != Verdict::kRefused) continue;
    const bool isRefused = first.verdict.kind == Verdict::kRefused;
    for (const Change& second : changes) {
      if (second.place == first.place || (!isRefused && second.verdict.kind != Verdict::kAllowed)) continue;
      if (function.has("Decode") && isOneOf(first.place->name, {"nbp", "nPasses"}) &&
          isOneOf(second.place->name, {"nbp", "nPasses"}) && first.value == kMost && second.value == kMost) {
        counts.undefinedCalls["passes that would take hours"][first.text()].insert(function.name);
        continue;
      }
      // A flush looks at fewer arguments, and so do fewer components.
      if (second.place->name == "flush" && second.value != 0) continue;
      if (second.place->name == "components" && first.place->memory) continue;
      const std::string what = function.name + " with " + first.text() + " and " + second.text();
      const int status = callWith(function, scene, arena, {first, second}, what);
      ++counts.pairs;
      if (!isRefused) continue;
      EXPECT_TRUE(status == first.verdict.status ||
                  (second.verdict.kind == Verdict::kRefused && status == second.verdict.status))
          << what << ": status " << status;
    }
  }
}

// Samples may lie at any address: moved down by a byte, all is the same.
void expectSameWhenMoved(const Export& function, Scene& scene, Arena& arena, Counts& counts) {
  for (const Place& place : scene.places()) {
    if (!place.isPointer || !place.target) continue;
    if (!place.isSamples) {
      counts.undefinedCalls["a C object that is not aligned"][place.name].insert(function.name);
      continue;
    }
    scene.restore();
    const int expectedStatus = scene.call();
    const Arena::Contents expected = arena.contents();
    scene.restore();
    Piece& piece = *place.target;
    std::memmove(piece.data() - 1, piece.data(), piece.size());
    const Value aligned = scene.get(place);
    scene.set(place, aligned - 1);
    EXPECT_EQ(scene.call(), expectedStatus) << function.name << " with " << place.name << " moved";
    std::memmove(piece.data(), piece.data() - 1, piece.size());
    *(piece.data() - 1) = kFiller;
    scene.set(place, aligned);
    EXPECT_EQ(arena.changed(expected, Arena::Bytes::kPublic), "")
        << function.name << " with " << place.name << " moved";
    ++counts.moved;
  }
}

TEST(Hostile, ArgumentsOfEveryExport) {
#ifndef __SANITIZE_ADDRESS__  // which tells more
  std::signal(SIGSEGV, tellCall);
#endif
  Counts counts;
  for (const Export& function : exports()) {
    Arena arena;
    Scene scene(function, kSize, arena);
    forEachIsa([&](Isa isa) {
      SCOPED_TRACE(isaName(isa));
      EXPECT_EQ(callWith(function, scene, arena, {}, function.name), StatusOk) << function.name << ", a valid call";
      expectSingles(function, scene, arena, counts);
      expectSameWhenMoved(function, scene, arena, counts);
    });
    expectPairs(function, scene, arena, counts);
  }
  std::printf("%zu functions: %d calls with one bad argument, %d with two, %d with samples moved\n", exports().size(),
              counts.single, counts.pairs, counts.moved);
  for (const auto& [why, changes] : counts.undefinedCalls) {
    std::printf("not called, undefined: %s\n", why.c_str());
    for (const auto& [change, functions] : changes) {
      std::printf("  %s: %zu functions\n", change.c_str(), functions.size());
    }
  }
}

// The core library has six functions, and two of them take numbers.
TEST(Hostile, ArgumentsOfTheCoreLibrary) {
  for (const int32_t length : {0, -1, INT32_MIN}) EXPECT_EQ(zorMalloc(length), nullptr) << length;
  zorFree(zorMalloc(INT32_MAX));
  zorFree(nullptr);
  EXPECT_EQ(zorGetMaxCacheSizeB(nullptr), -1);
  zorSetAllocator(nullptr);
  Arena arena;
  const Export& function = exportNamed("zoriSub128_JPEG_8u16s_C1R");
  Scene scene(function, {4, 20000}, arena);
  for (const int threads : {0, -1, INT32_MIN, INT32_MAX}) {
    zorSetNumThreads(threads);
    EXPECT_GE(ownGetNumThreads(), 1) << threads;
    EXPECT_EQ(callWith(function, scene, arena, {}, function.name), StatusOk) << threads;
  }
  zorSetNumThreads(0);
}

}  // namespace
}  // namespace zorj::test
