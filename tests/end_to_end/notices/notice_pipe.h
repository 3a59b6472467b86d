#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "tests/end_to_end/running_agent.h"
#include "tests/end_to_end/test_desktop.h"
#include "tests/harness/desktop/x_windows.h"
#include "tests/harness/processes/child_process.h"
#include "tests/harness/processes/file_descriptor.h"
#include "tests/harness/processes/wait_until.h"

inline constexpr const char* pipePath = "/tmp/KMNOTIPIPE";

inline bool isAccessNotice(const test_support::XWindow& window) {
  return window.name == "Tovalin Notification" && window.width == 420;
}
inline bool isLoadingNotice(const test_support::XWindow& window) {
  return window.name == "Tovalin Notification" && window.width == 260;
}

// Writes to the agent's notification pipe like the main application, and observes the notices.
class NoticePipe {
 public:
  NoticePipe(TestDesktop& desktop, RunningAgent& agent) : noticeDesktop_(desktop), noticeAgent_(agent) {}
  NoticePipe(const NoticePipe&) = delete;
  NoticePipe& operator=(const NoticePipe&) = delete;

  // Call only while no agent runs.
  static void removePipe() { std::filesystem::remove_all(pipePath); }

  // Launches the agent and waits until it listens.
  void launch() {
    noticeAgent_.timeline_.clear();
    noticeAgent_.launchAgent();
    ASSERT_TRUE(test_support::waitUntil([] { return std::filesystem::is_fifo(pipePath); }));
    ASSERT_TRUE(noticeAgent_.waitForText("log 6: read_pipe read pipe message : "));
    noticeAgent_.timeline_.clear();
  }

  // Sends one message and waits until the listener has read it.
  void send(const std::string& message) {
    const test_support::FileDescriptor pipe(::open(pipePath, O_WRONLY | O_NONBLOCK | O_CLOEXEC));
    ASSERT_TRUE(pipe.valid()) << "no process reads the pipe";
    const int before = noticeAgent_.count("log 6: read_pipe read pipe message : ");
    ASSERT_EQ(::write(pipe.get(), message.data(), message.size()), static_cast<ssize_t>(message.size()));
    ASSERT_TRUE(test_support::waitUntil(
        [&] { return noticeAgent_.count("log 6: read_pipe read pipe message : ") > before; }));
  }

  [[nodiscard]] bool shows(bool (*notice)(const test_support::XWindow&)) {
    return test_support::waitForWindow(noticeDesktop_.display_.name(), notice).has_value();
  }
  [[nodiscard]] bool hides(bool (*notice)(const test_support::XWindow&)) {
    return test_support::waitForNoWindow(noticeDesktop_.display_.name(), notice);
  }

  // Launches the agent in a panel and waits for its icon, too.
  void launchInPanel() {
    launch();
    ASSERT_TRUE(noticeDesktop_.host_.waitForEvent("registered"));
  }
  // Ends the agent through its menu.
  void expectProperEnd() {
    ASSERT_TRUE(noticeDesktop_.host_.click("Quit Tovalin"));
    EXPECT_EQ(noticeAgent_.endOfAgent(), test_support::ExitStatus{.code = 0});
  }
  void expectNoticesAndProperEnd() {
    send("-non");
    EXPECT_TRUE(shows(isAccessNotice));
    expectProperEnd();
  }

 private:
  TestDesktop& noticeDesktop_;
  RunningAgent& noticeAgent_;
};
