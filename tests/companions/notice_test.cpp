#include "companions/notification/notice.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using Arguments = std::vector<std::string>;

Arguments agentsArguments() {
  return {"-title",      "Tovalin Notification",
          "-subtitle",   "New version available",
          "-message",    "Do you want to install now?",
          "-closeLabel", "No",
          "-actions",    "Yes",
          "-bundlepath", "/X/Y.app",
          "-timeout",    "10"};
}

// Returns the error text for these arguments; empty on success.
std::string complaint(const Arguments& arguments) {
  const auto parsed = companions::parseNotice(arguments);
  const auto* const reason = std::get_if<std::string>(&parsed);
  return reason != nullptr ? *reason : "";
}

TEST(Notice, CommandLineOfAgentSetsEveryPart) {
  const auto parsed = companions::parseNotice(agentsArguments());
  const auto* const notice = std::get_if<companions::Notice>(&parsed);
  ASSERT_NE(notice, nullptr) << complaint(agentsArguments());
  EXPECT_EQ(notice->title, "Tovalin Notification");
  EXPECT_EQ(notice->subtitle, "New version available");
  EXPECT_EQ(notice->message, "Do you want to install now?");
  EXPECT_EQ(notice->closeLabel, "No");
  EXPECT_EQ(notice->actionLabel, "Yes");
  EXPECT_EQ(notice->bundlePath, "/X/Y.app");
  EXPECT_EQ(notice->timeout, std::chrono::seconds(10));
}

TEST(Notice, OptionsAreTakenInAnyOrder) {
  Arguments turned = agentsArguments();
  std::rotate(turned.begin(), turned.begin() + 4, turned.end());
  EXPECT_EQ(companions::parseNotice(turned), companions::parseNotice(agentsArguments()));
}

TEST(Notice, ValueThatLooksLikeOptionIsValue) {
  Arguments arguments = agentsArguments();
  arguments[1] = "-message";
  const auto parsed = companions::parseNotice(arguments);
  ASSERT_EQ(complaint(arguments), "");
  EXPECT_EQ(std::get<companions::Notice>(parsed).title, "-message");
}

TEST(Notice, MissingOptionIsNamed) {
  Arguments arguments = agentsArguments();
  arguments.erase(arguments.begin() + 8, arguments.begin() + 10);
  EXPECT_EQ(complaint(arguments), "missing: -actions");
}

TEST(Notice, OptionWithoutValueIsNamed) {
  Arguments arguments = agentsArguments();
  arguments.pop_back();
  EXPECT_EQ(complaint(arguments), "-timeout has no value");
}

TEST(Notice, OptionGivenTwiceIsNamed) {
  Arguments arguments = agentsArguments();
  arguments.insert(arguments.end(), {"-title", "again"});
  EXPECT_EQ(complaint(arguments), "-title is given twice");
}

TEST(Notice, UnknownOptionIsNamed) {
  Arguments arguments = agentsArguments();
  arguments[0] = "-Title";
  EXPECT_EQ(complaint(arguments), "unknown option \"-Title\"");
}

TEST(Notice, TimeoutIsSecondsAboveZeroUpToADay) {
  const auto timeoutOf = [](const std::string& text) {
    Arguments arguments = agentsArguments();
    arguments.back() = text;
    const auto parsed = companions::parseNotice(arguments);
    const auto* const notice = std::get_if<companions::Notice>(&parsed);
    return notice == nullptr ? std::chrono::milliseconds(0) : notice->timeout;
  };
  EXPECT_EQ(timeoutOf("0.25"), std::chrono::milliseconds(250));
  EXPECT_EQ(timeoutOf("0.0001"), std::chrono::milliseconds(1))
      << "servers never close a notice with a timeout of 0";
  EXPECT_EQ(timeoutOf("86400"), std::chrono::hours(24));
  for (const char* const wrong : {"", "0", "-1", "86401", "1e9", "nan", "inf", "ten", "10 ", "10s"}) {
    EXPECT_EQ(timeoutOf(wrong), std::chrono::milliseconds(0)) << wrong;
  }
}

TEST(Notice, InvalidTimeoutIsQuoted) {
  Arguments arguments = agentsArguments();
  arguments.back() = "ten";
  EXPECT_EQ(complaint(arguments), "-timeout: \"ten\" is not a number of seconds above 0");
}

TEST(Notice, MarkupIsEscapedForServersThatInterpretIt) {
  const companions::Notice notice{.subtitle = "<b>1 & 2</b>", .message = "now?"};
  EXPECT_EQ(companions::bodyText(notice, false), "<b>1 & 2</b>\nnow?");
  EXPECT_EQ(companions::bodyText(notice, true), "&lt;b&gt;1 &amp; 2&lt;/b&gt;\nnow?");
}

}  // namespace
