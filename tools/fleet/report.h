#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "tools/fleet/simulation.h"

namespace fleet {

// How the settings were written, and what is assumed of one request.
struct Description {
  std::string launches;
  std::string zones;
  std::size_t fileSize = 0;
  std::string host;
};

// The settings in a line for people.
[[nodiscard]] std::string captionOf(const Settings& settings, const Description& description);

// The day in a few lines for people.
[[nodiscard]] std::string textReport(const Settings& settings, const Description& description,
                                     const FleetDay& result);

// The same as one JSON object, for programs. Its members are in the help.
[[nodiscard]] std::string jsonReport(const Settings& settings, const Description& description,
                                     const FleetDay& result);

// "00:23:23", the time of day in UTC of a second of the counted day.
[[nodiscard]] std::string clockText(Seconds second);

// "1,234,567"
[[nodiscard]] std::string grouped(std::uint64_t number);

}  // namespace fleet
