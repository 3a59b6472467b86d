#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tests/harness/desktop/portal_double.h"
#include "tests/harness/desktop/session_bus.h"
#include "tests/harness/desktop/test_display.h"
#include "tests/harness/desktop/tray_host_double.h"

// Puts the program that reports to the time line at this path.
void placeRecorder(const std::string& path);

// A display, a session bus, a panel and a settings portal of the test's own. killall, and the web view of
// a bundle without one, are programs that report to the time line.
class TestDesktop {
 public:
  // Starts the display and the bus, and fails the test if it can't. The panel and the portal are the test's
  // to start.
  void startDesktop();
  // Runs a tool of the desktop on the test's display and returns what it prints.
  std::string runOnDisplay(const std::vector<std::string>& command);

  test_support::SessionBus bus_;
  test_support::TestDisplay display_;
  test_support::TrayHostDouble host_;
  test_support::PortalDouble portal_;
  // What a program on this desktop is started with; nullopt unsets a variable.
  std::map<std::string, std::optional<std::string>> environment_;
};
