#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "tools/fleet/random.h"
#include "tools/fleet/seconds.h"
#include "tools/fleet/weights.h"

namespace fleet {

// The machine sleeps: its agent's timer stands still, its clock goes on.
struct Nap {
  Seconds from;
  Seconds to;
  bool operator==(const Nap&) const = default;
};

// One run of the agent, from its launch to its end, with the naps in it in their order.
struct Run {
  Seconds launch;
  Seconds end;
  std::vector<Nap> naps = {};
  bool operator==(const Run&) const = default;
};

// When agents are started. The numbers are assumptions; they stand in the help.
enum class Launches {
  Uniform,   // once a day, at any second while the machine is awake; on until the next start
  Office,    // in the morning, about 08:45; off in the evening, about 17:45
  PowerCut,  // once, half a minute to two minutes after the power returned at 20:00; on from then
};

using LaunchMix = std::vector<Weighted<Launches>>;

// "uniform", "office", "power-cut", or a mix such as "office=3,uniform=1". Returns nullopt if it is none.
[[nodiscard]] std::optional<LaunchMix> launchesOf(std::string_view text);

// The 24 hours of local time that are counted.
struct Span {
  Seconds from;
  Seconds to;
};

// Draws the runs of one installation into `runs`, whose memory is used again: those that reach into
// `counted`, and those of the two days before, which decide what is left to upload. `sleeps`: the machine
// sleeps at night, from about 23:30 to about 07:15; an office machine is off then anyway.
void drawRuns(Launches launches, bool sleeps, Span counted, Random& random, std::vector<Run>& runs);

}  // namespace fleet
