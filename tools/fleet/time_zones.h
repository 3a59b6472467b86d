#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/fleet/seconds.h"
#include "tools/fleet/weights.h"

namespace fleet {

// Offsets from UTC with the share of installations. Daylight saving time is not modelled: an offset is
// constant for the whole day.
using Zones = std::vector<Weighted<Seconds>>;

// Parses "utc"; "world", a rough share of the world population per offset; or a list such as
// "+01:00=3,+05:30=1,-08:00". Returns nullopt if it is invalid or an offset exceeds 14 hours.
[[nodiscard]] std::optional<Zones> zonesOf(std::string_view text);

}  // namespace fleet
