#pragma once

#include <functional>
#include <string>
#include <vector>

namespace bench {

// What one pair of runs, side by side in time, came to.
struct Pair {
  double ours = 0;
  double reference = 0;
};

// One line of the table.
struct Result {
  std::string what = {};
  std::string unit = {};
  std::vector<Pair> pairs = {};
  bool hasReference = true;
};

// Says why there is nothing to measure, and ends the program with 1.
[[noreturn]] void giveUp(const std::string& reason);

// How often `work` is to be called for one run, so that the clock and the scheduler weigh little in it.
[[nodiscard]] int callsInOneRun(const std::function<void()>& work);

// Runs `ours` and `reference` alternately, so that whatever else the machine does meets both alike, and takes
// turns in who goes first, so that neither always finds the other's leavings. Each gives the figure of one
// run.
[[nodiscard]] std::vector<Pair> runPairs(int pairs, const std::function<double()>& ours,
                                         const std::function<double()>& reference);

// The same for work that is timed here, in microseconds a call. `reference` may be absent.
[[nodiscard]] Result timePairs(const std::string& what, const std::function<void()>& ours,
                               const std::function<void()>& reference = nullptr);

// One line of JSON on standard output.
void print(const Result& result);

}  // namespace bench
