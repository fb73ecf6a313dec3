#include "hostile/exports.h"

namespace zorj::test {

const std::vector<Export>& exports() {
  static const std::vector<Export> all = {
#include "exports.inc"  // tools/exports.py --calls
  };
  return all;
}

}  // namespace zorj::test
