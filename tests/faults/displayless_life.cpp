#include "tests/faults/lives.h"

void DisplaylessLife::lead() {
  run_.environment_["DISPLAY"] = ":none";
  run_.injector_.letCallsFail();
  run_.startAgent();
  static_cast<void>(run_.comesTrue([&] { return !run_.agent_.running(); }));
}

Outcome DisplaylessLife::judge() {
  const auto early = run_.judgeEarlyEnd();
  if (!early) return {Survival::Failed, "goes on: " + run_.message()};
  if (!run_.nothingOutlivesIt()) return {Survival::Failed, "processes outlive it: " + run_.message()};
  return *early;
}
