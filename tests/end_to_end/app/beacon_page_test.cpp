// The agent with the real web view: what its beacons come to at the product server.
#include <gtest/gtest.h>
#include <signal.h>

#include "tests/end_to_end/agent_test.h"
#include "tests/platform/linux/helpers/page_server.h"

namespace {

using test_support::ExitStatus;

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
  // Whether the page was asked for with this query, and whether its script has then run.
  [[nodiscard]] testing::AssertionResult isAsked(const std::string& query) { return waitFor(kPage + query); }
  [[nodiscard]] testing::AssertionResult isCounted(const std::string& query) {
    return waitFor("/counted" + query);
  }

  web_view_test::PageServer server_;

 private:
  [[nodiscard]] testing::AssertionResult waitFor(const std::string& target) {
    if (server_.waitFor(target)) return testing::AssertionSuccess();
    return testing::AssertionFailure() << "asked for " << testing::PrintToString(server_.asked());
  }
};

TEST_F(BeaconPage, LaunchIsCountedThoughTheAgentWasKilledBeforeTheServerAnswered) {
  server_.holdBack(kPage);
  launchAgentInPanel();
  ASSERT_TRUE(isAsked("?category=applaunch&applaunch=version1.0.0"));
  agent_.kill();
  EXPECT_EQ(endOfAgent(), ExitStatus{.signal = SIGKILL});
  server_.letGo();
  EXPECT_TRUE(isCounted("?category=applaunch&applaunch=version1.0.0"));
}

TEST_F(BeaconPage, QuitIsCountedThoughTheAgentEndedBeforeTheServerAnswered) {
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
