#pragma once

#include <functional>
#include <string>
#include <vector>

namespace bench {

// The figures of two runs made one after the other.
struct Pair {
  double ours = 0;
  double reference = 0;
};

// One row of the table.
struct Result {
  std::string what = {};
  std::string unit = {};
  std::vector<Pair> pairs = {};
  bool hasReference = true;
};

// Prints `reason` to standard error and exits with status 1.
[[noreturn]] void giveUp(const std::string& reason);

// Returns the number of calls of `work` in one run, large enough to make the resolution of the clock and the
// scheduling negligible.
[[nodiscard]] int callsInOneRun(const std::function<void()>& work);

// Runs `ours` and `reference` alternately, so that other load affects both alike, and swaps their order in
// each pair, so that neither always runs after the other. Each returns the figure of one run.
[[nodiscard]] std::vector<Pair> runPairs(int pairs, const std::function<double()>& ours,
                                         const std::function<double()>& reference);

// Like runPairs(), but measures the time of `ours` and `reference` in microseconds per call. `reference` may
// be null.
[[nodiscard]] Result timePairs(const std::string& what, const std::function<void()>& ours,
                               const std::function<void()>& reference = nullptr);

// Prints one line of JSON to standard output.
void print(const Result& result);

}  // namespace bench
