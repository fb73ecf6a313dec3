// Every export of a 32-bit library takes its own arguments off the stack.
#include <gtest/gtest.h>

#include <cstdint>

#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace {

struct Export {
  const char* name;
  int argumentBytes;
};
constexpr Export kExports[] = {
#include "exports.inc"
};

void* findExport(const char* name) {
#if defined(_WIN32)
  static const HMODULE library = LoadLibraryA(ZORJ_LIBRARY);
  return library ? reinterpret_cast<void*>(GetProcAddress(library, name)) : nullptr;
#else
  static void* const library = dlopen(ZORJ_LIBRARY, RTLD_NOW);
  return library ? dlsym(library, name) : nullptr;
#endif
}

// Calls `function` with `words` arguments of zero, which fail its first check, and returns how many bytes of them it
// left on the stack.
int32_t bytesLeft(void* function, int words) {
  int32_t left;
  __asm__ volatile(
      "movl %%esp, %%esi\n"
      "1: testl %%ecx, %%ecx\n"
      "jz 2f\n"
      "pushl $0\n"
      "decl %%ecx\n"
      "jmp 1b\n"
      "2: call *%%edi\n"
      "movl %%esi, %%eax\n"
      "subl %%esp, %%eax\n"
      "movl %%esi, %%esp\n"
      : "=a"(left), "+c"(words)
      : "D"(function)
      : "edx", "esi", "memory", "cc");
  return left;
}

TEST(StackBalance, EveryExportPopsItsArguments) {
  for (const Export& candidate : kExports) {
    void* const function = findExport(candidate.name);
    ASSERT_NE(function, nullptr) << candidate.name;
    EXPECT_EQ(bytesLeft(function, candidate.argumentBytes / 4), 0) << candidate.name;
  }
}

}  // namespace
