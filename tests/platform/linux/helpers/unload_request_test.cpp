#include "platform/linux/helpers/unload_request.h"

#include <gtest/gtest.h>

#include <string>
#include <variant>

namespace helpers {
namespace {

std::string labelIn(const Arguments& arguments) {
  const auto request = parseUnloadRequest(arguments);
  const auto* unload = std::get_if<UnloadRequest>(&request);
  return unload == nullptr ? std::string() : unload->label;
}

std::string reasonAgainstUnload(const Arguments& arguments) {
  const auto request = parseUnloadRequest(arguments);
  const auto* refusal = std::get_if<Refusal>(&request);
  return refusal == nullptr ? std::string() : refusal->reason;
}

TEST(UnloadRequest, LabelIsNameOfPropertyList) {
  EXPECT_EQ("com.example.agent", labelIn({"unload", "/Library/LaunchAgents/com.example.agent.plist"}));
}

TEST(UnloadRequest, OptionsMayBeRepeatedInAnyOrder) {
  EXPECT_EQ("a", labelIn({"unload", "-F", "/Library/LaunchAgents/a.plist"}));
  EXPECT_EQ("a", labelIn({"unload", "-w", "-F", "/Library/LaunchAgents/a.plist"}));
  EXPECT_EQ("a", labelIn({"unload", "-F", "-w", "-F", "/Library/LaunchAgents/a.plist"}));
}

TEST(UnloadRequest, LabelMayEndWithPlist) {
  EXPECT_EQ("a.plist", labelIn({"unload", "/Library/LaunchAgents/a.plist.plist"}));
}

TEST(UnloadRequest, HelpShowsUsage) {
  EXPECT_TRUE(std::holds_alternative<ShowUsage>(parseUnloadRequest({"--help"})));
}

TEST(UnloadRequest, RefusalNamesProblem) {
  const struct {
    Arguments arguments;
    std::string_view named;
  } cases[] = {
      {{}, "subcommand is missing"},
      {{""}, "subcommand \"\""},
      {{"load", "/Library/LaunchAgents/a.plist"}, "\"load\""},
      {{"unload"}, "property list is missing"},
      {{"unload", "-w", "-F"}, "property list is missing"},
      {{"unload", "-x", "/Library/LaunchAgents/a.plist"}, "\"/Library/LaunchAgents/a.plist\""},
      {{"unload", "/Library/LaunchAgents/a.plist", "-F"}, "\"-F\""},
      {{"unload", "/Library/LaunchAgents/a.plist", "/Library/LaunchAgents/b.plist"}, "b.plist\""},
      {{"unload", "/Library/LaunchDaemons/a.plist"}, "LaunchDaemons/a.plist"},
      {{"unload", "/Library/LaunchAgents/.plist"}, "not a launch agent"},
      {{"unload", "/Library/LaunchAgents/plist"}, "not a launch agent"},
      {{"unload", "/Library/LaunchAgents/a.desktop"}, "not a launch agent"},
      {{"unload", "/Library/LaunchAgents/b/a.plist"}, "not a launch agent"},
      {{"unload", "/Library/LaunchAgents/"}, "not a launch agent"},
      {{"unload", ""}, "not a launch agent"},
  };
  for (const auto& [arguments, named] : cases) {
    EXPECT_NE(std::string::npos, reasonAgainstUnload(arguments).find(named))
        << reasonAgainstUnload(arguments);
  }
}

}  // namespace
}  // namespace helpers
