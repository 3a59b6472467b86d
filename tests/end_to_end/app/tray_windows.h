#pragma once

#include "tests/harness/desktop/x_windows.h"

// The windows of the agent in tests of its icon.
namespace tray_test {

[[nodiscard]] inline bool isAgents(const test_support::XWindow& window) {
  return window.className == "Tovalin";
}
[[nodiscard]] inline bool isMenu(const test_support::XWindow& window) {
  return isAgents(window) && window.width > 100;
}
[[nodiscard]] inline bool isIcon(const test_support::XWindow& window) {
  return isAgents(window) && !isMenu(window) && window.width >= 20;
}

}  // namespace tray_test
