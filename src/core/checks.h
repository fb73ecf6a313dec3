// Argument checks that exports share. The order in which an export makes them is part of its interface.
#pragma once

#include "zorj/types.h"

namespace zorj {

template <class... Pointer>
constexpr bool anyNull(const Pointer*... pointers) {
  return (... || (pointers == nullptr));
}

constexpr bool isEmpty(RoiSize size) { return size.width < 1 || size.height < 1; }

}  // namespace zorj
