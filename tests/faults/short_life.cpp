#include <optional>

#include "tests/faults/lives.h"

using namespace std::chrono_literals;

void ShortLife::lead() {
  letCallsFail();
  launchToItsEnd();
  record();
  useSwitch();
  useSupportWindow();
}

void ShortLife::record() {
  sendRecord(deviceMessage, deviceRecord);
  sendRecord(transferMessage, transferRecord);
}

void ShortLife::useSwitch() {
  hasSwitched_ = agent_.running() && turnsTheSwitch() &&
                 comesTrue([&] { return count("pipe: -u") == 1 || words().tellOfTheCommandPipe(); });
}

void ShortLife::useSupportWindow() {
  hasOpened_ = false;
  if (!agent_.running() || !showsItsMenu() || !host_.click("Support Tovalin")) return;
  std::optional<test_support::XWindow> window;
  // What its contents are asked of may be long in answering, or not be there.
  hasOpened_ = test_support::waitUntil([&] {
                 window = test_support::waitForWindow(display_.name(), isSupportWindow, 0ms);
                 return window.has_value() || !agent_.running();
               }) &&
               window.has_value();
  if (hasOpened_) closeSupportWindow(window->id);
}

Outcome ShortLife::judge() {
  Outcome outcome = FaultTest::judge();
  if (outcome.survival != Survival::Served && outcome.survival != Survival::ServedWithoutPipe) return outcome;
  if (!hasSwitched_) return {Survival::Failed, "does not switch: " + outcome.detail};
  if (!hasOpened_) return {Survival::Failed, "opens no support window: " + outcome.detail};
  return outcome;
}
