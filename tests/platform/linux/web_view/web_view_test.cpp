// Tests the view with the real helper.
#include "platform/web_view.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/mount.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>

#include "platform/bundle.h"
#include "platform/linux/web_view/web_view_process.h"
#include "tests/harness/desktop/event_loop.h"
#include "tests/harness/processes/child_process.h"
#include "tests/harness/processes/traced_process.h"
#include "tests/harness/processes/web_processes.h"
#include "tests/harness/servers/page_server.h"
#include "tests/platform/linux/helpers/helper_run.h"

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using testing::IsEmpty;
using testing::SizeIs;
using web_view_test::processesNamed;
using web_view_test::webProcesses;

constexpr const char* kHelper = "TovalinWebView";

class WebViewTest : public testing::Test {
 protected:
  void TearDown() override {
    view_.reset();
    EXPECT_TRUE(serveEventsUntil([] { return webProcesses().empty() && !web_view_test::hasZombie(); }));
  }
  void load(const std::string& path) { view_->loadRequest(server_.address(path)); }

  web_view_test::PageServer server_;
  std::unique_ptr<platform::WebView> view_ = std::make_unique<platform::WebView>(platform::Rect{0, 0, 1, 1});
};

TEST_F(WebViewTest, RunsScriptOfPage) {
  server_.put("/page", "<script>fetch('/script?runs')</script>");
  load("/page?a=b%20c");
  EXPECT_TRUE(server_.waitFor("/script?runs"));
  EXPECT_TRUE(server_.wasAsked("/page?a=b%20c"));
}

TEST_F(WebViewTest, SecondOfTwoQuickLoadsIsRequested) {
  load("/first");
  load("/second");
  EXPECT_TRUE(server_.waitFor("/second"));
  EXPECT_THAT(processesNamed(kHelper), SizeIs(1));
}

TEST_F(WebViewTest, LoadAfterKilledHelperIsRequested) {
  load("/first");
  ASSERT_TRUE(server_.waitFor("/first"));
  ASSERT_THAT(processesNamed(kHelper), SizeIs(1));
  const pid_t killed = processesNamed(kHelper).front();
  ASSERT_EQ(::kill(killed, SIGKILL), 0);
  // The threads end one by one; the process is reaped after the last one.
  ASSERT_TRUE(serveEventsUntil([&] { return !fs::exists("/proc/" + std::to_string(killed)); }));
  load("/second");
  EXPECT_TRUE(server_.waitFor("/second"));
}

TEST_F(WebViewTest, LoadIsRequestedAfterDestructionOfView) {
  load("/page");
  view_.reset();
  EXPECT_TRUE(server_.waitFor("/page"));
  EXPECT_TRUE(serveEventsUntil([] { return webProcesses().empty(); }));
}

TEST_F(WebViewTest, StartsNothingBeforeFirstLoad) {
  EXPECT_THAT(webProcesses(), IsEmpty());
}

TEST_F(WebViewTest, MissingHelperIsIgnored) {
  const std::string helpers = platform::Bundle::mainBundle()->bundlePath() + "/Contents/Helpers";
  const std::string nothing = helper_test::newFolder();
  ASSERT_EQ(::mount(nothing.c_str(), helpers.c_str(), nullptr, MS_BIND, nullptr), 0);
  load("/page");
  EXPECT_EQ(::umount2(helpers.c_str(), MNT_DETACH), 0);
  EXPECT_THAT(webProcesses(), IsEmpty());
  load("/page");
  EXPECT_TRUE(server_.waitFor("/page"));
}

// A helper with an idle time of 3 s, long enough for the test to observe its end on a busy machine.
class WebViewIdleEnd : public WebViewTest {
 protected:
  void SetUp() override {
    helper_test::writeProgram(folder_ + "/helper",
                              "exec " + helper_test::helper(kHelper) + " --idle-seconds 3");
    send("/first");
    ASSERT_TRUE(server_.waitFor("/first"));
    ASSERT_THAT(processesNamed(kHelper), SizeIs(1));
  }
  void TearDown() override {
    EXPECT_TRUE(serveEventsUntil([] { return webProcesses().empty(); }));
    fs::remove_all(folder_);
    WebViewTest::TearDown();
  }
  void send(const std::string& path) { process_.send(folder_ + "/helper", server_.address(path)); }

  const std::string folder_ = helper_test::newFolder();
  platform::WebViewProcess process_;
};

TEST_F(WebViewIdleEnd, AddressAfterIdleEndStartsNewHelper) {
  ASSERT_TRUE(serveEventsUntil([] { return webProcesses().empty(); }));
  send("/second");
  EXPECT_TRUE(server_.waitFor("/second"));
}

TEST_F(WebViewIdleEnd, AddressBeforeHelperStopsReadingIsLoaded) {
  TracedProcess helper(processesNamed(kHelper).front());
  ASSERT_TRUE(helper.runToEndOfReading());
  send("/second");
  helper.letGo();
  EXPECT_TRUE(server_.waitFor("/second"));
}

// The caller ends before the reply, and the script of the page makes its request later still.
TEST_F(WebViewTest, PageIsLoadedAfterCallerWasKilled) {
  server_.put("/page", "<script>fetch('/script')</script>");
  server_.holdBack("/page");
  test_support::ChildProcess caller;
  ASSERT_TRUE(caller.start({WEB_VIEW_CALLER, helper_test::helper(kHelper), server_.address("/page")}));
  ASSERT_EQ(caller.wait(), test_support::ExitStatus{.signal = SIGKILL});
  ASSERT_TRUE(server_.waitFor("/page"));
  server_.letGo();
  EXPECT_TRUE(server_.waitFor("/script"));
}

}  // namespace
