#pragma once

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/harness/desktop/test_display.h"
#include "tests/harness/processes/child_process.h"
#include "tests/harness/processes/web_processes.h"
#include "tests/harness/servers/page_server.h"
#include "tests/platform/linux/helpers/helper_run.h"

namespace web_view_test {

// Runs the real helper on a display of its own and writes addresses to its input.
class WebViewHelper : public testing::Test {
 protected:
  // Without a window manager, whose windows would be among those on the screen.
  static void SetUpTestSuite() {
    display_ = std::make_unique<test_support::TestDisplay>();
    ASSERT_TRUE(display_->start({.windowManager = false}));
  }
  static void TearDownTestSuite() { display_.reset(); }

  void TearDown() override {
    helper_.terminate();
    EXPECT_TRUE(helper_.pid() < 0 || helper_.wait());
    EXPECT_TRUE(waitForNoWebProcess());
  }

  void start(const std::vector<std::string>& options = {},
             std::map<std::string, std::optional<std::string>> environment = {}) {
    environment.emplace("DISPLAY", display_->name());
    std::vector<std::string> argv{helper_test::helper("TovalinWebView")};
    argv.insert(argv.end(), options.begin(), options.end());
    ASSERT_TRUE(helper_.start(argv, {.environment = environment,
                                     .input = test_support::Redirection::pipe(),
                                     .error = test_support::Redirection::null()}));
  }
  // Starts the helper without options, with these environment changes and with standard error as a pipe.
  void startWith(const std::map<std::string, std::optional<std::string>>& changes) {
    auto environment = changes;
    environment.emplace("DISPLAY", display_->name());
    ASSERT_TRUE(
        helper_.start({helper_test::helper("TovalinWebView")}, {.environment = environment,
                                                                .input = test_support::Redirection::pipe(),
                                                                .error = test_support::Redirection::pipe()}));
  }
  void load(const std::string& path) { ASSERT_TRUE(helper_.writeLine(server_.address(path))); }
  // Starts the helper with a page and waits until its script runs; the script requests "/running" first.
  void startWithScript(const std::string& script) {
    server_.put("/page", "<script>fetch('/running');" + script + "</script>");
    start();
    load("/page");
    ASSERT_TRUE(server_.waitFor("/running"));
  }
  // Returns whether the helper still loads pages.
  [[nodiscard]] bool stillLoads() {
    server_.put("/next", "<script>fetch('/next-runs')</script>");
    return helper_.writeLine(server_.address("/next")) && server_.waitFor("/next-runs");
  }

  static inline std::unique_ptr<test_support::TestDisplay> display_;
  PageServer server_;
  test_support::ChildProcess helper_;
};

}  // namespace web_view_test
