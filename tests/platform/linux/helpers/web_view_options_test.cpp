#include <gtest/gtest.h>

#include <optional>
#include <variant>

#include "platform/linux/helpers/web_view/options.h"

namespace helpers {
namespace {

using namespace std::chrono_literals;

std::optional<std::chrono::seconds> idleOf(const Arguments& arguments) {
  const WebViewRequest request = parseWebViewRequest(arguments);
  const auto* serve = std::get_if<ServeAddresses>(&request);
  return serve == nullptr ? std::nullopt : std::optional(serve->idle);
}

bool isRefused(const Arguments& arguments) {
  return std::holds_alternative<Refusal>(parseWebViewRequest(arguments));
}

TEST(WebViewOptions, IdleTimeDefaultsTo15Seconds) {
  EXPECT_EQ(idleOf({}), 15s);
  EXPECT_EQ(idleOf({"--idle-seconds", "5"}), 5s);
}

TEST(WebViewOptions, IdleTimeIsLimitedToOneSecondThroughOneDay) {
  EXPECT_EQ(idleOf({"--idle-seconds", "1"}), 1s);
  EXPECT_EQ(idleOf({"--idle-seconds", "86400"}), 86400s);
  EXPECT_TRUE(isRefused({"--idle-seconds", "0"}));
  EXPECT_TRUE(isRefused({"--idle-seconds", "86401"}));
}

TEST(WebViewOptions, InvalidIdleTimeIsRefused) {
  for (const char* text : {"", "x", "1x", " 1", "-1", "1.5", "99999999999999999999"}) {
    EXPECT_TRUE(isRefused({"--idle-seconds", text})) << text;
  }
  EXPECT_TRUE(isRefused({"--idle-seconds"}));
}

TEST(WebViewOptions, UnknownArgumentIsRefused) {
  EXPECT_TRUE(isRefused({"http://a"}));
  EXPECT_TRUE(isRefused({""}));
}

TEST(WebViewOptions, HelpShowsUsage) {
  EXPECT_TRUE(std::holds_alternative<ShowUsage>(parseWebViewRequest({"--help"})));
}

}  // namespace
}  // namespace helpers
