#include <optional>

#include "tests/faults/lives.h"

using namespace std::chrono_literals;

void ShortLife::lead() {
  run_.injector_.letCallsFail();
  run_.launchToItsEnd();
  record();
  useSwitch();
  useSupportWindow();
}

void ShortLife::record() {
  run_.sendRecord(deviceMessage, deviceRecord);
  run_.sendRecord(transferMessage, transferRecord);
}

void ShortLife::useSwitch() {
  hasSwitched_ = run_.agent_.running() && run_.turnsTheSwitch() && run_.comesTrue([&] {
    return run_.count("pipe: -u") == 1 || run_.words().tellOfTheCommandPipe();
  });
}

void ShortLife::useSupportWindow() {
  hasOpened_ = false;
  if (!run_.agent_.running() || !run_.showsItsMenu() || !run_.host_.click("Support Tovalin")) return;
  std::optional<test_support::XWindow> window;
  // The server's replies for the window may be late or missing.
  hasOpened_ = test_support::waitUntil([&] {
                 window = test_support::waitForWindow(run_.display_.name(), isSupportWindow, 0ms);
                 return window.has_value() || !run_.agent_.running();
               }) &&
               window.has_value();
  if (hasOpened_) run_.closeSupportWindow(window->id);
}

Outcome ShortLife::judge() {
  Outcome outcome = run_.judge();
  if (outcome.survival != Survival::Served && outcome.survival != Survival::ServedWithoutPipe) return outcome;
  if (!hasSwitched_) return {Survival::Failed, "does not switch: " + outcome.detail};
  if (!hasOpened_) return {Survival::Failed, "opens no support window: " + outcome.detail};
  return outcome;
}
