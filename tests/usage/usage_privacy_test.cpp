#include <sys/stat.h>

#include "tests/usage/record_fixture.h"
#include "usage/application_directory.h"
#include "usage/installation_identity.h"
#include "usage/private_files.h"
#include "usage/server_option.h"

namespace settings_test {
namespace {

constexpr const char* kIdentity = "/tmp/support/Tovalin/TovalinUUID.txt";
constexpr const char* kOption = "/tmp/support/Tovalin/TovalinServerOption.txt";

mode_t modeOf(const std::string& path) {
  struct stat status {};
  return ::lstat(path.c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
}

void openToAll(const std::string& path) {
  ASSERT_EQ(::chmod(path.c_str(), 0777), 0);
}

// Sets the umask to 0 for the lifetime of the object.
class OpenMask {
 public:
  OpenMask() = default;
  ~OpenMask() { ::umask(before_); }
  OpenMask(const OpenMask&) = delete;
  OpenMask& operator=(const OpenMask&) = delete;

 private:
  const mode_t before_ = ::umask(0);
};

// Runs with a umask of 0.
class Privacy : public Records {
  OpenMask mask_;
};

TEST_F(Privacy, NewFolderAndFilesHavePrivateModes) {
  fs::remove_all(kFolder);
  TvlWriteQuitToFile();
  static_cast<void>(GetTovalinServerOption());
  EXPECT_EQ(modeOf(kFolder), 0700u);
  for (const char* file : {kToday, kIdentity, kOption}) EXPECT_EQ(modeOf(file), 0600u) << file;
}

TEST_F(Privacy, ParentFoldersFollowUmask) {
  ::setenv("XDG_DATA_HOME", "/tmp/support/a/b", 1);
  ASSERT_TRUE(applicationDirectory());
  EXPECT_EQ(modeOf("/tmp/support/a/b"), 0777u);
  EXPECT_EQ(modeOf("/tmp/support/a/b/Tovalin"), 0700u);
}

TEST_F(Privacy, ExistingFolderAndItsFilesAreMadePrivate) {
  const std::string past = std::string(kFolder) + "/Tovalin_2024_03_06.dat";
  write(past, kHeader);
  openToAll(kFolder);
  openToAll(past);
  openToAll(kIdentity);
  ASSERT_EQ(applicationDirectory(), kFolder);
  EXPECT_EQ(modeOf(kFolder), 0700u);
  EXPECT_EQ(modeOf(past), 0700u);
  EXPECT_EQ(modeOf(kIdentity), 0700u);
  EXPECT_EQ(contentsOf(past), kHeader);
}

TEST_F(Privacy, OtherFilesKeepTheirMode) {
  for (const std::string name : {"notes.txt", "NOTES.DAT", "other"}) {
    const std::string path = std::string(kFolder) + "/" + name;
    write(path, "text");
    openToAll(path);
    makeFolderPrivate(kFolder);
    EXPECT_EQ(modeOf(path), 0777u);
  }
}

TEST_F(Privacy, UsedFileIsMadePrivate) {
  for (const char* file : {kToday, kIdentity, kOption}) {
    write(file, file == kIdentity ? contentsOf(kIdentity) : "1");
    ASSERT_EQ(::chmod(file, 0644), 0);
  }
  TvlWriteQuitToFile();
  std::array<char, 50> identifier{};
  GetTovalinUUID(identifier);
  static_cast<void>(GetTovalinServerOption());
  for (const char* file : {kToday, kIdentity, kOption}) EXPECT_EQ(modeOf(file), 0600u) << file;
}

TEST_F(Privacy, ReplacedFileIsMadePrivate) {
  write(kOption, "0\n");
  openToAll(kOption);
  static_cast<void>(GetTovalinServerOption());
  EXPECT_EQ(modeOf(kOption), 0700u);
}

TEST_F(Privacy, FilesAndFoldersOfAnotherUserKeepTheirMode) {
  write(kToday, kHeader);
  for (const char* path : {kFolder, kToday}) {
    openToAll(path);
    ASSERT_EQ(::chown(path, test_support::kNobody, 0), 0);
  }
  ASSERT_EQ(applicationDirectory(), kFolder);
  TvlWriteQuitToFile();
  EXPECT_EQ(modeOf(kFolder), 0777u);
  EXPECT_EQ(modeOf(kToday), 0777u);
}

TEST_F(Privacy, TargetOfLinkKeepsItsMode) {
  fs::create_directory("/tmp/support/elsewhere");
  write("/tmp/support/file", "text");
  openToAll("/tmp/support/elsewhere");
  openToAll("/tmp/support/file");
  fs::create_symlink("/tmp/support/file", std::string(kFolder) + "/link");
  fs::create_symlink("/tmp/support/elsewhere", std::string(kFolder) + "/folder");
  makeFolderPrivate(kFolder);
  makeFolderPrivate(std::string(kFolder) + "/folder");
  EXPECT_EQ(modeOf("/tmp/support/file"), 0777u);
  EXPECT_EQ(modeOf("/tmp/support/elsewhere"), 0777u);
}

// A folder to which a symbolic link at the data folder's path leads.
class LinkedFolder : public Records {
 protected:
  void SetUp() override {
    Records::SetUp();
    fs::rename(kFolder, kTarget);
    write(past_, kHeader);
    openToAll(kTarget);
    openToAll(past_);
    fs::create_symlink(kTarget, kFolder);
  }

  static constexpr const char* kTarget = "/tmp/support/elsewhere";
  OpenMask mask_;
  const std::string past_ = std::string(kTarget) + "/Tovalin_2024_03_06.dat";
};

TEST_F(LinkedFolder, OfTheUserIsMadePrivateWithItsFiles) {
  ASSERT_EQ(applicationDirectory(), kFolder);
  EXPECT_EQ(modeOf(kTarget), 0700u);
  EXPECT_EQ(modeOf(past_), 0700u);
  EXPECT_TRUE(fs::is_symlink(kFolder));
}

TEST_F(LinkedFolder, OfLinkOfAnotherUserKeepsItsMode) {
  ASSERT_EQ(::lchown(kFolder, test_support::kNobody, 0), 0);
  ASSERT_EQ(applicationDirectory(), kFolder);
  EXPECT_EQ(modeOf(kTarget), 0777u);
}

TEST_F(LinkedFolder, OfAnotherUserKeepsItsMode) {
  for (const std::string& path : {std::string(kTarget), past_})
    ASSERT_EQ(::chown(path.c_str(), test_support::kNobody, 0), 0);
  ASSERT_EQ(applicationDirectory(), kFolder);
  EXPECT_EQ(modeOf(kTarget), 0777u);
  EXPECT_EQ(modeOf(past_), 0777u);
}

TEST_F(Privacy, PipeInFolderDoesNotBlockAndKeepsItsMode) {
  const std::string pipe = std::string(kFolder) + "/pipe";
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0666), 0);
  makeFolderPrivate(kFolder);
  EXPECT_EQ(modeOf(pipe), 0666u);
}

TEST_F(Privacy, PipesAtPathsOfFilesKeepTheirMode) {
  fs::remove(kIdentity);
  for (const char* path : {kToday, kIdentity, kOption}) ASSERT_EQ(::mkfifo(path, 0666), 0);
  TvlWriteQuitToFile();
  std::array<char, 50> identifier{};
  GetTovalinUUID(identifier);
  static_cast<void>(GetTovalinServerOption());
  for (const char* path : {kToday, kIdentity, kOption}) EXPECT_EQ(modeOf(path), 0666u) << path;
}

}  // namespace
}  // namespace settings_test
