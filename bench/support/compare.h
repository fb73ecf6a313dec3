// Benchmarks that compare variants of the same work. Google Benchmark runs their repetitions interleaved;
// tools/bench_report.py pairs them by number and prints the medians of the ratios.
#pragma once

#include <benchmark/benchmark.h>

#include <functional>
#include <string>
#include <vector>

#include "core/isa.h"

namespace zorj::bench {

// Registers the comparisons of a benchmark program; every <topic>_bench.cpp defines it.
void registerComparisons();

// One way of doing a row's work once, at an instruction-set level or the next lower one there is.
struct Variant {
  std::string name;
  std::function<void()> run;
  Isa isa = Isa::kAvx512;
};

// Registers a row of the report: `run` does `amount` units (pixels, blocks, bytes) of work. The report tells how many
// times as fast as each of the others the first variant is, by the calling thread's processor time or, where several
// threads work, by the clock.
inline void compare(const std::string& row, double amount, const std::string& unit,
                    const std::vector<Variant>& variants, bool byTheClock = false) {
  for (const Variant& variant : variants) {
    auto* const registered =
        benchmark::RegisterBenchmark((row + "/" + variant.name).c_str(), [=](benchmark::State& state) {
          setIsa(variant.isa);
          for (auto _ : state) {
            variant.run();
            benchmark::ClobberMemory();
          }
          setIsa(Isa::kAvx512);
          state.counters[unit] = benchmark::Counter(amount, benchmark::Counter::kIsIterationInvariant);
        });
    if (byTheClock) registered->UseRealTime();
  }
}

// The levels below AVX2 as further variants of a row whose first variant runs `run` at AVX2 or AVX-512.
inline std::vector<Variant> atEveryLevel(const std::function<void()>& run) {
  return {{"AVX2", run, Isa::kAvx2},
          {"AVX-512", run, Isa::kAvx512},
          {"SSE4", run, Isa::kSse4},
          {"SSSE3", run, Isa::kSsse3},
          {"portable", run, Isa::kPortable}};
}

}  // namespace zorj::bench
