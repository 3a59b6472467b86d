#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/fleet/random.h"

namespace fleet {

// A choice with its weight. The probability of a choice is its weight divided by the sum of all weights,
// which must be above 0.
template <typename Choice>
struct Weighted {
  Choice choice;
  double weight = 1;
};

// Draws an index with a probability proportional to its weight.
class WeightedIndex {
 public:
  template <typename Choice>
  explicit WeightedIndex(const std::vector<Weighted<Choice>>& choices) {
    for (const auto& each : choices) add(each.weight);
  }

  [[nodiscard]] std::size_t draw(Random& random) const {
    if (sums_.size() == 1) return 0;
    const double position = random.share() * sums_.back();
    std::size_t index = 0;
    while (position >= sums_[index]) ++index;
    return index;
  }

 private:
  void add(double weight) { sums_.push_back((sums_.empty() ? 0 : sums_.back()) + weight); }

  std::vector<double> sums_;
};

// Parses "NAME=WEIGHT,NAME=WEIGHT"; a missing weight is 1. Returns nullopt if a name is empty, a weight is
// neither 0 nor from 0.000001 to 1000000000, or all weights are 0.
[[nodiscard]] std::optional<std::vector<Weighted<std::string>>> weightsOf(std::string_view text);

}  // namespace fleet
