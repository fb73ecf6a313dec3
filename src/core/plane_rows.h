// The rows that a row kernel reads or writes.
#pragma once

#include <cstddef>

namespace zorj {

// Where one row starts in each of kPlanes planes.
template <class T, size_t kPlanes>
struct PlaneRows {
  T* plane[kPlanes];

  T* operator[](size_t i) const { return plane[i]; }
};

}  // namespace zorj
