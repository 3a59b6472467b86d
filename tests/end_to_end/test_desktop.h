#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tests/harness/desktop/portal_double.h"
#include "tests/harness/desktop/session_bus.h"
#include "tests/harness/desktop/test_display.h"
#include "tests/harness/desktop/tray_host_double.h"

// Puts the program that reports to the timeline at this path.
void placeRecorder(const std::string& path);

// A private display, session bus, panel and settings portal. killall, and the web view of a bundle without
// one, are programs that report to the timeline.
class TestDesktop {
 public:
  // Starts the display and the bus, and fails the test if it cannot. The test starts the panel and the
  // portal.
  void startDesktop();
  // Runs a desktop tool on the test's display and returns its output.
  std::string runOnDisplay(const std::vector<std::string>& command);

  test_support::SessionBus bus_;
  test_support::TestDisplay display_;
  test_support::TrayHostDouble host_;
  test_support::PortalDouble portal_;
  // The environment for programs on this desktop; nullopt unsets a variable.
  std::map<std::string, std::optional<std::string>> environment_;
};
