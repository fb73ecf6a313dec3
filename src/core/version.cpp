#include "zorj/types.h"

const LibraryVersion* ZORJ_CALL zorjGetLibVersion() {
  static constexpr LibraryVersion version = {
      6, 1, 137, 823, {'q', '5', 0, 0}, "zorjq5-6.1.dll", "6.1 build 137.56", "Mar 17 2010"};
  return &version;
}
