#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "platform/linux/helpers/unload_request.h"
#include "tests/platform/linux/helpers/helper_run.h"

namespace {

namespace fs = std::filesystem;

constexpr char kGenerator[] = "/usr/lib/systemd/user-generators/systemd-xdg-autostart-generator";

TEST(AutostartUnit, DotsAreNotEscaped) {
  EXPECT_EQ("app-com.example.agent@autostart.service", helpers::autostartUnit("com.example.agent"));
}

TEST(AutostartUnit, BytesInvalidInUnitNameAreEscaped) {
  EXPECT_EQ("app-a\\x2db@autostart.service", helpers::autostartUnit("a-b"));
  EXPECT_EQ("app-a\\x5cb@autostart.service", helpers::autostartUnit("a\\b"));
  EXPECT_EQ("app-\\xc3\\xa9@autostart.service", helpers::autostartUnit("\xc3\xa9"));
  EXPECT_EQ("app-\\x2aa:b_C9@autostart.service", helpers::autostartUnit("*a:b_C9"));
}

TEST(AutostartUnit, LeadingDotIsEscaped) {
  EXPECT_EQ("app-\\x2ea.b@autostart.service", helpers::autostartUnit(".a.b"));
}

TEST(AutostartUnit, MatchesSystemdGenerator) {
  if (!fs::exists(kGenerator)) GTEST_SKIP() << "no " << kGenerator;
  const std::vector<std::string> labels = {
      "com.example.agent", "a-b.c_d", "-a", "with space", "a@b", "a\\b", "a:b", "a%b", "x~y+z#",
      "\xc3\xbc*[?"};
  const std::string folder = helper_test::newFolder();
  for (const std::string& label : labels) {
    const auto entry = fs::path(folder) / "autostart" / (label + ".desktop");
    helper_test::writeFile(entry, "[Desktop Entry]\nType=Application\nName=x\nExec=/bin/true\n");
  }
  const std::string units = folder + "/units";
  fs::create_directory(units);
  const auto ended =
      helper_test::run({kGenerator, units, units, units},
                       {.environment = {{"XDG_CONFIG_DIRS", folder}, {"XDG_CONFIG_HOME", folder + "/none"}}});
  ASSERT_EQ(0, ended.code) << ended.error;
  for (const std::string& label : labels) {
    EXPECT_TRUE(fs::exists(units + "/" + helpers::autostartUnit(label))) << helpers::autostartUnit(label);
  }
}

}  // namespace
