#pragma once

#include <sys/types.h>

#include <chrono>
#include <string>
#include <vector>

#include "tests/bench/process_tree.h"
#include "tests/harness/desktop/portal_double.h"
#include "tests/harness/desktop/session_bus.h"
#include "tests/harness/desktop/test_display.h"
#include "tests/harness/desktop/tray_host_double.h"
#include "tests/harness/processes/child_process.h"
#include "tests/harness/processes/message_fifo.h"
#include "tests/platform/linux/helpers/page_server.h"

namespace bench {

// A program with its arguments.
using Command = std::vector<std::string>;
using Milliseconds = std::chrono::duration<double, std::milli>;

// A desktop with a panel, a portal, the product's server and a main application that reads the agent's
// messages. Whatever fails ends the benchmark.
class StartUpDesktop {
 public:
  StartUpDesktop();

  // The agent in a bundle of its own, whose product server is the one here; and the least program that makes
  // one fetch and has an icon with a menu.
  [[nodiscard]] Command agent() const { return {contents() + "/MacOS/TovalinTray"}; }
  [[nodiscard]] Command bareTray() const;
  // The least program that has the web engine load a page, to be run with options(). It has no icon.
  [[nodiscard]] Command barePage() const;
  // With what the programs are run: they find the display and the bus, and what they say goes nowhere.
  [[nodiscard]] test_support::ChildOptions options() const;
  // The folder `Contents` of the agent's bundle.
  [[nodiscard]] static std::string contents();

  // Starts a program and waits until its icon is in the panel.
  Milliseconds start(const Command& program);
  // Ends it, and the helper with the web view, which would outlive the agent for a while and slow down the
  // next start.
  void end();
  Milliseconds startAndEnd(const Command& program);

  // Of the program that was started last.
  [[nodiscard]] std::vector<pid_t> tree() const { return processTree(program_.pid()); }

 private:
  web_view_test::PageServer server_;
  test_support::SessionBus bus_;
  test_support::TestDisplay display_;
  test_support::PortalDouble portal_;
  test_support::TrayHostDouble host_;
  test_support::MessageFifo pipe_{"/tmp/KMPIPE"};
  test_support::ChildProcess program_;
};

}  // namespace bench
