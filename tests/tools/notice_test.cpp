#include "tools/tovalinnotification/notice.h"

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

// Returns the error message for `arguments`, or an empty string.
std::string complaint(const Arguments& arguments) {
  const auto parsed = tools::parseNotice(arguments);
  const auto* const reason = std::get_if<std::string>(&parsed);
  return reason != nullptr ? *reason : "";
}

TEST(Notice, AcceptsCommandLineOfAgent) {
  const auto parsed = tools::parseNotice(agentsArguments());
  const auto* const notice = std::get_if<tools::Notice>(&parsed);
  ASSERT_NE(notice, nullptr) << complaint(agentsArguments());
  EXPECT_EQ(notice->title, "Tovalin Notification");
  EXPECT_EQ(notice->subtitle, "New version available");
  EXPECT_EQ(notice->message, "Do you want to install now?");
  EXPECT_EQ(notice->closeLabel, "No");
  EXPECT_EQ(notice->actions, "Yes");
  EXPECT_EQ(notice->bundlePath, "/X/Y.app");
  EXPECT_EQ(notice->timeout, std::chrono::seconds(10));
}

TEST(Notice, OrderOfOptionsIsIrrelevant) {
  Arguments turned = agentsArguments();
  std::rotate(turned.begin(), turned.begin() + 4, turned.end());
  EXPECT_EQ(tools::parseNotice(turned), tools::parseNotice(agentsArguments()));
}

TEST(Notice, ValueMayLookLikeOption) {
  Arguments arguments = agentsArguments();
  arguments[1] = "-message";
  const auto parsed = tools::parseNotice(arguments);
  ASSERT_EQ(complaint(arguments), "");
  EXPECT_EQ(std::get<tools::Notice>(parsed).title, "-message");
}

TEST(Notice, MissingOptionIsNamed) {
  Arguments arguments = agentsArguments();
  arguments.erase(arguments.begin() + 8, arguments.begin() + 10);
  EXPECT_EQ(complaint(arguments), "not given: -actions");
}

TEST(Notice, OptionWithoutValueIsNamed) {
  Arguments arguments = agentsArguments();
  arguments.pop_back();
  EXPECT_EQ(complaint(arguments), "-timeout has no value");
}

TEST(Notice, RepeatedOptionIsNamed) {
  Arguments arguments = agentsArguments();
  arguments.insert(arguments.end(), {"-title", "again"});
  EXPECT_EQ(complaint(arguments), "-title is given twice");
}

TEST(Notice, UnknownOptionIsNamed) {
  Arguments arguments = agentsArguments();
  arguments[0] = "-Title";
  EXPECT_EQ(complaint(arguments), "unknown option \"-Title\"");
}

TEST(Notice, InvalidTimeoutIsNamed) {
  Arguments arguments = agentsArguments();
  arguments.back() = "ten";
  EXPECT_EQ(complaint(arguments), "-timeout: \"ten\" is not a number of seconds");
}

TEST(Notice, TextHasOneLinePerField) {
  const auto parsed = tools::parseNotice(agentsArguments());
  ASSERT_EQ(complaint(agentsArguments()), "");
  EXPECT_EQ(tools::noticeText(std::get<tools::Notice>(parsed)),
            "title:        Tovalin Notification\n"
            "subtitle:     New version available\n"
            "message:      Do you want to install now?\n"
            "close button: No\n"
            "actions:      Yes\n"
            "bundle:       /X/Y.app\n"
            "shown for:    10 s\n");
}

}  // namespace
