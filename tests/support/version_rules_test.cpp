#include "support/version_rules.h"

#include <gtest/gtest.h>

#include <string>

namespace {

struct Comparison {
  std::optional<std::string> current;
  std::optional<std::string> recent;
  bool newer;
};

class Versions : public testing::TestWithParam<Comparison> {};

TEST_P(Versions, CompareFirstThreeNumbers) {
  EXPECT_EQ(isNewerVersion(GetParam().current, GetParam().recent), GetParam().newer)
      << GetParam().current.value_or("none") << " and " << GetParam().recent.value_or("none");
}

INSTANTIATE_TEST_SUITE_P(
    Newer, Versions,
    testing::Values(Comparison{"1.2.3", "1.2.4", true}, Comparison{"1.2.3", "1.3.0", true},
                    Comparison{"1.2.3", "2.0.0", true}, Comparison{"1.9.9", "1.10.0", true},
                    Comparison{"1.2.3", "1.2.04", true}, Comparison{"1.2.3", "2", true},
                    Comparison{"1.2.3", "1.3", true}, Comparison{"1.2", "1.2.1", true},
                    Comparison{"", "0.0.1", true}, Comparison{std::nullopt, "0.0.1", true},
                    Comparison{"-1.0.0", "0.0.0", true}, Comparison{"1.-2.0", "1.-1.0", true},
                    Comparison{"1.2.3", " \t\n2.0.0", true}, Comparison{"1.2.3", "+2.0.0", true},
                    Comparison{"1.2.3", "1.2.99999999999999999999", true},
                    Comparison{"9223372036854775806.0.0", "9223372036854775807.0.0", true}));

INSTANTIATE_TEST_SUITE_P(
    NotNewer, Versions,
    testing::Values(Comparison{"1.2.3", "1.2.3", false}, Comparison{"1.2.3", "1.2.2", false},
                    Comparison{"1.2.3", "1.1.9", false}, Comparison{"1.2.3", "0.9.9", false},
                    Comparison{"1.2.3", "1.2.3.1", false}, Comparison{"1.2.3", "01.02.03", false},
                    Comparison{"1.2.x", "1.2.0", false}, Comparison{"1.2.3", "1.2.3b", false},
                    Comparison{"1.2.3", "x.9.9", false}, Comparison{"1.2.3", "1.2", false},
                    Comparison{"1.2.0", "1.2", false}, Comparison{"1.2.3", "", false},
                    Comparison{"1.2.3", "...", false}, Comparison{"1.2.3", "1..9", false},
                    Comparison{"1.2.3", std::nullopt, false}, Comparison{std::nullopt, "0.0.0", false},
                    Comparison{std::nullopt, std::nullopt, false}, Comparison{"1.2.3", "-2.0.0", false},
                    Comparison{"1.2.3", "+-2.0.0", false}, Comparison{"1.2.3", "0x9.0.0", false},
                    Comparison{"9223372036854775807.0.0", "99999999999999999999.0.0", false},
                    Comparison{"1.2.3", "-99999999999999999999.0.0", false}));

std::string list(const std::string& content) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?><plist version=\"1.0\">" + content + "</plist>";
}

TEST(VersionList, ReturnsVersion) {
  EXPECT_EQ(versionInList(list("<dict><key>version</key><string>1.2.3</string></dict>")), "1.2.3");
}

TEST(VersionList, OtherKeysAreIgnored) {
  EXPECT_EQ(versionInList(list("<dict><key>a</key><true/><key>version</key><string>2.0.0</string>"
                               "<key>z</key><array><integer>1</integer></array></dict>")),
            "2.0.0");
}

TEST(VersionList, EmptyVersionIsReturned) {
  EXPECT_EQ(versionInList(list("<dict><key>version</key><string></string></dict>")), "");
}

TEST(VersionList, AcceptsOldTextAndBinaryLists) {
  EXPECT_EQ(versionInList("{ version = \"1.2.3\"; }"), "1.2.3");
  using namespace std::string_literals;
  const std::string binary =
      "bplist00\xd1\x01\x02\x57version\x55"
      "1.2.3\x08\x0b\x13"s +
      "\0\0\0\0\0\0\x01\x01\0\0\0\0\0\0\0\x03\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x19"s;
  EXPECT_EQ(versionInList(binary), "1.2.3");
}

TEST(VersionList, InvalidListReturnsNullopt) {
  EXPECT_EQ(versionInList(""), std::nullopt);
  EXPECT_EQ(versionInList("<html><body>502 Bad Gateway</body></html>"), std::nullopt);
  EXPECT_EQ(versionInList(list("<dict/>")), std::nullopt);
  EXPECT_EQ(versionInList(list("<dict><key>Version</key><string>1.2.3</string></dict>")), std::nullopt);
  EXPECT_EQ(versionInList(list("<dict><key>version</key><real>1.2</real></dict>")), std::nullopt);
  EXPECT_EQ(versionInList(list("<dict><key>version</key><array><string>1.2.3</string></array></dict>")),
            std::nullopt);
  EXPECT_EQ(versionInList(list("<array><string>1.2.3</string></array>")), std::nullopt);
  EXPECT_EQ(versionInList(list("<string>1.2.3</string>")), std::nullopt);
  EXPECT_EQ(versionInList(list("<dict><key>version</key><string>1.2.3")), std::nullopt);
}

TEST(CopyUpdaterCommand, NamesBundleVerbatim) {
  EXPECT_EQ(copyUpdaterCommand("/opt/Tovalin.app"),
            "cp -Rf /opt/Tovalin.app/Contents/Resources/tovalinupdate.app /tmp/");
}

TEST(CopyUpdaterCommand, IsLimitedTo511Bytes) {
  const std::size_t fixed = copyUpdaterCommand("")->size();
  EXPECT_EQ(copyUpdaterCommand(std::string(511 - fixed, 'p'))->size(), 511u);
  EXPECT_EQ(copyUpdaterCommand(std::string(512 - fixed, 'p')), std::nullopt);
}

}  // namespace
