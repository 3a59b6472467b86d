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
  if (!listens()) return;
  sendToPipe(deviceMessage);
  static_cast<void>(comesTrue([] { return recordsWritten(deviceRecord) == 1; }));
  sendToPipe(transferMessage);
  static_cast<void>(comesTrue([] { return recordsWritten(transferRecord) == 1; }));
}

void ShortLife::useSwitch() {
  if (!agent_.running() || !host_.click("Automount Off")) return;
  static_cast<void>(comesTrue([&] { return count("pipe: -u") == 1; }));
}

void ShortLife::useSupportWindow() {
  if (!agent_.running() || !host_.click("Support Tovalin")) return;
  std::optional<test_support::XWindow> window;
  static_cast<void>(comesTrue([&] {
    window = test_support::waitForWindow(display_.name(), isSupportWindow, 0ms);
    return window.has_value();
  }));
  if (window) closeSupportWindow(window->id);
}

bool ShortLife::hasSentRecords() {
  return recordsWritten(deviceRecord) == 1 && recordsWritten(transferRecord) == 1;
}
