#include <optional>

#include "tests/faults/sessions.h"

using namespace std::chrono_literals;

void ShortSession::play() {
  run_.injector_.injectFailures();
  run_.launchCompletely();
  record();
  useSwitch();
  useSupportWindow();
}

void ShortSession::record() {
  run_.sendRecord(deviceMessage, deviceRecord);
  run_.sendRecord(transferMessage, transferRecord);
}

void ShortSession::useSwitch() {
  hasSwitched_ = run_.agent_.running() && run_.switchWorks() && run_.becomesTrue([&] {
    return run_.count("pipe: -u") == 1 || run_.unusualOutput().reportsCommandPipeError();
  });
}

void ShortSession::useSupportWindow() {
  hasOpened_ = false;
  if (!run_.agent_.running() || !run_.showsMenu() || !run_.host_.click("Support Tovalin")) return;
  std::optional<test_support::XWindow> window;
  // The server's replies for the window may be late or missing.
  hasOpened_ = test_support::waitUntil([&] {
                 window = test_support::waitForWindow(run_.display_.name(), isSupportWindow, 0ms);
                 return window.has_value() || !run_.agent_.running();
               }) &&
               window.has_value();
  if (hasOpened_) run_.closeSupportWindow(window->id);
}

Outcome ShortSession::judge() {
  Outcome outcome = run_.judge();
  if (outcome.survival != Survival::Served && outcome.survival != Survival::ServedWithoutPipe) return outcome;
  if (!hasSwitched_) return {Survival::Failed, "does not switch: " + outcome.detail};
  if (!hasOpened_) return {Survival::Failed, "opens no support window: " + outcome.detail};
  return outcome;
}
