#include "platform/linux/helpers/activation_script.h"

#include <gtest/gtest.h>

#include <string>
#include <variant>

namespace helpers {
namespace {

constexpr char kScript[] =
    "tell application \"System Events\" \n set frontApp to name of first application whose frontmost is true "
    "\n tell "
    "application frontApp \n activate \n end tell \n end tell";

bool isKnown(const std::string& script) {
  return std::holds_alternative<ActivateFrontApplication>(parseScript({"-e", script}));
}

TEST(ActivationScript, AcceptsSixLines) {
  EXPECT_TRUE(isKnown(kScript));
}

TEST(ActivationScript, AcceptsAnyWhiteSpace) {
  std::string tabbed = "\r\n\t ";
  for (const char character : std::string(kScript))
    tabbed += character == '\n' ? std::string("\r\n\t") : std::string(1, character);
  EXPECT_TRUE(isKnown(tabbed + "\n\n"));
}

TEST(ActivationScript, RejectsChangedWords) {
  const std::string script = kScript;
  EXPECT_FALSE(isKnown(script + " quit"));
  EXPECT_FALSE(isKnown("beep " + script));
  EXPECT_FALSE(isKnown(script.substr(0, script.rfind("end tell"))));
  EXPECT_FALSE(isKnown(script.substr(0, script.find("activate")) + "quit" +
                       script.substr(script.find("activate") + 8)));
  EXPECT_FALSE(isKnown(""));
  EXPECT_FALSE(isKnown("   \n"));
}

TEST(ActivationScript, RejectsMissingWhiteSpace) {
  std::string script = kScript;
  script.erase(script.find("end tell") + 3, 1);
  EXPECT_FALSE(isKnown(script));
}

TEST(ActivationScript, AcceptsExactlyOneScript) {
  for (const Arguments& arguments :
       {Arguments{}, Arguments{"-e"}, Arguments{kScript}, Arguments{"-l", kScript},
        Arguments{"-e", kScript, "-e", kScript}, Arguments{"-e", kScript, ""}, Arguments{"-e", "--help"}}) {
    EXPECT_TRUE(std::holds_alternative<Refusal>(parseScript(arguments))) << testing::PrintToString(arguments);
  }
  EXPECT_TRUE(std::holds_alternative<ShowUsage>(parseScript({"--help"})));
}

}  // namespace
}  // namespace helpers
