#include "usage/bundle_version.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "tests/support/child_process.h"

namespace {

namespace fs = std::filesystem;

constexpr const char* kBundle = "/tmp/bundles/My Agent.app";
constexpr const char* kUntouched = "-1 untouched";

class BundleVersion : public testing::Test {
 protected:
  void SetUp() override {
    fs::create_directories(std::string(kBundle) + "/Contents/MacOS");
    fs::copy_file(BUNDLE_VERSION_PROBE, program_);
  }
  void TearDown() override { fs::remove_all("/tmp/bundles"); }

  static void putInformation(const std::string& text) {
    std::ofstream(std::string(kBundle) + "/Contents/Info.plist", std::ios::trunc) << text;
  }
  static void putEntries(const std::string& entries) {
    putInformation("<plist version=\"1.0\"><dict>" + entries + "</dict></plist>");
  }
  // What the program in the bundle, or one elsewhere, tells.
  static std::string told(const std::string& program) {
    test_support::ChildProcess probe;
    if (!probe.start({program})) return "did not start";
    return probe.readLine().value_or("told nothing");
  }

  const std::string program_ = std::string(kBundle) + "/Contents/MacOS/probe";
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
  fs::copy_file(BUNDLE_VERSION_PROBE, "/tmp/bundles/probe");
  EXPECT_EQ(told("/tmp/bundles/probe"), kUntouched);
}

TEST_F(BundleVersion, LinkFromOutsideLeadsIntoTheBundle) {
  putEntries("<key>CFBundleVersion</key><string>3.2.1</string>");
  fs::create_symlink(program_, "/tmp/bundles/link");
  EXPECT_EQ(told("/tmp/bundles/link"), "0 3.2.1");
}

}  // namespace
