#include "usage/application_directory.h"

#include <sys/mount.h>

#include "tests/usage/settings_fixture.h"

namespace settings_test {
namespace {

using test_support::ExitStatus;

using ApplicationDirectory = Settings;

TEST_F(ApplicationDirectory, IsCreatedWithParentFolders) {
  ::setenv("XDG_DATA_HOME", "/tmp/support/a/b c/d", 1);
  EXPECT_EQ(applicationDirectory(), "/tmp/support/a/b c/d/Tovalin");
  EXPECT_TRUE(fs::is_directory("/tmp/support/a/b c/d/Tovalin"));
}

TEST_F(ApplicationDirectory, ExistingFolderIsKept) {
  write(std::string(kFolder) + "/kept", "text");
  EXPECT_EQ(applicationDirectory(), kFolder);
  EXPECT_EQ(contentsOf(std::string(kFolder) + "/kept"), "text");
}

TEST_F(ApplicationDirectory, LinkToFolderIsAccepted) {
  fs::remove(kFolder);
  fs::create_directory("/tmp/support/elsewhere");
  fs::create_symlink("/tmp/support/elsewhere", kFolder);
  EXPECT_EQ(applicationDirectory(), kFolder);
}

TEST_F(ApplicationDirectory, DanglingLinkReturnsNullopt) {
  fs::remove(kFolder);
  fs::create_symlink("/tmp/support/nowhere", kFolder);
  EXPECT_EQ(applicationDirectory(), std::nullopt);
}

TEST_F(ApplicationDirectory, FileAtItsPathReturnsNullopt) {
  fs::remove(kFolder);
  write(kFolder, "a file");
  EXPECT_EQ(applicationDirectory(), std::nullopt);
  EXPECT_EQ(contentsOf(kFolder), "a file");
}

TEST_F(ApplicationDirectory, FileAsParentReturnsNullopt) {
  write("/tmp/support/file", "a file");
  ::setenv("XDG_DATA_HOME", "/tmp/support/file/data", 1);
  EXPECT_EQ(applicationDirectory(), std::nullopt);
}

TEST_F(ApplicationDirectory, WithoutHomeReturnsNullopt) {
  ::unsetenv("XDG_DATA_HOME");
  ::unsetenv("HOME");
  EXPECT_EQ(applicationDirectory(), std::nullopt);
  EXPECT_EQ(applicationFile("name"), std::nullopt);
}

TEST_F(ApplicationDirectory, RelativeDataHomeIsIgnored) {
  ::setenv("XDG_DATA_HOME", "support/data", 1);
  ::setenv("HOME", "/tmp/support/home", 1);
  EXPECT_EQ(applicationDirectory(), "/tmp/support/home/.local/share/Tovalin");
  EXPECT_TRUE(fs::is_directory("/tmp/support/home/.local/share/Tovalin"));
}

TEST_F(ApplicationDirectory, LongPathIsNotTruncated) {
  std::string support = kSupport;
  for (int i = 0; i < 4; ++i) support += "/" + std::string(200, 'd');
  ::setenv("XDG_DATA_HOME", support.c_str(), 1);
  EXPECT_EQ(applicationDirectory(), support + "/Tovalin");
  EXPECT_TRUE(fs::is_directory(support + "/Tovalin"));
}

TEST_F(ApplicationDirectory, OverlongNameReturnsNullopt) {
  ::setenv("XDG_DATA_HOME", ("/tmp/support/" + std::string(256, 'd')).c_str(), 1);
  EXPECT_EQ(applicationDirectory(), std::nullopt);
}

TEST_F(ApplicationDirectory, ReadOnlyFileSystemReturnsNullopt) {
  fs::remove(kFolder);
  ASSERT_EQ(::mount("tmpfs", kSupport, "tmpfs", MS_RDONLY, nullptr), 0);
  EXPECT_EQ(applicationDirectory(), std::nullopt);
  EXPECT_EQ(::umount(kSupport), 0);
}

TEST_F(ApplicationDirectory, UnwritableParentReturnsNullopt) {
  fs::remove(kFolder);
  const auto finished = test_support::runForked([] {
    if (!test_support::becomeNobody()) return test_support::kUnavailable;
    if (::access(kSupport, W_OK) == 0) return 100;
    return applicationDirectory() ? 1 : 0;
  });
  if (wasUnavailable(finished)) GTEST_SKIP() << "cannot change to another user";
  EXPECT_EQ(finished.status, ExitStatus{.code = 0});
  EXPECT_FALSE(fs::exists(kFolder));
}

TEST_F(ApplicationDirectory, ApplicationFileDoesNotCreateFolder) {
  fs::remove(kFolder);
  EXPECT_EQ(applicationFile("name.txt"), "/tmp/support/Tovalin/name.txt");
  EXPECT_FALSE(fs::exists(kFolder));
}

}  // namespace
}  // namespace settings_test
