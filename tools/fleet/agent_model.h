#pragma once

#include <ctime>
#include <optional>

#include "tools/fleet/day_plan.h"
#include "tools/fleet/random.h"
#include "tools/fleet/seconds.h"

namespace fleet {

// Receives the events of a simulated installation. Times are local.
class Events {
 public:
  Events() = default;
  Events(const Events&) = delete;
  Events& operator=(const Events&) = delete;
  virtual ~Events() = default;

  virtual void launch(Seconds time) = 0;
  // An upload pass over `files` finished days, one request each. Not called if there are no files.
  virtual void upload(Seconds time, int files) = 0;
};

// Models the parts of an agent that determine when it uploads: the day's file, the one-minute timer, which
// stops while the machine sleeps, and the product's own `uploadTick`. Every upload succeeds.
class AgentModel {
 public:
  // `delay` models a changed rule: a pass after a date change is delayed by a random time below `delay`; 0 is
  // the product's rule. `events` and `random` must outlive the model.
  AgentModel(Seconds delay, Random& random, Events& events)
      : delay_(delay), random_(random), events_(events) {}

  // Simulates one run. Call in chronological order.
  void run(const Run& run);

 private:
  void launch(Seconds time);
  void sleep(const SleepPeriod& period);
  void tickUntil(Seconds end);
  void tick();
  void skipIdleTicks(Seconds end);
  void startDay(Seconds time);
  void pass(Seconds time);
  void uploadDelayed(Seconds end);

  Seconds delay_;
  Random& random_;
  Events& events_;

  std::optional<Seconds> fileDay_;  // the local day whose file is written
  int finishedFiles_ = 0;

  Seconds storedDay_ = 0;
  std::tm stored_{};
  bool uploadIsWaiting_ = false;
  Seconds nextTick_ = 0;
  std::optional<Seconds> delayedPass_;
};

}  // namespace fleet
