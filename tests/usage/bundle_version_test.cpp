#include "usage/bundle_version.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/usage/bundle_probe_fixture.h"

namespace {

namespace fs = std::filesystem;

constexpr const char* kUntouched = "-1 untouched";

class BundleVersion : public settings_test::BundleProbe {
 protected:
  BundleVersion() : BundleProbe(BUNDLE_VERSION_PROBE) {}
};

TEST_F(BundleVersion, IsThatOfTheProgramsOwnBundle) {
  putEntries("<key>CFBundleVersion</key><string>3.2.1</string>");
  EXPECT_EQ(told(program_), "0 3.2.1");
}

TEST_F(BundleVersion, IsTakenAsItStands) {
  putEntries("<key>CFBundleVersion</key><string> 3.2 (\u00e4) %s </string>");
  EXPECT_EQ(told(program_), "0  3.2 (\u00e4) %s ");
}

TEST_F(BundleVersion, MissingInformationGivesNone) {
  EXPECT_EQ(told(program_), kUntouched);
}

TEST_F(BundleVersion, DamagedInformationGivesNone) {
  putInformation("<plist version=\"1.0\"><dict><key>CFBundleVersion</key><string>3.2.1");
  EXPECT_EQ(told(program_), kUntouched);
}

TEST_F(BundleVersion, InformationThatIsNoDictionaryGivesNone) {
  putInformation("<plist version=\"1.0\"><string>3.2.1</string></plist>");
  EXPECT_EQ(told(program_), kUntouched);
}

TEST_F(BundleVersion, MissingKeyGivesNone) {
  putEntries("<key>CFBundleShortVersionString</key><string>3.2.1</string>");
  EXPECT_EQ(told(program_), kUntouched);
}

TEST_F(BundleVersion, KeyThatIsNoStringGivesNone) {
  putEntries("<key>CFBundleVersion</key><real>3.2</real>");
  EXPECT_EQ(told(program_), kUntouched);
}

TEST_F(BundleVersion, ProgramOutsideABundleHasNone) {
  putEntries("<key>CFBundleVersion</key><string>3.2.1</string>");
  EXPECT_EQ(toldOutside(), kUntouched);
}

TEST_F(BundleVersion, LinkFromOutsideLeadsIntoTheBundle) {
  putEntries("<key>CFBundleVersion</key><string>3.2.1</string>");
  fs::create_symlink(program_, "/tmp/bundles/link");
  EXPECT_EQ(told("/tmp/bundles/link"), "0 3.2.1");
}

TEST_F(BundleVersion, StaysThatOfTheStartWhenTheBundleIsUpdatedInPlace) {
  putEntries("<key>CFBundleVersion</key><string>3.2.1</string>");
  EXPECT_EQ(toldAfter([] { putEntries("<key>CFBundleVersion</key><string>4.0.0</string>"); }), "0 3.2.1");
}

TEST_F(BundleVersion, StaysThatOfTheStartWhenTheBundleIsRemoved) {
  putEntries("<key>CFBundleVersion</key><string>3.2.1</string>");
  EXPECT_EQ(toldAfter([] { fs::remove_all(settings_test::kBundle); }), "0 3.2.1");
}

TEST_F(BundleVersion, StaysMissingWhenTheInformationIsRepairedAfterTheStart) {
  putInformation("damaged");
  EXPECT_EQ(toldAfter([] { putEntries("<key>CFBundleVersion</key><string>4.0.0</string>"); }), kUntouched);
}

}  // namespace
