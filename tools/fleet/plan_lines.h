#pragma once

#include <string>
#include <vector>

#include "tools/fleet/day_plan.h"

namespace fleet {

// Returns one installation's runs as a line of JSON including the line end:
// {"offset":3600,"runs":[[LAUNCH,END,[[ASLEEP,AWAKE]]]]}, in seconds of local time.
[[nodiscard]] std::string planLine(Seconds offset, const std::vector<Run>& runs);

}  // namespace fleet
