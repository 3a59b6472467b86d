// The agent with the real web view: how its beacons arrive at the product server.
#include <gtest/gtest.h>
#include <signal.h>

#include <filesystem>

#include "tests/end_to_end/agent_test.h"
#include "tests/harness/processes/web_processes.h"
#include "tests/harness/servers/page_server.h"

namespace {

using test_support::ExitStatus;
using web_view_test::processesNamed;

constexpr const char* kPage = "/product/nimba/binary/GATovalin.html";

class BeaconPage : public AgentTest {
 protected:
  void SetUp() override {
    AgentTest::SetUp();
    if (HasFatalFailure()) return;
    install("/tmp/Applications/Tovalin.app");
    installWebView();
    setServers(server_.address(""));
    server_.put(kPage, "<script>fetch('/counted' + location.search)</script>");
  }
  // Returns whether the page was requested with this query and its script has run.
  [[nodiscard]] testing::AssertionResult isAsked(const std::string& query) { return waitFor(kPage + query); }
  [[nodiscard]] testing::AssertionResult isCounted(const std::string& query) {
    return waitFor("/counted" + query);
  }

  // Kills the running web view; the next beacon starts another.
  static void endWebView() {
    for (const pid_t process : processesNamed("TovalinWebView")) ::kill(process, SIGTERM);
    ASSERT_TRUE(test_support::waitUntil([] { return processesNamed("TovalinWebView").empty(); }));
  }

  web_view_test::PageServer server_;

 private:
  [[nodiscard]] testing::AssertionResult waitFor(const std::string& target) {
    if (server_.waitFor(target)) return testing::AssertionSuccess();
    return testing::AssertionFailure() << "asked for " << testing::PrintToString(server_.asked());
  }
};

TEST_F(BeaconPage, LaunchIsCountedIfAgentIsKilledBeforeServerReplies) {
  server_.holdBack(kPage);
  launchAgentInPanel();
  ASSERT_TRUE(isAsked("?category=applaunch&applaunch=version1.0.0"));
  agent_.kill();
  EXPECT_EQ(endOfAgent(), ExitStatus{.signal = SIGKILL});
  server_.letGo();
  EXPECT_TRUE(isCounted("?category=applaunch&applaunch=version1.0.0"));
}

// A change inside the bundle ends the watch, so the agent survives the removal of the bundle.
TEST_F(BeaconPage, ClickAfterBundleRemovalIsCountedAtOriginalServer) {
  launchAgentInPanel();
  ASSERT_TRUE(isCounted("?category=applaunch&applaunch=version1.0.0"));
  setServers(kClosedServer);
  ASSERT_TRUE(waitForText("log 6: filestreamcallback event flag : 0"));
  endWebView();
  std::filesystem::remove_all(bundle_);
  ASSERT_TRUE(host_.click("Automount Off"));
  EXPECT_TRUE(isCounted("?category=clickaction&clickaction=turnoff"));
}

TEST_F(BeaconPage, QuitIsCountedIfAgentEndsBeforeServerReplies) {
  launchAgentInPanel();
  ASSERT_TRUE(isCounted("?category=applaunch&applaunch=version1.0.0"));
  server_.holdBack(kPage);
  ASSERT_TRUE(host_.click("Quit Tovalin"));
  EXPECT_EQ(endOfAgent(), ExitStatus{.code = 0});
  ASSERT_TRUE(isAsked("?category=clickaction&clickaction=quit"));
  server_.letGo();
  EXPECT_TRUE(isCounted("?category=clickaction&clickaction=quit"));
}

}  // namespace
