#include "tests/bench/pairs.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>

namespace bench {
namespace {

using Clock = std::chrono::steady_clock;
using Microseconds = std::chrono::duration<double, std::micro>;

constexpr int pairsOfTimes = 51;
constexpr Microseconds longEnough = std::chrono::milliseconds(5);

Microseconds timeOf(const std::function<void()>& work, int calls) {
  const auto begin = Clock::now();
  for (int i = 0; i < calls; ++i) work();
  return Clock::now() - begin;
}

}  // namespace

void giveUp(const std::string& reason) {
  std::fprintf(stderr, "%s\n", reason.c_str());
  std::exit(1);
}

// The first calls also warm up caches and the allocator.
int callsInOneRun(const std::function<void()>& work) {
  int calls = 1;
  while (timeOf(work, calls) < longEnough) calls *= 2;
  return calls;
}

std::vector<Pair> runPairs(int pairs, const std::function<double()>& ours,
                           const std::function<double()>& reference) {
  std::vector<Pair> result;
  for (int i = 0; i < pairs; ++i) {
    Pair pair;
    if (i % 2 == 0) pair.ours = ours();
    pair.reference = reference();
    if (i % 2 != 0) pair.ours = ours();
    result.push_back(pair);
  }
  return result;
}

Result timePairs(const std::string& what, const std::function<void()>& ours,
                 const std::function<void()>& reference) {
  const auto timerOf = [](const std::function<void()>& work) -> std::function<double()> {
    if (work == nullptr) return [] { return 0.0; };
    return [&work, calls = callsInOneRun(work)] { return timeOf(work, calls).count() / calls; };
  };
  return {.what = what,
          .unit = "us",
          .pairs = runPairs(pairsOfTimes, timerOf(ours), timerOf(reference)),
          .hasReference = reference != nullptr};
}

void print(const Result& result) {
  std::string ours, reference;
  for (const Pair& pair : result.pairs) {
    const char* comma = ours.empty() ? "" : ", ";
    ours.append(comma).append(std::to_string(pair.ours));
    reference.append(comma).append(std::to_string(pair.reference));
  }
  std::printf(R"({"what": "%s", "unit": "%s", "ours": [%s])", result.what.c_str(), result.unit.c_str(),
              ours.c_str());
  if (result.hasReference) std::printf(R"(, "reference": [%s])", reference.c_str());
  std::printf("}\n");
  std::fflush(stdout);
}

}  // namespace bench
