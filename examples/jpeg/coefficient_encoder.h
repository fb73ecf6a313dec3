// Codes the coefficients of a whole image, scan by scan.
#pragma once

#include <cstdint>
#include <vector>

#include "jpeg/codec.h"
#include "jpeg/coefficients.h"
#include "jpeg/scan_encoder.h"

namespace examples::jpeg {

class CoefficientEncoder {
 public:
  // Keeps `image`, whose coefficients may be filled in later, and sets its process.
  CoefficientEncoder(CoefficientImage& image, const EncodeOptions& options);

  // Counts the symbols of a row of MCUs for all scans: each row once, in order, best while it lies in the caches.
  void count(int32_t mcuRow);

  // Makes the file; once, when all rows are counted.
  void write(std::vector<uint8_t>& jpeg);

 private:
  CoefficientImage& image_;
  int32_t restartInterval_;
  std::vector<Scan> scans_;
  std::vector<ScanCounter> counters_;  // of each scan; none where the usual tables do
};

}  // namespace examples::jpeg
