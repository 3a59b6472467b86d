#pragma once

#include <cstdint>
#include <functional>

#include "tools/fleet/day_load.h"
#include "tools/fleet/day_plan.h"
#include "tools/fleet/time_zones.h"

namespace fleet {

struct Settings {
  std::int64_t installations = 10'000'000;
  LaunchMix launches{{Launches::Uniform, 1}};
  Zones zones{{0, 1}};
  double sleeping = 0;  // the share of machines that sleep at night
  Seconds delay = 0;    // a changed rule: see AgentModel
  std::uint64_t seed = 1;
};

// What reaches the server within the counted day, second by second. Its size doesn't depend on the fleet's.
struct FleetDay {
  DayLoad uploads;
  DayLoad launches;  // each fetches the version list and sends two beacons
};

// Is shown each installation before it is simulated: its offset from UTC and its runs, in local time.
using Watcher = std::function<void(Seconds offset, const std::vector<Run>& runs)>;

// Simulates the installations one after another. The same settings give the same day.
[[nodiscard]] FleetDay simulate(const Settings& settings, const Watcher& watcher = nullptr);

}  // namespace fleet
