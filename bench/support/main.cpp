#include <cstdlib>
#include <string>
#include <vector>

#include "support/compare.h"

// Repetitions of all variants are interleaved at random, so that a row's variants meet the same disturbances.
int main(int argc, char** argv) {
  std::vector<std::string> arguments = {argv[0], "--benchmark_repetitions=11", "--benchmark_min_time=0.03",
                                        "--benchmark_enable_random_interleaving=true",
                                        "--benchmark_report_aggregates_only=false"};
  arguments.insert(arguments.end(), argv + 1, argv + argc);
  std::vector<char*> pointers;
  for (std::string& argument : arguments) pointers.push_back(argument.data());
  int count = static_cast<int>(pointers.size());
  benchmark::Initialize(&count, pointers.data());
  if (benchmark::ReportUnrecognizedArguments(count, pointers.data())) return EXIT_FAILURE;
  zorj::bench::registerComparisons();
  benchmark::RunSpecifiedBenchmarks();
  return EXIT_SUCCESS;
}
