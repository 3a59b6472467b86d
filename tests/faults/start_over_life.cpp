#include <signal.h>

#include <utility>

#include "tests/faults/lives.h"

void StartOverLife::lead() {
  environment_["LD_PRELOAD"] = std::nullopt;
  launchToItsEnd();
  test_support::ChildProcess first = std::exchange(agent_, {});
  first.signal(SIGSTOP);
  host_.clearEvents();
  environment_["LD_PRELOAD"] = TOVALIN_FAILING_CALLS;
  letCallsFail();
  startAgent();
  // Its place is taken, so it asks the first one, which won't answer any more.
  static_cast<void>(comesTrue([&] { return callsSoFar("flock") > 0; }));
  first.kill();
  static_cast<void>(first.wait());
  waitForLaunch();
}
