// Benchmarks that compare variants of the same work. Google Benchmark runs their repetitions interleaved;
// tools/bench_report.py pairs them by number and prints the medians of the ratios.
#pragma once

#include <benchmark/benchmark.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "core/isa.h"

namespace zorj::bench {

// One way of doing a row's work once. `prepare` runs untimed before a repetition and sets the instruction-set level.
struct Variant {
  std::string name;
  std::function<void()> run;
  Isa isa = Isa::kAvx512;
};

// Registers the benchmarks "row/variant". The first variant is the one the report compares the others with; `pixels`
// (or bytes, or blocks: `unit`) is how much one run does.
inline void compare(const std::string& row, double amount, const std::string& unit, std::vector<Variant> variants) {
  for (Variant& variant : variants) {
    benchmark::RegisterBenchmark(
        (row + "/" + variant.name).c_str(), [variant = std::move(variant), amount, unit](benchmark::State& state) {
          if (setIsa(variant.isa) != variant.isa && variant.isa != Isa::kAvx512) {
            state.SkipWithError("the processor lacks this level");
            return;
          }
          for (auto _ : state) {
            variant.run();
            benchmark::ClobberMemory();
          }
          setIsa(Isa::kAvx512);
          state.counters[unit] = benchmark::Counter(amount, benchmark::Counter::kIsIterationInvariantRate);
        });
  }
}

}  // namespace zorj::bench
