#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/fleet/seconds.h"
#include "tools/fleet/weights.h"

namespace fleet {

// How far a zone's clocks are ahead of UTC, and the share of the installations there. The rules of summer
// time are none of the model's: an offset holds for the whole day.
using Zones = std::vector<Weighted<Seconds>>;

// "utc"; "world", a rough share of the world's people for each offset; or a list such as
// "+01:00=3,+05:30=1,-08:00". Returns nullopt if it is none of these, or an offset is beyond 14 hours.
[[nodiscard]] std::optional<Zones> zonesOf(std::string_view text);

}  // namespace fleet
