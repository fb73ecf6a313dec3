// Every function of the library as data: its name, its parameters, and how to call it with a list of values.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "zorj.h"

namespace zorj::test {

// The value of an argument: a number or an address. A record that is passed by value takes one for each field.
using Value = int64_t;

template <class T>
T* pointerOf(Value value) {
  return reinterpret_cast<T*>(static_cast<uintptr_t>(value));  // NOLINT(performance-no-int-to-ptr): it was an address
}
inline Value valueOf(const void* pointer) { return static_cast<Value>(reinterpret_cast<uintptr_t>(pointer)); }

// The kinds of arguments, as docs/bindings.md has them.
enum class Kind { kValue, kStep, kPointer, kPointers, kValues, kObject, kCreated };

struct Parameter {
  std::string_view name;
  Kind kind;
  std::string_view type = {};  // what a pointer leads to
  size_t elementSize = 0;      // its size, 0 if opaque
  bool isRead = false;         // and not written
  bool nullable = false;
  int count = 0;  // of an array, 0 if not told
};

struct Export {
  std::string name;
  std::string header;
  int (*call)(const Value* arguments);
  std::vector<StatusCode> statuses;  // that the comments name
  std::vector<Parameter> parameters;

  bool has(const char* part) const { return name.find(part) != std::string::npos; }
};

// All of them.
const std::vector<Export>& exports();

namespace detail {

template <class T>
T takeArgument(const Value*& next) {
  if constexpr (std::is_same_v<T, RoiSize>) {
    const auto width = static_cast<int32_t>(*next++);
    return {width, static_cast<int32_t>(*next++)};
  } else if constexpr (std::is_pointer_v<T>) {
    return pointerOf<std::remove_pointer_t<T>>(*next++);
  } else {
    return static_cast<T>(*next++);
  }
}

inline int statusOf(StatusCode status) { return status; }
inline int statusOf(const LibraryVersion* version) { return version ? StatusOk : StatusNullPointer; }

template <class Result, class... Arguments>
int invoke(Result(ZORJ_CALL* function)(Arguments...), [[maybe_unused]] const Value* next) {
  struct Call {  // braces evaluate from left to right
    Result result;
    Call(Result(ZORJ_CALL* f)(Arguments...), Arguments... arguments) : result(f(arguments...)) {}
  };
  return statusOf(Call{function, takeArgument<Arguments>(next)...}.result);
}

}  // namespace detail

template <auto kFunction>
int invoke(const Value* arguments) {
  return detail::invoke(kFunction, arguments);
}

}  // namespace zorj::test
