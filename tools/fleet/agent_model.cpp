#include "tools/fleet/agent_model.h"

#include <algorithm>

#include "usage/upload_rules.h"

namespace fleet {
namespace {

// Any day of a month will do, because uploadTick uses only the day of the month.
constexpr Seconds firstDayOfMonth = 10;

std::tm localTimeOf(Seconds time) {
  const Seconds dayNumber = daysIn(time);
  const auto second = static_cast<int>(time - dayNumber * day);
  std::tm parts{};
  parts.tm_mday = static_cast<int>(firstDayOfMonth + dayNumber);
  parts.tm_hour = second / static_cast<int>(hour);
  parts.tm_min = second / static_cast<int>(minute) % 60;
  parts.tm_sec = second % 60;
  return parts;
}

Seconds ticksUpTo(Seconds first, Seconds time) {
  return time <= first ? 0 : (time - first + minute - 1) / minute;
}

}  // namespace

void AgentModel::run(const Run& run) {
  launch(run.launch);
  for (const SleepPeriod& period : run.sleepPeriods) {
    if (period.from >= run.end) break;
    sleep({period.from, std::min(period.to, run.end)});
  }
  tickUntil(run.end);
}

void AgentModel::launch(Seconds time) {
  events_.launch(time);
  startDay(time);
  delayedPass_.reset();
  pass(time);
  stored_ = localTimeOf(time);
  storedDay_ = daysIn(time);
  uploadIsWaiting_ = false;
  nextTick_ = time + minute;
}

void AgentModel::sleep(const SleepPeriod& period) {
  tickUntil(period.from);
  nextTick_ += period.to - period.from;
  if (delayedPass_) *delayedPass_ += period.to - period.from;
}

void AgentModel::tickUntil(Seconds end) {
  while (nextTick_ < end) {
    if (!uploadIsWaiting_) skipIdleTicks(end);
    if (nextTick_ >= end) break;
    tick();
  }
  uploadDelayed(end);
}

// Without a pending upload, a tick within the stored day does nothing. Skipping these ticks keeps the
// simulation of ten million days fast.
void AgentModel::skipIdleTicks(Seconds end) {
  const Seconds midnight = (storedDay_ + 1) * day;
  nextTick_ += ticksUpTo(nextTick_, std::min(end, midnight)) * minute;
}

void AgentModel::tick() {
  const Seconds time = nextTick_;
  nextTick_ += minute;
  uploadDelayed(time);
  const std::tm now = localTimeOf(time);
  const UploadTick decision = uploadTick(stored_, now, uploadIsWaiting_);
  if (decision.dateChanged) {
    stored_ = now;
    storedDay_ = daysIn(time);
    startDay(time);
    uploadIsWaiting_ = true;
  }
  if (!decision.passIsDue) return;
  uploadIsWaiting_ = false;
  if (delay_ == 0) return pass(time);
  delayedPass_ = time + random_.below(delay_);
}

void AgentModel::startDay(Seconds time) {
  const Seconds today = daysIn(time);
  if (fileDay_ && *fileDay_ != today) ++finishedFiles_;
  fileDay_ = today;
}

void AgentModel::pass(Seconds time) {
  if (finishedFiles_ > 0) events_.upload(time, finishedFiles_);
  finishedFiles_ = 0;
}

void AgentModel::uploadDelayed(Seconds end) {
  if (!delayedPass_ || *delayedPass_ >= end) return;
  pass(*delayedPass_);
  delayedPass_.reset();
}

}  // namespace fleet
