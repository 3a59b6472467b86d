#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "tests/end_to_end/agent_test.h"
#include "tests/harness/desktop/x_windows.h"

inline constexpr const char* pipePath = "/tmp/KMNOTIPIPE";

inline bool isAccessNotice(const test_support::XWindow& window) {
  return window.name == "Tovalin Notification" && window.width == 420;
}
inline bool isLoadingNotice(const test_support::XWindow& window) {
  return window.name == "Tovalin Notification" && window.width == 260;
}

// The real agent with its notification pipe, written to as the main application does.
class NoticeTest : public AgentTest {
 protected:
  void SetUp() override {
    std::filesystem::remove_all(pipePath);
    AgentTest::SetUp();
  }

  // Launches it and waits until it listens.
  void launch() {
    timeline_.clear();
    launchAgent();
    ASSERT_TRUE(test_support::waitUntil([] { return std::filesystem::is_fifo(pipePath); }));
    ASSERT_TRUE(waitForText("log 6: read_pipe read pipe message : "));
    timeline_.clear();
  }

  // One message, and the wait until the listener has read it.
  void send(const std::string& message) {
    const test_support::FileDescriptor pipe(::open(pipePath, O_WRONLY | O_NONBLOCK | O_CLOEXEC));
    ASSERT_TRUE(pipe.valid()) << "nobody listens";
    const int before = count("log 6: read_pipe read pipe message : ");
    ASSERT_EQ(::write(pipe.get(), message.data(), message.size()), static_cast<ssize_t>(message.size()));
    ASSERT_TRUE(
        test_support::waitUntil([&] { return count("log 6: read_pipe read pipe message : ") > before; }));
  }

  [[nodiscard]] bool shows(bool (*notice)(const test_support::XWindow&)) {
    return test_support::waitForWindow(display_.name(), notice).has_value();
  }
  [[nodiscard]] bool hides(bool (*notice)(const test_support::XWindow&)) {
    return test_support::waitForNoWindow(display_.name(), notice);
  }

  // By its menu.
  void expectAProperEnd() {
    ASSERT_TRUE(host_.click("Quit Tovalin"));
    EXPECT_EQ(endOfAgent(), test_support::ExitStatus{.code = 0});
  }
  void expectNoticesAndAProperEnd() {
    send("-non");
    EXPECT_TRUE(shows(isAccessNotice));
    expectAProperEnd();
  }
};
