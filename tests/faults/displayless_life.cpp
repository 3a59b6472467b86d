#include "tests/faults/lives.h"

void DisplaylessLife::lead() {
  environment_["DISPLAY"] = ":none";
  letCallsFail();
  startAgent();
  static_cast<void>(comesTrue([&] { return !agent_.running(); }));
}

Outcome DisplaylessLife::judge() {
  const auto early = judgeEarlyEnd();
  if (!early) return {Survival::Failed, "goes on: " + message()};
  if (!nothingOutlivesIt()) return {Survival::Failed, "processes outlive it: " + message()};
  return *early;
}
