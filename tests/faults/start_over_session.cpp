#include <signal.h>

#include <utility>

#include "tests/faults/sessions.h"

void StartOverSession::play() {
  run_.environment_["LD_PRELOAD"] = std::nullopt;
  run_.launchCompletely();
  test_support::ChildProcess first = std::exchange(run_.agent_, {});
  first.signal(SIGSTOP);
  run_.host_.clearEvents();
  run_.environment_["LD_PRELOAD"] = TOVALIN_FAILING_CALLS;
  run_.injector_.injectFailures();
  run_.startAgent();
  // The lock is held, so it asks the first process, which is stopped and does not answer.
  static_cast<void>(run_.becomesTrue([&] { return run_.injector_.calls("flock") > 0; }));
  first.kill();
  static_cast<void>(first.wait());
  run_.waitForLaunch();
}
