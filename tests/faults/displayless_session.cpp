#include "tests/faults/sessions.h"

void DisplaylessSession::play() {
  run_.environment_["DISPLAY"] = ":none";
  run_.injector_.injectFailures();
  run_.startAgent();
  static_cast<void>(run_.becomesTrue([&] { return !run_.agent_.running(); }));
}

Outcome DisplaylessSession::judge() {
  const auto early = run_.judgeEarlyEnd();
  if (!early) return {Survival::Failed, "goes on: " + run_.message()};
  if (!run_.hasNoProcessesLeft()) return {Survival::Failed, "processes outlive it: " + run_.message()};
  return *early;
}
