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
#include "tests/harness/servers/page_server.h"

namespace bench {

// A program and its arguments.
using Command = std::vector<std::string>;
using Milliseconds = std::chrono::duration<double, std::milli>;

// A desktop with a panel, a portal, a product server and a reader of the command pipe. Any failure ends the
// benchmark.
class StartUpDesktop {
 public:
  StartUpDesktop();

  // Return the commands of the agent, in a bundle that names the product server of this desktop, and of
  // bare_tray.
  [[nodiscard]] Command agent() const { return {contents() + "/MacOS/TovalinTray"}; }
  [[nodiscard]] Command bareTray() const;
  // Returns the command of bare_page, to be run with options(). It shows no icon.
  [[nodiscard]] Command barePage() const;
  // Returns options with the display and the session bus of this desktop; standard error is discarded.
  [[nodiscard]] test_support::ChildOptions options() const;
  // Returns the path of the folder Contents of the agent's bundle.
  [[nodiscard]] static std::string contents();

  // Starts a program and waits until its icon is registered. Returns the time.
  Milliseconds start(const Command& program);
  // Ends the program and the web view helper, which would outlive the agent and slow down the next start.
  void end();
  Milliseconds startAndEnd(const Command& program);

  // Returns the process tree of the program that was started last.
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
