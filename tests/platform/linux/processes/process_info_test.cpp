#include "platform/process_info.h"

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "platform/linux/processes/os_release.h"
#include "tests/harness/processes/forked_call.h"

namespace {

namespace fs = std::filesystem;

// The text of an os-release file and the value of VERSION in it.
struct Facts {
  const char* name;
  std::string_view text;
  std::optional<std::string> version;
};

void PrintTo(const Facts& facts, std::ostream* stream) {
  *stream << facts.text;
}

class OsRelease : public testing::TestWithParam<Facts> {};

TEST_P(OsRelease, ReturnsValueOfKey) {
  std::istringstream file{std::string(GetParam().text)};
  EXPECT_EQ(platform::osReleaseValue(file, "VERSION"), GetParam().version);
}

INSTANTIATE_TEST_SUITE_P(
    ProcessInfo, OsRelease,
    testing::Values(
        Facts{"InDoubleQuotes", "NAME=\"Debian GNU/Linux\"\nVERSION=\"12 (bookworm)\"\nID=debian\n",
              "12 (bookworm)"},
        Facts{"InSingleQuotes", "VERSION='12 (bookworm)'\n", "12 (bookworm)"},
        Facts{"WithoutQuotes", "VERSION=12\n", "12"}, Facts{"WithoutLineEnd", "VERSION=12", "12"},
        Facts{"EscapesInQuotes", "VERSION=\"a \\\"b\\\" \\\\ \\$c\"\n", "a \"b\" \\ $c"},
        Facts{"EqualsSignInIt", "VERSION=\"a=b\"\n", "a=b"}, Facts{"HashInIt", "VERSION=\"#1\"\n", "#1"},
        Facts{"Empty", "VERSION=\n", ""}, Facts{"EmptyInQuotes", "VERSION=\"\"\n", ""},
        Facts{"OneQuoteAlone", "VERSION=\"\n", "\""}, Facts{"QuoteNotClosed", "VERSION=\"12\n", "\"12"},
        Facts{"LongerKeyIsAnother", "VERSION_ID=\"11\"\nVERSION=\"12\"\n", "12"},
        Facts{"KeyInsideALineDoesNotCount", "MY_VERSION=11\n# VERSION=10\n", std::nullopt},
        Facts{"OtherCaseIsAnother", "version=12\n", std::nullopt},
        Facts{"KeyWithoutValue", "VERSION\n", std::nullopt}, Facts{"Missing", "NAME=x\n", std::nullopt},
        Facts{"NoText", "", std::nullopt}),
    [](const auto& test) { return test.param.name; });

// The texts of /etc/os-release and /usr/lib/os-release (nullopt: missing). versionOf() bind-mounts them in a
// mount namespace of a child process.
struct SystemFiles {
  std::optional<std::string> etc;
  std::optional<std::string> usrLib;
};

void put(const std::string& folder, const std::optional<std::string>& text) {
  fs::remove_all(folder);
  fs::create_directories(folder);
  if (text) std::ofstream(folder + "/os-release") << *text;
}

std::string versionOf(const SystemFiles& files) {
  put("/tmp/etc", files.etc);
  put("/tmp/usr_lib", files.usrLib);
  return test_support::runForked([] {
           if (::unshare(CLONE_NEWNS) != 0) return 1;
           if (::mount("/tmp/etc", "/etc", nullptr, MS_BIND, nullptr) != 0) return 2;
           if (::mount("/tmp/usr_lib", "/usr/lib", nullptr, MS_BIND, nullptr) != 0) return 3;
           std::fputs(platform::operatingSystemVersionString().c_str(), stdout);
           return 0;
         })
      .output;
}

TEST(OperatingSystemVersion, IsVersionAndValueOfOsRelease) {
  EXPECT_EQ(versionOf({.etc = "VERSION=\"12 (bookworm)\"\n", .usrLib = {}}), "Version 12 (bookworm)");
}

TEST(OperatingSystemVersion, EtcPrecedesUsrLib) {
  EXPECT_EQ(versionOf({.etc = "VERSION=1\n", .usrLib = "VERSION=2\n"}), "Version 1");
}

TEST(OperatingSystemVersion, UsrLibIsFallback) {
  EXPECT_EQ(versionOf({.etc = {}, .usrLib = "VERSION=2\n"}), "Version 2");
}

TEST(OperatingSystemVersion, IsEmptyWithoutVersion) {
  EXPECT_EQ(versionOf({.etc = "NAME=x\n", .usrLib = "VERSION_ID=12\n"}), "");
  EXPECT_EQ(versionOf({.etc = {}, .usrLib = {}}), "");
}

}  // namespace
