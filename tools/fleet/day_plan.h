#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "tools/fleet/random.h"
#include "tools/fleet/seconds.h"
#include "tools/fleet/weights.h"

namespace fleet {

// A period in which the machine sleeps: the agent's timer stops, the clock continues.
struct SleepPeriod {
  Seconds from;
  Seconds to;
  bool operator==(const SleepPeriod&) const = default;
};

// One run of the agent, with its sleep periods in chronological order.
struct Run {
  Seconds launch;
  Seconds end;
  std::vector<SleepPeriod> sleepPeriods = {};
  bool operator==(const Run&) const = default;
};

// When agents are launched. The times are assumptions, which the help text lists.
enum class Launches {
  Uniform,   // once a day, at a random time while the machine is awake; until the next launch
  Office,    // from about 08:45 to about 17:45
  PowerCut,  // once, 0.5 to 2 minutes after power returns at 20:00; runs from then on
};

using LaunchMix = std::vector<Weighted<Launches>>;

// Parses "uniform", "office", "power-cut" or a mix such as "office=3,uniform=1". Returns nullopt if it is
// invalid.
[[nodiscard]] std::optional<LaunchMix> launchesOf(std::string_view text);

// The 24 hours of local time to be counted.
struct Span {
  Seconds from;
  Seconds to;
};

// Draws the runs of one installation into `runs`, reusing its memory: the runs that overlap `counted`, and
// those of the two days before, which determine the files to upload. `sleeps`: the machine sleeps at night,
// from about 23:30 to about 07:15; office machines are off then anyway.
void drawRuns(Launches launches, bool sleeps, Span counted, Random& random, std::vector<Run>& runs);

}  // namespace fleet
