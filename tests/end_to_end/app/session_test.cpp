#include <gmock/gmock.h>

#include <fstream>

#include "tests/end_to_end/agent_test.h"
#include "tests/harness/desktop/session_manager_double.h"
#include "tests/harness/desktop/x_windows.h"

namespace {

using namespace std::chrono_literals;
using test_support::ExitStatus;
using test_support::XWindow;
using testing::Contains;
using testing::Pair;

constexpr const char* restartNever = "3";

bool isOpenWindow(const XWindow& window) {
  return window.name.starts_with("a window");
}
bool isMenu(const XWindow& window) {
  return window.className == "Tovalin" && window.width > 100;
}

// The agent in a desktop session with an X session manager.
class Session : public AgentTest {
 protected:
  void SetUp() override {
    AgentTest::SetUp();
    ASSERT_TRUE(manager_.start());
    environment_["SESSION_MANAGER"] = manager_.address();
  }

  // Returns once the agent has registered with the session manager.
  void launchInSession() {
    launchAgentInPanel();
    ASSERT_EQ(manager_.waitForEvent("saved"), "saved yes") << agent_.takeErrorOutput();
  }

  void expectProperEnd() {
    EXPECT_EQ(endOfAgent(), ExitStatus{.code = 0}) << agent_.takeErrorOutput();
    EXPECT_EQ(texts().back(), killRun);
    EXPECT_EQ(count(killRun), 1);
    EXPECT_EQ(count("pipe: -toff"), 0);
    EXPECT_EQ(count(unloadRun), 0);
  }

  // Returns the CPU time of the agent's main thread.
  [[nodiscard]] std::chrono::nanoseconds used() const {
    std::ifstream file("/proc/" + std::to_string(agent_.pid()) + "/schedstat");
    long long count = 0;
    EXPECT_TRUE(file >> count);
    return std::chrono::nanoseconds(count);
  }

  test_support::SessionManagerDouble manager_;
};

TEST_F(Session, EndOfSessionRunsProperEnd) {
  launchInSession();
  ASSERT_TRUE(manager_.save());
  EXPECT_EQ(manager_.waitForEvent("saved"), "saved yes");
  EXPECT_EQ(count(killRun), 0);
  ASSERT_TRUE(manager_.die());
  expectProperEnd();
  EXPECT_TRUE(host_.waitForEvent("unregistered"));
}

TEST_F(Session, EndOfSessionWithoutSaveRunsProperEnd) {
  launchInSession();
  ASSERT_TRUE(manager_.die());
  expectProperEnd();
}

TEST_F(Session, EndOfSessionWithOpenMenuRunsProperEnd) {
  launchInSession();
  ASSERT_TRUE(host_.contextMenu(10, 10));
  ASSERT_TRUE(test_support::waitForWindow(display_.name(), isMenu));
  ASSERT_TRUE(manager_.save());
  EXPECT_EQ(manager_.waitForEvent("saved"), "saved yes");
  ASSERT_TRUE(manager_.die());
  expectProperEnd();
}

TEST_F(Session, EndOfSessionBehindWindowThatRefusesToCloseRunsProperEnd) {
  install("/tmp/Applications/Tovalin.app", TOVALIN_AGENT_WITH_WINDOW_OPEN);
  launchInSession();
  ASSERT_TRUE(test_support::waitForWindow(display_.name(), isOpenWindow));
  ASSERT_TRUE(manager_.save());
  EXPECT_EQ(manager_.waitForEvent("saved"), "saved yes");
  ASSERT_TRUE(manager_.die());
  expectProperEnd();
}

TEST_F(Session, EndOfSessionDuringPauseIsHandledAfterIt) {
  launchInSession();
  const auto begin = std::chrono::steady_clock::now();
  ASSERT_TRUE(host_.click("Automount Off"));
  ASSERT_TRUE(waitForText("pipe: -u"));
  ASSERT_TRUE(manager_.die());
  expectProperEnd();
  EXPECT_GE(timeline_.waitFor(killRun)->time - begin, 1990ms);
}

TEST_F(Session, EndOfSessionDuringLaunchIsHandledAfterIt) {
  install("/tmp/Applications/Tovalin.app");
  writeProperties({.autorun = false});
  timeline_.hold("launchctl");
  startAgent();
  ASSERT_TRUE(waitForText(unloadRun));
  ASSERT_TRUE(manager_.waitForEvent("registered"));
  ASSERT_TRUE(manager_.die());
  timeline_.release("launchctl");
  EXPECT_EQ(endOfAgent(), ExitStatus{.code = 0});
  EXPECT_LT(position("pipe: -ton"), position(killRun));
}

TEST_F(Session, CancelledEndOfSessionKeepsAgentRunning) {
  launchInSession();
  ASSERT_TRUE(manager_.save());
  ASSERT_EQ(manager_.waitForEvent("saved"), "saved yes");
  ASSERT_TRUE(manager_.cancel());
  ASSERT_TRUE(host_.click("Automount Off"));
  EXPECT_TRUE(waitForText("pipe: -u"));
  EXPECT_EQ(count(killRun), 0);
  ASSERT_TRUE(manager_.die());
  expectProperEnd();
}

TEST_F(Session, AgentAsksNotToBeRestartedBySessionManager) {
  launchInSession();
  EXPECT_THAT(manager_.properties(), Contains(Pair("RestartStyleHint", restartNever)));
}

TEST_F(Session, LossOfSessionManagerKeepsAgentRunningAndIdle) {
  launchInSession();
  manager_.process().kill();
  ASSERT_TRUE(manager_.process().wait());
  const auto before = used();
  EXPECT_FALSE(test_support::waitUntil([&] { return used() - before > 100ms; }, 500ms));
  ASSERT_TRUE(host_.click("Automount Off"));
  EXPECT_TRUE(waitForText("pipe: -u"));
  terminateAgent();
}

TEST_F(Session, AgentStartsWithoutReachableSessionManager) {
  manager_.process().kill();
  ASSERT_TRUE(manager_.process().wait());
  launchAgentInPanel();
  terminateAgent();
}

}  // namespace
