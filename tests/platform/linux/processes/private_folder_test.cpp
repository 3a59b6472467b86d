#include "platform/linux/processes/private_folder.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "platform/helper_folder.h"
#include "platform/linux/processes/qt_runtime_folder.h"
#include "tests/harness/processes/forked_call.h"

namespace {

namespace fs = std::filesystem;
using platform::helperFolders;
using platform::privateFolder;
using test_support::ExitStatus;

constexpr const char* kRuntime = "/tmp/run";
constexpr const char* kBelowRuntime = "/tmp/run/TovalinTray";

class PrivateFolder : public testing::Test {
 protected:
  void SetUp() override {
    fs::create_directory(kRuntime);
    setMode(kRuntime, 0700);
    ::setenv("XDG_RUNTIME_DIR", kRuntime, 1);
  }
  void TearDown() override {
    fs::remove_all(kRuntime);
    fs::remove_all(belowTmp_);
    fs::remove_all("/tmp/elsewhere");
  }

  static void setMode(const std::string& path, mode_t mode) { ASSERT_EQ(::chmod(path.c_str(), mode), 0); }
  static mode_t modeOf(const std::string& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
  }

  const std::string belowTmp_ = "/tmp/TovalinTray-" + std::to_string(::geteuid());
};

TEST_F(PrivateFolder, IsCreatedInRuntimeFolderWithMode0700) {
  ::umask(0);
  EXPECT_EQ(privateFolder(), kBelowRuntime);
  EXPECT_TRUE(fs::is_directory(kBelowRuntime));
  EXPECT_EQ(modeOf(kBelowRuntime), 0700U);
  EXPECT_FALSE(fs::exists(belowTmp_));
  ::umask(022);
}

TEST_F(PrivateFolder, IsReused) {
  EXPECT_EQ(privateFolder(), kBelowRuntime);
  std::ofstream(std::string(kBelowRuntime) + "/kept") << "text";
  EXPECT_EQ(privateFolder(), kBelowRuntime);
  EXPECT_TRUE(fs::exists(std::string(kBelowRuntime) + "/kept"));
}

TEST_F(PrivateFolder, WithoutRuntimeFolderIsBelowTmp) {
  ::unsetenv("XDG_RUNTIME_DIR");
  EXPECT_EQ(privateFolder(), belowTmp_);
  EXPECT_EQ(modeOf(belowTmp_), 0700U);
}

TEST_F(PrivateFolder, RelativeRuntimeFolderIsSkipped) {
  ::setenv("XDG_RUNTIME_DIR", "run", 1);
  EXPECT_EQ(privateFolder(), belowTmp_);
}

TEST_F(PrivateFolder, MissingRuntimeFolderIsSkipped) {
  fs::remove(kRuntime);
  EXPECT_EQ(privateFolder(), belowTmp_);
  EXPECT_FALSE(fs::exists(kRuntime));
}

TEST_F(PrivateFolder, GroupWritableRuntimeFolderIsSkipped) {
  setMode(kRuntime, 0770);
  EXPECT_EQ(privateFolder(), belowTmp_);
}

TEST_F(PrivateFolder, WorldWritableRuntimeFolderIsSkipped) {
  setMode(kRuntime, 01707);
  EXPECT_EQ(privateFolder(), belowTmp_);
}

TEST_F(PrivateFolder, FileAsRuntimeFolderIsSkipped) {
  fs::remove(kRuntime);
  std::ofstream(std::string(kRuntime)) << "a file";
  EXPECT_EQ(privateFolder(), belowTmp_);
}

TEST_F(PrivateFolder, RuntimeFolderOfAnotherUserIsSkipped) {
  if (::chown(kRuntime, test_support::kNobody, test_support::kNobody) != 0)
    GTEST_SKIP() << "cannot change the owner of a folder";
  EXPECT_EQ(privateFolder(), belowTmp_);
}

// Entries that another user may have created at the path of the private folder, below the runtime folder
// (true) or below /tmp (false).
class PreparedFolder : public PrivateFolder, public testing::WithParamInterface<bool> {
 protected:
  void SetUp() override {
    PrivateFolder::SetUp();
    if (GetParam()) return;
    place_ = belowTmp_;
    ::unsetenv("XDG_RUNTIME_DIR");
  }

  std::string place_ = kBelowRuntime;
};

INSTANTIATE_TEST_SUITE_P(PrivateFolder, PreparedFolder, testing::Values(true, false),
                         [](const auto& test) { return test.param ? "BelowRuntime" : "BelowTmp"; });

TEST_P(PreparedFolder, OwnFolderIsUsedAndGetsMode0700) {
  fs::create_directory(place_);
  setMode(place_, 0755);
  EXPECT_EQ(privateFolder(), place_);
  EXPECT_EQ(fs::status(place_).permissions(), fs::perms(0700));
}

TEST_P(PreparedFolder, LinkIsRefused) {
  fs::create_directory("/tmp/elsewhere");
  setMode("/tmp/elsewhere", 0700);
  fs::create_symlink("/tmp/elsewhere", place_);
  EXPECT_EQ(privateFolder(), std::nullopt);
  EXPECT_THAT(helperFolders(), testing::IsEmpty());
  EXPECT_TRUE(fs::is_empty("/tmp/elsewhere"));
}

TEST_P(PreparedFolder, DanglingLinkIsRefused) {
  fs::create_symlink("/tmp/elsewhere", place_);
  EXPECT_EQ(privateFolder(), std::nullopt);
  EXPECT_FALSE(fs::exists("/tmp/elsewhere"));
}

TEST_P(PreparedFolder, FileIsRefused) {
  std::ofstream(place_.c_str()) << "a file";
  EXPECT_EQ(privateFolder(), std::nullopt);
}

TEST_P(PreparedFolder, GroupWritableFolderIsRefused) {
  fs::create_directory(place_);
  setMode(place_, 0720);
  EXPECT_EQ(privateFolder(), std::nullopt);
}

TEST_P(PreparedFolder, WorldWritableFolderIsRefused) {
  fs::create_directory(place_);
  setMode(place_, 01702);
  EXPECT_EQ(privateFolder(), std::nullopt);
}

TEST_P(PreparedFolder, FolderOfAnotherUserIsRefused) {
  fs::create_directory(place_);
  setMode(place_, 0700);
  if (::chown(place_.c_str(), test_support::kNobody, test_support::kNobody) != 0)
    GTEST_SKIP() << "cannot change the owner of a folder";
  EXPECT_EQ(privateFolder(), std::nullopt);
}

TEST_F(PrivateFolder, FailedCreationReturnsNullopt) {
  ::unsetenv("XDG_RUNTIME_DIR");
  setMode("/tmp", 0755);
  const auto finished = test_support::runForked([] {
    if (!test_support::becomeNobody()) return test_support::kUnavailable;
    if (::access("/tmp", W_OK) == 0) return 100;
    return privateFolder() ? 1 : 0;
  });
  setMode("/tmp", 01777);
  if (wasUnavailable(finished)) GTEST_SKIP() << "cannot change to another user";
  EXPECT_EQ(finished.status, ExitStatus{.code = 0});
}

TEST_F(PrivateFolder, FoldersBelowTmpDifferBetweenUsers) {
  const auto finished = test_support::runForked([] {
    if (!test_support::becomeNobody()) return test_support::kUnavailable;
    std::fputs(privateFolder().value_or("(none)").c_str(), stdout);
    return 0;
  });
  if (wasUnavailable(finished)) GTEST_SKIP() << "cannot change to another user";
  EXPECT_EQ(finished.output, "/tmp/TovalinTray-65534");
  fs::remove("/tmp/TovalinTray-65534");
}

TEST_F(PrivateFolder, HelperFolderIsInPrivateFolder) {
  EXPECT_THAT(helperFolders(), testing::ElementsAre(std::string(kBelowRuntime) + "/helpers"));
}

// A runtime folder on a file system mounted with noexec.
class RuntimeFolderWithoutPrograms : public PrivateFolder {
 protected:
  void SetUp() override {
    PrivateFolder::SetUp();
    if (::mount("none", kRuntime, "tmpfs", MS_NOEXEC, "mode=700") != 0)
      GTEST_SKIP() << "cannot mount a file system";
  }
  void TearDown() override {
    ::umount2(kRuntime, MNT_DETACH);
    PrivateFolder::TearDown();
  }
};

TEST_F(RuntimeFolderWithoutPrograms, StillHasPrivateFolder) {
  EXPECT_EQ(privateFolder(), kBelowRuntime);
}

TEST_F(RuntimeFolderWithoutPrograms, HelperFolderIsBelowTmp) {
  EXPECT_THAT(helperFolders(), testing::ElementsAre(belowTmp_ + "/helpers"));
  EXPECT_EQ(modeOf(belowTmp_), 0700U);
}

TEST_F(RuntimeFolderWithoutPrograms, LinkBelowTmpIsNoHelperFolder) {
  fs::create_directory("/tmp/elsewhere");
  fs::create_symlink("/tmp/elsewhere", belowTmp_);
  EXPECT_THAT(helperFolders(), testing::IsEmpty());
}

TEST_F(RuntimeFolderWithoutPrograms, NoexecFolderBelowTmpIsNoHelperFolder) {
  fs::create_directory(belowTmp_);
  ASSERT_EQ(::mount("none", belowTmp_.c_str(), "tmpfs", MS_NOEXEC, "mode=700"), 0);
  EXPECT_THAT(helperFolders(), testing::IsEmpty());
  ::umount2(belowTmp_.c_str(), MNT_DETACH);
}

// Tests the value of XDG_RUNTIME_DIR while Qt starts.
class QtRuntimeFolderTest : public PrivateFolder {
 protected:
  static std::string named() {
    const char* name = std::getenv("XDG_RUNTIME_DIR");
    return name == nullptr ? "(unset)" : name;
  }
};

TEST_F(QtRuntimeFolderTest, UsableFolderIsKept) {
  const platform::QtRuntimeFolder folder;
  EXPECT_EQ(named(), kRuntime);
}

TEST_F(QtRuntimeFolderTest, UnsetFolderIsPrivateFolderForLifetime) {
  ::unsetenv("XDG_RUNTIME_DIR");
  {
    const platform::QtRuntimeFolder folder;
    EXPECT_EQ(named(), belowTmp_);
  }
  EXPECT_EQ(named(), "(unset)");
}

TEST_F(QtRuntimeFolderTest, LinkToFolderIsReplaced) {
  fs::create_symlink(kRuntime, "/tmp/link");
  ::setenv("XDG_RUNTIME_DIR", "/tmp/link", 1);
  const platform::QtRuntimeFolder folder;
  EXPECT_EQ(named(), belowTmp_);
  fs::remove("/tmp/link");
}

TEST_F(QtRuntimeFolderTest, UnusableFolderIsReplacedForLifetime) {
  const auto isReplacedBy = [](const std::string& other) {
    const std::string users = named();
    {
      const platform::QtRuntimeFolder folder;
      EXPECT_EQ(named(), other);
    }
    EXPECT_EQ(named(), users);
  };
  setMode(kRuntime, 0755);
  isReplacedBy(kBelowRuntime);
  setMode(kRuntime, 0777);
  isReplacedBy(belowTmp_);
  ::setenv("XDG_RUNTIME_DIR", "/tmp/missing", 1);
  isReplacedBy(belowTmp_);
  EXPECT_FALSE(fs::exists("/tmp/missing"));
  setMode(belowTmp_, 0755);
  isReplacedBy(belowTmp_);
  setMode(belowTmp_, 0720);
  isReplacedBy("/proc/nowhere");
  EXPECT_EQ(std::getenv("TMPDIR"), nullptr);
  setMode(kRuntime, 0700);
  ASSERT_EQ(::chown(kRuntime, 1234, 1234), 0);
  ::setenv("XDG_RUNTIME_DIR", kRuntime, 1);
  isReplacedBy("/proc/nowhere");
}

}  // namespace
