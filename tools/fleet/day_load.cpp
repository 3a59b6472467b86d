#include "tools/fleet/day_load.h"

#include <algorithm>
#include <numeric>

namespace fleet {
namespace {

std::uint64_t sumOf(std::span<const std::uint32_t> seconds) {
  return std::accumulate(seconds.begin(), seconds.end(), std::uint64_t{0});
}

std::uint32_t percentileOf(std::span<const std::uint32_t> seconds) {
  std::vector<std::uint32_t> sorted(seconds.begin(), seconds.end());
  const std::size_t rank = (sorted.size() * 99 + 99) / 100;
  const auto position = sorted.begin() + static_cast<std::ptrdiff_t>(rank - 1);
  std::nth_element(sorted.begin(), position, sorted.end());
  return *position;
}

}  // namespace

Rate DayLoad::rate(Seconds begin, Seconds length) const {
  const auto part = seconds().subspan(static_cast<std::size_t>(begin), static_cast<std::size_t>(length));
  const auto peak = std::max_element(part.begin(), part.end());
  const std::uint64_t total = sumOf(part);
  return {.total = total,
          .mean = static_cast<double>(total) / static_cast<double>(length),
          .percentile = percentileOf(part),
          .peak = *peak,
          .peakAt = begin + (peak - part.begin())};
}

Seconds DayLoad::busiestHour() const {
  Seconds busiest = 0;
  std::uint64_t most = 0;
  for (Seconds begin = 0; begin + hour <= day; begin += minute) {
    const std::uint64_t sum =
        sumOf(seconds().subspan(static_cast<std::size_t>(begin), static_cast<std::size_t>(hour)));
    if (sum <= most) continue;
    most = sum;
    busiest = begin;
  }
  return busiest;
}

}  // namespace fleet
