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

TEST_F(BundleVersion, IsThatOfOwnBundle) {
  putEntries("<key>CFBundleVersion</key><string>3.2.1</string>");
  EXPECT_EQ(output(program_), "0 3.2.1");
}

TEST_F(BundleVersion, IsReturnedVerbatim) {
  putEntries("<key>CFBundleVersion</key><string> 3.2 (\u00e4) %s </string>");
  EXPECT_EQ(output(program_), "0  3.2 (\u00e4) %s ");
}

TEST_F(BundleVersion, MissingInfoPlistFails) {
  EXPECT_EQ(output(program_), kUntouched);
}

TEST_F(BundleVersion, DamagedInfoPlistFails) {
  putInformation("<plist version=\"1.0\"><dict><key>CFBundleVersion</key><string>3.2.1");
  EXPECT_EQ(output(program_), kUntouched);
}

TEST_F(BundleVersion, InfoPlistWithOtherRootThanDictionaryFails) {
  putInformation("<plist version=\"1.0\"><string>3.2.1</string></plist>");
  EXPECT_EQ(output(program_), kUntouched);
}

TEST_F(BundleVersion, MissingKeyFails) {
  putEntries("<key>CFBundleShortVersionString</key><string>3.2.1</string>");
  EXPECT_EQ(output(program_), kUntouched);
}

TEST_F(BundleVersion, ValueOfOtherTypeThanStringFails) {
  putEntries("<key>CFBundleVersion</key><real>3.2</real>");
  EXPECT_EQ(output(program_), kUntouched);
}

TEST_F(BundleVersion, ProgramOutsideBundleFails) {
  putEntries("<key>CFBundleVersion</key><string>3.2.1</string>");
  EXPECT_EQ(outputOutside(), kUntouched);
}

TEST_F(BundleVersion, IsFoundThroughLinkToProgram) {
  putEntries("<key>CFBundleVersion</key><string>3.2.1</string>");
  fs::create_symlink(program_, "/tmp/bundles/link");
  EXPECT_EQ(output("/tmp/bundles/link"), "0 3.2.1");
}

TEST_F(BundleVersion, IsUnchangedAfterUpdateOfBundle) {
  putEntries("<key>CFBundleVersion</key><string>3.2.1</string>");
  EXPECT_EQ(outputAfter([] { putEntries("<key>CFBundleVersion</key><string>4.0.0</string>"); }), "0 3.2.1");
}

TEST_F(BundleVersion, IsUnchangedAfterRemovalOfBundle) {
  putEntries("<key>CFBundleVersion</key><string>3.2.1</string>");
  EXPECT_EQ(outputAfter([] { fs::remove_all(settings_test::kBundle); }), "0 3.2.1");
}

TEST_F(BundleVersion, FailurePersistsAfterRepairOfInfoPlist) {
  putInformation("damaged");
  EXPECT_EQ(outputAfter([] { putEntries("<key>CFBundleVersion</key><string>4.0.0</string>"); }), kUntouched);
}

}  // namespace
