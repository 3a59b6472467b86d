#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <string>

#include "tests/harness/processes/child_process.h"
#include "tests/harness/processes/file_contents.h"

namespace {

namespace fs = std::filesystem;
using test_support::contentsOf;
using test_support::ExitStatus;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

constexpr const char* kBundle = "/tmp/My Agent.app";
constexpr const char* kInstalled = "/tmp/run/TovalinTray/helpers";

std::set<std::string> namesIn(const std::string& folder) {
  std::set<std::string> names;
  std::error_code missing;
  for (const auto& entry : fs::directory_iterator(folder, missing)) names.insert(entry.path().filename());
  return names;
}

class HelperInstallation : public testing::Test {
 protected:
  void SetUp() override {
    fs::create_directory("/tmp/run");
    fs::permissions("/tmp/run", fs::perms(0700));
    ::setenv("XDG_RUNTIME_DIR", "/tmp/run", 1);
    fs::create_directories(std::string(kBundle) + "/Contents/MacOS");
    fs::create_directories(std::string(kBundle) + "/Contents/Helpers");
    fs::copy_file(PRIVATE_FOLDER_PROBE, program_);
    for (const char* name : {"collectlogs", "launchctl", "open", "osascript", "TovalinWebView"})
      putHelper(name, name);
  }
  void TearDown() override {
    fs::remove_all("/tmp/run");
    fs::remove_all(kBundle);
    fs::remove_all("/tmp/elsewhere");
  }

  // Creates a helper that prints `text`.
  static void putHelper(const std::string& name, const std::string& text) {
    const std::string path = std::string(kBundle) + "/Contents/Helpers/" + name;
    std::ofstream(path, std::ios::trunc) << "#!/bin/sh\necho " + text + "\n";
    fs::permissions(path, fs::perms(0755));
  }
  static std::string outputOf(const std::string& helper) {
    test_support::ChildProcess child;
    if (!child.start({std::string(kInstalled) + "/" + helper})) return "did not start";
    return child.readLine().value_or("no output");
  }
  void run(const std::string& task) {
    test_support::ChildProcess child;
    ASSERT_TRUE(child.start({program_, task}));
    ASSERT_EQ(child.wait(), ExitStatus{.code = 0});
  }

  std::string program_ = std::string(kBundle) + "/Contents/MacOS/probe";
};

TEST_F(HelperInstallation, CopiesAllFiveHelpers) {
  run("install");
  EXPECT_THAT(namesIn(kInstalled),
              UnorderedElementsAre("collectlogs", "launchctl", "open", "osascript", "TovalinWebView"));
}

TEST_F(HelperInstallation, CopiesRunWithoutBundle) {
  run("install");
  fs::remove_all(kBundle);
  EXPECT_EQ(outputOf("launchctl"), "launchctl");
}

TEST_F(HelperInstallation, OtherProgramsAreNotCopied) {
  putHelper("other", "other");
  run("install");
  EXPECT_FALSE(fs::exists(std::string(kInstalled) + "/other"));
}

TEST_F(HelperInstallation, MissingHelperIsLeftOut) {
  fs::remove(std::string(kBundle) + "/Contents/Helpers/launchctl");
  run("install");
  EXPECT_THAT(namesIn(kInstalled),
              UnorderedElementsAre("collectlogs", "open", "osascript", "TovalinWebView"));
}

TEST_F(HelperInstallation, MissingHelperIsLoggedUnlessItIsTheWebViews) {
  for (const char* const name : {"launchctl", "TovalinWebView"}) {
    fs::remove(std::string(kBundle) + "/Contents/Helpers/" + name);
  }
  test_support::ChildOptions options;
  options.error = test_support::Redirection::pipe();
  test_support::ChildProcess child;
  ASSERT_TRUE(child.start({program_, "install"}, options));
  ASSERT_EQ(child.wait(), ExitStatus{.code = 0});
  const std::string reported = child.takeErrorOutput();
  EXPECT_THAT(reported, HasSubstr("launchctl: No such file or directory"));
  EXPECT_THAT(reported, testing::Not(HasSubstr("TovalinWebView")));
}

TEST_F(HelperInstallation, OlderCopiesAreReplaced) {
  run("install");
  putHelper("open", "newer");
  fs::remove(std::string(kBundle) + "/Contents/Helpers/osascript");
  run("install");
  EXPECT_EQ(outputOf("open"), "newer");
  EXPECT_THAT(namesIn(kInstalled),
              UnorderedElementsAre("collectlogs", "launchctl", "open", "TovalinWebView"));
}

TEST_F(HelperInstallation, LinkAtHelperFolderIsReplacedAndItsTargetKept) {
  fs::create_directory("/tmp/elsewhere");
  std::ofstream("/tmp/elsewhere/open") << "spared";
  fs::create_directory("/tmp/run/TovalinTray");
  fs::permissions("/tmp/run/TovalinTray", fs::perms(0700));
  fs::create_symlink("/tmp/elsewhere", kInstalled);
  run("install");
  EXPECT_EQ(outputOf("open"), "open");
  EXPECT_EQ(contentsOf("/tmp/elsewhere/open"), "spared");
  EXPECT_THAT(namesIn("/tmp/elsewhere"), UnorderedElementsAre("open"));
}

TEST_F(HelperInstallation, RemovalDeletesFolder) {
  run("install");
  run("remove");
  EXPECT_FALSE(fs::exists(kInstalled));
}

TEST_F(HelperInstallation, RemovalWithoutInstallationIsNoOp) {
  run("remove");
  EXPECT_FALSE(fs::exists(kInstalled));
}

TEST_F(HelperInstallation, ProgramOutsideBundleKeepsExistingCopies) {
  run("install");
  fs::copy_file(PRIVATE_FOLDER_PROBE, "/tmp/elsewhere");
  program_ = "/tmp/elsewhere";
  run("install");
  EXPECT_THAT(namesIn(kInstalled),
              UnorderedElementsAre("collectlogs", "launchctl", "open", "osascript", "TovalinWebView"));
}

TEST_F(HelperInstallation, RefusedPrivateFolderGetsNoHelpers) {
  fs::create_directory("/tmp/elsewhere");
  fs::create_symlink("/tmp/elsewhere", "/tmp/run/TovalinTray");
  run("install");
  EXPECT_THAT(namesIn("/tmp/elsewhere"), IsEmpty());
}

TEST_F(HelperInstallation, HelperBeyondDiskSpaceIsLeftOut) {
  if (::mount("none", "/tmp/run", "tmpfs", 0, "mode=700,size=64k") != 0)
    GTEST_SKIP() << "cannot mount a file system";
  putHelper("TovalinWebView", "whole\n#" + std::string(100'000, '#'));
  run("install");
  EXPECT_THAT(namesIn(kInstalled), UnorderedElementsAre("collectlogs", "launchctl", "open", "osascript"));
  ::umount2("/tmp/run", MNT_DETACH);
}

TEST_F(HelperInstallation, HelpersOfBundleRunWithoutCopies) {
  fs::create_symlink("/tmp/elsewhere", "/tmp/run/TovalinTray");
  run("install");
  run("collect");
  EXPECT_EQ(contentsOf("/tmp/output"), "collectlogs\n");
}

TEST_F(HelperInstallation, NoexecFolderIsReported) {
  const std::string belowTmp = "/tmp/TovalinTray-" + std::to_string(::geteuid());
  fs::create_directory(belowTmp);
  for (const std::string& folder : {std::string("/tmp/run"), belowTmp}) {
    if (::mount("none", folder.c_str(), "tmpfs", MS_NOEXEC, "mode=700") != 0)
      GTEST_SKIP() << "cannot mount a file system";
  }
  test_support::ChildProcess child;
  ASSERT_TRUE(child.start({program_, "install"}, {.error = test_support::Redirection::pipe()}));
  ASSERT_EQ(child.wait(), ExitStatus{.code = 0});
  EXPECT_THAT(child.takeErrorOutput(), HasSubstr("helpers are not available after the removal of its bundle: "
                                                 "no program can be executed in /tmp/run/TovalinTray"));
  for (const std::string& folder : {std::string("/tmp/run"), belowTmp}) ::umount2(folder.c_str(), MNT_DETACH);
  fs::remove(belowTmp);
}

// Opens pages through the helper "open".
class PageOpening : public HelperInstallation {
 protected:
  void TearDown() override {
    fs::remove("/tmp/opened");
    HelperInstallation::TearDown();
  }
  // Makes the bundle's helper "open" append `version` and its arguments to /tmp/opened.
  static void putOpener(const std::string& version) { putHelper("open", version + " \"$@\" >>/tmp/opened"); }
};

TEST_F(PageOpening, UsesCopy) {
  putOpener("copy");
  run("install");
  putOpener("bundle");
  run("open");
  EXPECT_EQ(contentsOf("/tmp/opened"), "copy http://a\n");
}

TEST_F(PageOpening, UsesBundleIfPrivateFolderIsRefused) {
  putOpener("bundle");
  fs::create_symlink("/tmp", "/tmp/run/TovalinTray");
  run("install");
  run("open");
  EXPECT_EQ(contentsOf("/tmp/opened"), "bundle http://a\n");
}

TEST_F(PageOpening, UsesBundleIfCopyIsMissing) {
  putOpener("bundle");
  run("open");
  EXPECT_EQ(contentsOf("/tmp/opened"), "bundle http://a\n");
}

TEST_F(PageOpening, FailedCopyIsNotRetried) {
  putHelper("open", "copy >>/tmp/opened; exit 1");
  run("install");
  run("open");
  EXPECT_EQ(contentsOf("/tmp/opened"), "copy\n");
}

}  // namespace
