// What a decoder could not make out.
#pragma once

#include <cstdint>
#include <string>

#include "jpeg/codec.h"
#include "jpeg/marker_reader.h"

namespace examples::jpeg {

// Sums up what is missing.
class Damage {
 public:
  // In MCUs, or rows of them.
  void count(int64_t lost, int64_t all) {
    lost_ += lost;
    all_ += all;
  }
  void note(const std::string& problem) {
    if (problem_.empty()) problem_ = problem;
  }
  DecodeReport report() const;

 private:
  int64_t lost_ = 0;
  int64_t all_ = 0;
  std::string problem_;
};

// Reads on after a scan: true at another one. Damage of the headers from here on leaves what was decoded.
bool nextScan(MarkerReader& reader, size_t endOfData, Damage& damage);

}  // namespace examples::jpeg
