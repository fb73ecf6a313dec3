// Fails each allocation of the example codecs in turn: a message of one line, nothing leaked, no file left behind.
#include <gtest/gtest.h>
#include <zorcore.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <new>

#include "codecs/codec_work.h"
#include "common/command_line.h"

namespace {

std::atomic<int64_t> g_beforeFailure{-1};  // allocations until the one that fails; none does below 0
std::atomic<int64_t> g_allocations{0};
std::atomic<int64_t> g_live{0};

// Null where it is this one's turn to fail.
void* allocate(size_t bytes, size_t alignment = alignof(std::max_align_t)) {
  ++g_allocations;
  if (g_beforeFailure.load() >= 0 && g_beforeFailure.fetch_sub(1) == 0) return nullptr;
  ++g_live;
  return std::aligned_alloc(alignment, (bytes + alignment) / alignment * alignment);
}

void release(void* memory) {
  if (!memory) return;
  --g_live;
  std::free(memory);
}

}  // namespace

// The program's own, for C++ and, by the linker, for C.
void* operator new(size_t bytes) {
  if (void* const memory = allocate(bytes)) return memory;
  throw std::bad_alloc();
}
void* operator new(size_t bytes, const std::nothrow_t&) noexcept { return allocate(bytes); }
void operator delete(void* memory) noexcept { release(memory); }
void operator delete(void* memory, size_t) noexcept { release(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { release(memory); }

// NOLINTBEGIN(bugprone-reserved-identifier): the names are the linker's
extern "C" void* __real_calloc(size_t count, size_t size);
extern "C" void* __wrap_calloc(size_t count, size_t size) {
  ++g_allocations;
  if (g_beforeFailure.load() >= 0 && g_beforeFailure.fetch_sub(1) == 0) return nullptr;
  return __real_calloc(count, size);
}
// NOLINTEND(bugprone-reserved-identifier)

namespace zorj::test {
namespace {

constexpr ZorAllocator kAllocator = {[](size_t bytes, size_t alignment, void*) { return allocate(bytes, alignment); },
                                     [](void* memory, void*) { release(memory); }, nullptr};

const CodecWork* g_work;
std::vector<uint8_t>* g_result;
int64_t g_failing;  // which allocation is to fail; below 0 none

int runWork(int, char**) {
  const struct Armed {
    Armed() { g_beforeFailure = g_failing; }
    ~Armed() { g_beforeFailure = -1; }
  } armed;
  *g_result = g_work->run();
  return examples::kDone;
}

// Runs it as a program would. Returns the exit code.
int runWith(const CodecWork& work, int64_t failing, std::vector<uint8_t>& result, std::string& message) {
  g_work = &work;
  g_result = &result;
  g_failing = failing;
  testing::internal::CaptureStderr();
  const int code = examples::runProgram("codec", runWork, 0, nullptr);
  message = testing::internal::GetCapturedStderr();
  return code;
}

void expectFailure(const CodecWork& work, int64_t failing, const std::vector<uint8_t>& expected) {
  std::vector<uint8_t> result;
  std::string message;
  const int code = runWith(work, failing, result, message);
  const bool isOneLine = message.starts_with("codec: ") && message.find('\n') == message.size() - 1;
  const bool isRight = code == examples::kDone ? result == expected : isOneLine && code == examples::kFailed;
  EXPECT_TRUE(isRight) << "exit code " << code << ", " << message;
  EXPECT_EQ(message.find("damaged"), std::string::npos) << message;
}

void expectFailures(const CodecWork& work, const std::string& directory) {
  std::vector<uint8_t> expected;
  std::string message;
  ASSERT_EQ(runWith(work, -1, expected, message), examples::kDone) << work.name << ": " << message;  // fills caches too
  const int64_t before = g_allocations;
  work.run();
  const int64_t count = g_allocations - before;
  ASSERT_GT(count, 0) << work.name;
  for (int64_t failing = 0; failing < count; ++failing) {
    SCOPED_TRACE(work.name + " without allocation " + std::to_string(failing));
    const int64_t live = g_live;
    expectFailure(work, failing, expected);
    EXPECT_EQ(g_live, live) << "leaked";
    EXPECT_TRUE(std::filesystem::is_empty(directory));
  }
}

TEST(CodecMemory, EveryAllocationMayFail) {
  const std::string directory = testing::TempDir() + "codec_memory";
  std::filesystem::create_directories(directory);
  zorSetAllocator(&kAllocator);
  for (const int threads : {1, 3}) {
    zorSetNumThreads(1);
    for (const CodecWork& work : codecWork(threads, directory)) {
      SCOPED_TRACE(std::to_string(threads) + " threads");
      expectFailures(work, directory);
    }
  }
  zorSetNumThreads(0);
  zorSetAllocator(nullptr);
  std::filesystem::remove_all(directory);
}

}  // namespace
}  // namespace zorj::test
