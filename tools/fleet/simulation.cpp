#include "tools/fleet/simulation.h"

#include "tools/fleet/agent_model.h"

namespace fleet {
namespace {

// Counts the events of all installations.
class Counter : public Events {
 public:
  explicit Counter(FleetDay& counted) : day_(counted) {}

  void setBegin(Seconds localTime) { begin_ = localTime; }

  void launch(Seconds time) override { day_.launches.add(time - begin_); }
  void upload(Seconds time, int files) override { day_.uploads.add(time - begin_, files); }

 private:
  FleetDay& day_;
  Seconds begin_ = 0;
};

}  // namespace

FleetDay simulate(const Settings& settings, const Watcher& watcher) {
  FleetDay result;
  Counter counter(result);
  Random random(settings.seed);
  const WeightedIndex zones(settings.zones);
  const WeightedIndex mix(settings.launches);
  std::vector<Run> runs;
  for (std::int64_t i = 0; i < settings.installations; ++i) {
    const Seconds offset = settings.zones[zones.draw(random)].choice;
    const Launches launches = settings.launches[mix.draw(random)].choice;
    const bool sleeps = random.share() < settings.sleeping;
    const Seconds begin = firstCounted + offset;
    drawRuns(launches, sleeps, {begin, begin + day}, random, runs);
    if (watcher != nullptr) watcher(offset, runs);
    counter.setBegin(begin);
    AgentModel agent(settings.delay, random, counter);
    for (const Run& run : runs) agent.run(run);
  }
  return result;
}

}  // namespace fleet
