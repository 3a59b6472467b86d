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
  Seconds delay = 0;    // see AgentModel
  std::uint64_t seed = 1;
};

// The requests to the server in each second of the counted day. The size does not depend on the number of
// installations.
struct FleetDay {
  DayLoad uploads;
  DayLoad launches;  // each one fetches the version list and sends two beacons
};

// Called for each installation before it is simulated, with its offset from UTC and its runs in local time.
using Watcher = std::function<void(Seconds offset, const std::vector<Run>& runs)>;

// Simulates all installations. Deterministic for the same settings.
[[nodiscard]] FleetDay simulate(const Settings& settings, const Watcher& watcher = nullptr);

}  // namespace fleet
