#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "tools/fleet/simulation.h"

namespace fleet {

// The settings as given on the command line, and assumptions about a request.
struct Description {
  std::string launches;
  std::string zones;
  std::size_t fileSize = 0;
  std::string host;
};

// Returns the settings as one line of text.
[[nodiscard]] std::string captionOf(const Settings& settings, const Description& description);

// Returns the statistics of the day as text.
[[nodiscard]] std::string textReport(const Settings& settings, const Description& description,
                                     const FleetDay& result);

// Returns the same as a JSON object. The help text describes its members.
[[nodiscard]] std::string jsonReport(const Settings& settings, const Description& description,
                                     const FleetDay& result);

// Formats a second of the counted day as the time of day in UTC, as in "00:23:23".
[[nodiscard]] std::string clockText(Seconds second);

// Formats a number as in "1,234,567".
[[nodiscard]] std::string grouped(std::uint64_t number);

}  // namespace fleet
