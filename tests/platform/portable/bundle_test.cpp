#include "platform/bundle.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "tests/harness/processes/child_process.h"

namespace {

namespace fs = std::filesystem;
using platform::Bundle;
using test_support::ChildProcess;

class MainBundle : public testing::Test {
 protected:
  void SetUp() override { fs::create_directory("/tmp/bundles"); }
  void TearDown() override {
    probe_ = {};
    fs::remove_all("/tmp/bundles");
  }

  // Copies the probe to `place` and starts it. Returns the bundle path that it prints.
  std::string startedAt(const std::string& place) {
    fs::create_directories(fs::path(place).parent_path());
    fs::copy_file(BUNDLE_PROBE, place);
    return startedAs(place);
  }
  std::string startedAs(const std::string& name) {
    test_support::ChildOptions options;
    options.input = test_support::Redirection::pipe();
    if (!probe_.start({name}, options)) return "did not start";
    return probe_.readLine().value_or("no output");
  }
  std::string askedAgain() {
    return probe_.writeLine("again") ? probe_.readLine().value_or("no output") : "has ended";
  }

  ChildProcess probe_;
};

TEST_F(MainBundle, IsFoundFromExecutable) {
  EXPECT_EQ(startedAt("/tmp/bundles/X.app/Contents/MacOS/X"), "/tmp/bundles/X.app");
}

TEST_F(MainBundle, PathMayContainBlanksAndNonAscii) {
  EXPECT_EQ(startedAt("/tmp/bundles/My X \u00e4\u65e5/Y (2).app/Contents/MacOS/X"),
            "/tmp/bundles/My X \u00e4\u65e5/Y (2).app");
}

TEST_F(MainBundle, IsInnermostOfNestedBundles) {
  EXPECT_EQ(startedAt("/tmp/bundles/X.app/Contents/Resources/Y.app/Contents/MacOS/Y"),
            "/tmp/bundles/X.app/Contents/Resources/Y.app");
}

TEST_F(MainBundle, LongPathIsNotTruncated) {
  const std::string bundle =
      "/tmp/bundles/" + std::string(250, 'a') + "/" + std::string(250, 'b') + "/" + std::string(250, 'c');
  EXPECT_EQ(startedAt(bundle + "/Contents/MacOS/X"), bundle);
}

TEST_F(MainBundle, IsFoundThroughLinkToExecutable) {
  startedAt("/tmp/bundles/X.app/Contents/MacOS/X");
  fs::create_symlink("/tmp/bundles/X.app/Contents/MacOS/X", "/tmp/bundles/link");
  EXPECT_EQ(startedAs("/tmp/bundles/link"), "/tmp/bundles/X.app");
}

TEST_F(MainBundle, ProgramElsewhereHasNoBundle) {
  EXPECT_EQ(startedAt("/tmp/bundles/X"), "(none)");
}

TEST_F(MainBundle, ProgramInOtherFolderOfContentsHasNoBundle) {
  EXPECT_EQ(startedAt("/tmp/bundles/X.app/Contents/Helpers/X"), "(none)");
}

TEST_F(MainBundle, ProgramFolderOutsideContentsHasNoBundle) {
  EXPECT_EQ(startedAt("/tmp/bundles/X.app/MacOS/X"), "(none)");
}

TEST_F(MainBundle, ProgramBelowProgramFolderHasNoBundle) {
  EXPECT_EQ(startedAt("/tmp/bundles/X.app/Contents/MacOS/deeper/X"), "(none)");
}

TEST_F(MainBundle, DeletedBundleKeepsItsPath) {
  startedAt("/tmp/bundles/X.app/Contents/MacOS/X");
  fs::remove_all("/tmp/bundles/X.app");
  EXPECT_EQ(askedAgain(), "/tmp/bundles/X.app");
}

TEST_F(MainBundle, MovedBundleHasItsNewPath) {
  startedAt("/tmp/bundles/X.app/Contents/MacOS/X");
  fs::rename("/tmp/bundles/X.app", "/tmp/bundles/Y.app");
  EXPECT_EQ(askedAgain(), "/tmp/bundles/Y.app");
}

class InfoDictionary : public MainBundle {
 protected:
  void SetUp() override { fs::create_directories("/tmp/bundles/X.app/Contents"); }
  static void put(const std::string& text) {
    std::ofstream("/tmp/bundles/X.app/Contents/Info.plist") << text;
  }

  const Bundle bundle_{"/tmp/bundles/X.app"};
};

TEST_F(InfoDictionary, ReturnsContentOfInfoPlist) {
  put("<plist version=\"1.0\"><dict><key>Name</key><string>X</string></dict></plist>");
  const auto information = bundle_.infoDictionary();
  ASSERT_TRUE(information);
  const platform::PropertyList* name = information->find("Name");
  ASSERT_NE(name, nullptr);
  EXPECT_EQ(*name, platform::PropertyList(std::string("X")));
  EXPECT_EQ(information->find("Other"), nullptr);
}

TEST_F(InfoDictionary, IsReadAgainAtEachCall) {
  put("<plist version=\"1.0\"><dict><key>Name</key><string>X</string></dict></plist>");
  const auto before = bundle_.infoDictionary();
  put("<plist version=\"1.0\"><dict><key>Name</key><string>Y</string></dict></plist>");
  EXPECT_NE(bundle_.infoDictionary(), before);
}

TEST_F(InfoDictionary, MissingFileReturnsNullopt) {
  EXPECT_EQ(bundle_.infoDictionary(), std::nullopt);
}

TEST_F(InfoDictionary, DamagedFileReturnsNullopt) {
  put("<plist version=\"1.0\"><dict><key>Name</key>");
  EXPECT_EQ(bundle_.infoDictionary(), std::nullopt);
}

TEST_F(InfoDictionary, OtherRootThanDictionaryReturnsNullopt) {
  put("<plist version=\"1.0\"><array/></plist>");
  EXPECT_EQ(bundle_.infoDictionary(), std::nullopt);
}

TEST(BundleResource, PathIsReturnedWhetherOrNotFileExists) {
  EXPECT_EQ(Bundle("/X.app").pathForResource("mount on.png"), "/X.app/Contents/Resources/mount on.png");
}

}  // namespace
