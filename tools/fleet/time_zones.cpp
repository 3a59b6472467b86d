#include "tools/fleet/time_zones.h"

namespace fleet {
namespace {

constexpr Seconds maxOffset = 14 * hour;

// Per cent of the installations, rounded; an assumption, not a statistic.
constexpr std::string_view world =
    "-08:00=3,-07:00=2,-06:00=5,-05:00=8,-04:00=2,-03:00=5,+00:00=6,+01:00=15,+02:00=9,+03:00=8,+03:30=1,"
    "+04:00=1,+05:00=4,+05:30=14,+06:00=2,+07:00=4,+08:00=7,+09:00=3,+10:00=1";

bool isDigit(char character) {
  return character >= '0' && character <= '9';
}

// Parses an offset such as "+05:30".
std::optional<Seconds> offsetOf(std::string_view text) {
  constexpr std::string_view form = "+00:00";
  if (text.size() != form.size() || (text[0] != '+' && text[0] != '-') || text[3] != ':') return std::nullopt;
  const auto digit = [&](std::size_t index) { return Seconds{text[index] - '0'}; };
  for (const std::size_t index : {1u, 2u, 4u, 5u}) {
    if (!isDigit(text[index])) return std::nullopt;
  }
  const Seconds minutes = digit(4) * 10 + digit(5);
  const Seconds offset = (digit(1) * 10 + digit(2)) * hour + minutes * minute;
  if (minutes >= 60 || offset > maxOffset) return std::nullopt;
  return text[0] == '-' ? -offset : offset;
}

}  // namespace

std::optional<Zones> zonesOf(std::string_view text) {
  if (text == "utc") return Zones{{0, 1}};
  const auto parts = weightsOf(text == "world" ? world : text);
  if (!parts) return std::nullopt;
  Zones zones;
  for (const auto& part : *parts) {
    const auto offset = offsetOf(part.choice);
    if (!offset) return std::nullopt;
    zones.push_back({*offset, part.weight});
  }
  return zones;
}

}  // namespace fleet
