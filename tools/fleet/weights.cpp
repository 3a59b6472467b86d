#include "tools/fleet/weights.h"

#include <charconv>

namespace fleet {
namespace {

// Outside these bounds, sums and products of weights overflow or lose all significant digits.
constexpr double minWeight = 1e-6;
constexpr double maxWeight = 1e9;

std::optional<double> weightOf(std::string_view text) {
  double weight = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), weight);
  const bool whole = error == std::errc() && end == text.data() + text.size();
  const bool good = weight == 0 || (weight >= minWeight && weight <= maxWeight);
  return whole && good ? std::optional(weight) : std::nullopt;
}

std::optional<Weighted<std::string>> partOf(std::string_view text) {
  const std::size_t equals = text.find('=');
  const std::string_view name = text.substr(0, equals);
  const auto weight = equals == std::string_view::npos ? 1 : weightOf(text.substr(equals + 1));
  if (name.empty() || !weight) return std::nullopt;
  return Weighted<std::string>{std::string(name), *weight};
}

}  // namespace

std::optional<std::vector<Weighted<std::string>>> weightsOf(std::string_view text) {
  std::vector<Weighted<std::string>> parts;
  double sum = 0;
  for (std::size_t begin = 0, comma = 0; comma != std::string_view::npos; begin = comma + 1) {
    comma = text.find(',', begin);
    auto part = partOf(text.substr(begin, comma == std::string_view::npos ? comma : comma - begin));
    if (!part) return std::nullopt;
    sum += part->weight;
    parts.push_back(*std::move(part));
  }
  return sum > 0 ? std::optional(std::move(parts)) : std::nullopt;
}

}  // namespace fleet
