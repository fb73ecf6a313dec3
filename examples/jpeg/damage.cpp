#include "jpeg/damage.h"

#include <algorithm>

#include "common/error.h"

namespace examples::jpeg {

DecodeReport Damage::report() const {
  if (lost_ == 0) return {problem_};
  const int64_t percent = std::clamp<int64_t>(lost_ * 100 / all_, 1, 99);
  const std::string share = lost_ == all_ ? "all" : "about " + std::to_string(percent) + " %";
  return {(problem_.empty() ? "damaged data" : problem_) + ": " + share + " of the image data is lost"};
}

bool nextScan(MarkerReader& reader, size_t endOfData, Damage& damage) {
  reader.resumeAt(endOfData);
  try {
    return reader.nextScan();
  } catch (const Error& error) {
    damage.note(error.what());
    return false;
  }
}

}  // namespace examples::jpeg
