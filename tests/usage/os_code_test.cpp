#include "usage/os_code.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>

#include <filesystem>
#include <fstream>

#include "tests/harness/processes/forked_call.h"

namespace {

struct Release {
  const char* name;
  std::string_view text;
  int code;
};

void PrintTo(const Release& release, std::ostream* stream) {
  *stream << '"' << release.text << '"';
}

class OsCode : public testing::TestWithParam<Release> {};

TEST_P(OsCode, DependsOnRelease) {
  EXPECT_EQ(osCodeFor(GetParam().text), GetParam().code);
}

constexpr auto nameOf = [](const auto& test) { return test.param.name; };

INSTANTIATE_TEST_SUITE_P(Table, OsCode,
                         testing::Values(Release{"Ten9", "Version 10.9 (Build 13A)", 64},
                                         Release{"Ten0", "Version 10.0", 64},
                                         Release{"Ten9_5", "Version 10.9.5 (Build 13F34)", 64},
                                         Release{"Ten10", "Version 10.10 (Build 14A389)", 65},
                                         Release{"Ten11", "Version 10.11.6 (Build 15G31)", 66},
                                         Release{"Ten12", "Version 10.12.6 (Build 16G29)", 67},
                                         Release{"Ten13", "Version 10.13 (Build 17A365)", 68},
                                         Release{"Ten14", "Version 10.14.6 (Build 18G84)", 68},
                                         Release{"Ten15", "Version 10.15.7 (Build 19H2)", 68},
                                         Release{"Eleven", "Version 11.2 (Build 20D64)", 68},
                                         Release{"Twelve", "Version 12 (bookworm)", 68},
                                         Release{"Nine", "Version 9.2.2", 64},
                                         Release{"Zero", "Version 0.0", 64}),
                         nameOf);

INSTANTIATE_TEST_SUITE_P(
    OddTexts, OsCode,
    testing::Values(
        Release{"Empty", "", 64}, Release{"VersionAlone", "Version", 64},
        Release{"VersionAndBlank", "Version ", 64},
        Release{"NothingBetweenVersionAndParenthesis", "Version (12)", 64},
        Release{"TwoBlanksAfterVersion", "Version  10.12", 64}, Release{"WithoutVersion", "10.11.6", 66},
        Release{"WithoutVersionAndWithMore", "10.11 (Build 15A)", 66},
        Release{"LowerCaseVersionIsAnotherWord", "version 11", 64},
        Release{"VersionInsideAWord", "Versions 11", 64},
        Release{"VersionBehindOtherWords", "System Version 10.12 (Build)", 67},
        Release{"VersionInParentheses", "(Version)10.12", 67},
        Release{"FirstOfTwoVersions", "Version 10.10 Version 10.12", 65},
        Release{"NoNumber", "Version bookworm", 64}, Release{"TenWithoutMinor", "Version 10", 64},
        Release{"TenWithPointOnly", "Version 10.", 64}, Release{"TenWithTextAsMinor", "Version 10.x", 64},
        Release{"MinorBeforeText", "Version 10.12b", 67}, Release{"PlusSign", "Version +10.+11", 66},
        Release{"NegativeMajor", "Version -12.3", 64}, Release{"NegativeMinor", "Version 10.-13", 64},
        Release{"HugeMajor", "Version 99999999999999999999.1", 68},
        Release{"HugeNegativeMajor", "Version -99999999999999999999.1", 64},
        Release{"MajorOfMoreThan32Bits", "Version 4294967306.9", 68},
        Release{"HugeMinor", "Version 10.99999999999999999999", 68},
        Release{"HugeNegativeMinor", "Version 10.-99999999999999999999", 64}),
    nameOf);

// Returns GetOSVersion() for a system with this /etc/os-release, bind-mounted in a mount namespace of a child
// process; -1 on failure.
int codeOfSystemWith(const std::string& osRelease) {
  std::filesystem::create_directories("/tmp/etc");
  std::ofstream("/tmp/etc/os-release") << osRelease;
  const auto finished = test_support::runForked([] {
    if (::unshare(CLONE_NEWNS) != 0 || ::mount("/tmp/etc", "/etc", nullptr, MS_BIND, nullptr) != 0) return 1;
    return static_cast<int>(GetOSVersion());
  });
  return finished.status ? finished.status->code.value_or(-1) : -1;
}

TEST(GetOSVersion, ReturnsCodeOfOsRelease) {
  EXPECT_EQ(codeOfSystemWith("VERSION=\"12 (bookworm)\"\n"), 68);
  EXPECT_EQ(codeOfSystemWith("NAME=Other\nVERSION=\"10.11 (El)\"\n"), 66);
  EXPECT_EQ(codeOfSystemWith("VERSION=trixie/sid\n"), 64);
}

}  // namespace
