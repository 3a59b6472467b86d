#include "tools/fleet/day_plan.h"

#include <algorithm>
#include <cmath>

namespace fleet {
namespace {

// A random time of day with a bell-shaped distribution.
struct TimeOfDay {
  Seconds middle;
  Seconds deviation;

  [[nodiscard]] Seconds draw(Seconds dayNumber, Random& random) const {
    return dayNumber * day + middle +
           static_cast<Seconds>(std::floor(random.bell() * static_cast<double>(deviation)));
  }
};

constexpr TimeOfDay officeOpens{8 * hour + 45 * minute, 35 * minute};
constexpr TimeOfDay officeCloses{17 * hour + 45 * minute, 60 * minute};
constexpr TimeOfDay sleepTime{23 * hour + 30 * minute, 60 * minute};
constexpr TimeOfDay wakeTime{7 * hour + 15 * minute, 50 * minute};
// The delay after the return of power covers booting and login.
constexpr Seconds powerReturns = 20 * hour;
constexpr TimeOfDay powerCutLaunch{powerReturns + 75, 13};
constexpr Seconds warmUpDays = 2;

// Reuses the elements of `runs`, so that their memory is allocated only once.
class RunList {
 public:
  explicit RunList(std::vector<Run>& runs) : runs_(runs) {}
  ~RunList() { runs_.resize(count_); }
  RunList(const RunList&) = delete;
  RunList& operator=(const RunList&) = delete;

  Run& add(Seconds launch, Seconds end) {
    if (count_ == runs_.size()) runs_.emplace_back();
    Run& run = runs_[count_++];
    run.launch = launch;
    run.end = end;
    run.sleepPeriods.clear();
    return run;
  }
  [[nodiscard]] Run* last() { return count_ == 0 ? nullptr : &runs_[count_ - 1]; }

 private:
  std::vector<Run>& runs_;
  std::size_t count_ = 0;
};

void drawOfficeDays(Seconds firstDay, Seconds lastDay, Random& random, RunList& runs) {
  for (Seconds each = firstDay; each <= lastDay; ++each)
    runs.add(officeOpens.draw(each, random), officeCloses.draw(each, random));
}

// A run ends when the next one is launched, or at the end of the plan.
void start(Seconds launch, Seconds endOfPlan, RunList& runs) {
  if (Run* before = runs.last()) before->end = launch;
  runs.add(launch, endOfPlan);
}

void drawUniformDays(bool sleeps, Seconds firstDay, Seconds lastDay, Random& random, RunList& runs) {
  const Seconds endOfPlan = (lastDay + 2) * day;
  for (Seconds each = firstDay; each <= lastDay; ++each) {
    if (!sleeps) {
      start(each * day + random.below(day), endOfPlan, runs);
      continue;
    }
    const Seconds awake = wakeTime.draw(each, random);
    const Seconds asleep = sleepTime.draw(each, random);
    if (Run* before = runs.last()) before->sleepPeriods.back().to = awake;
    start(awake + random.below(asleep - awake), endOfPlan, runs);
    runs.last()->sleepPeriods.push_back({asleep, endOfPlan});
  }
}

void drawPowerCut(bool sleeps, Span counted, Random& random, RunList& runs) {
  const Seconds firstDay = daysIn(counted.from - powerReturns + day - 1);
  const Seconds lastDay = daysIn(counted.to - 1);
  Run& run = runs.add(powerCutLaunch.draw(firstDay, random), (lastDay + 2) * day);
  for (Seconds each = firstDay; sleeps && each <= lastDay; ++each)
    run.sleepPeriods.push_back(
        {std::max(sleepTime.draw(each, random), run.launch + minute), wakeTime.draw(each + 1, random)});
}

std::optional<Launches> launchesNamed(std::string_view name) {
  if (name == "uniform") return Launches::Uniform;
  if (name == "office") return Launches::Office;
  if (name == "power-cut") return Launches::PowerCut;
  return std::nullopt;
}

}  // namespace

std::optional<LaunchMix> launchesOf(std::string_view text) {
  const auto parts = weightsOf(text);
  if (!parts) return std::nullopt;
  LaunchMix mix;
  for (const auto& part : *parts) {
    const auto launches = launchesNamed(part.choice);
    if (!launches) return std::nullopt;
    mix.push_back({*launches, part.weight});
  }
  return mix;
}

void drawRuns(Launches launches, bool sleeps, Span counted, Random& random, std::vector<Run>& runs) {
  RunList list(runs);
  const Seconds firstDay = daysIn(counted.from) - warmUpDays;
  const Seconds lastDay = daysIn(counted.to - 1);
  switch (launches) {
    case Launches::Uniform:
      return drawUniformDays(sleeps, firstDay, lastDay, random, list);
    case Launches::Office:
      return drawOfficeDays(firstDay, lastDay, random, list);
    case Launches::PowerCut:
      return drawPowerCut(sleeps, counted, random, list);
  }
}

}  // namespace fleet
