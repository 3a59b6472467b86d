#include "platform/linux/helpers/bundle_program.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "tests/platform/linux/helpers/helper_run.h"

namespace helpers {
namespace {

namespace fs = std::filesystem;

constexpr uid_t kAnotherUser = 65534;

class BundleProgramTest : public testing::Test {
 protected:
  const std::string bundle_ = helper_test::newFolder() + "/The Bundle.app";
  const std::string programs_ = bundle_ + "/Contents/MacOS/";
};

TEST_F(BundleProgramTest, IsNamedLikeBundle) {
  helper_test::writeProgram(programs_ + "The Bundle", "");
  helper_test::writeProgram(programs_ + "Another", "");
  EXPECT_EQ(programs_ + "The Bundle", findBundleProgram(bundle_).path);
  EXPECT_EQ("", findBundleProgram(bundle_).problem);
}

TEST_F(BundleProgramTest, TrailingSlashesAreIgnored) {
  helper_test::writeProgram(programs_ + "The Bundle", "");
  EXPECT_EQ(programs_ + "The Bundle", findBundleProgram(bundle_ + "//").path);
}

TEST_F(BundleProgramTest, OtherwiseIsOnlyExecutableFile) {
  helper_test::writeProgram(programs_ + "Another", "");
  helper_test::writeFile(programs_ + "notes.txt", "");
  fs::create_directory(programs_ + "The Bundle");
  EXPECT_EQ(programs_ + "Another", findBundleProgram(bundle_).path);
}

TEST_F(BundleProgramTest, SeveralCandidatesAreAnError) {
  helper_test::writeProgram(programs_ + "One", "");
  helper_test::writeProgram(programs_ + "Two", "");
  EXPECT_EQ("", findBundleProgram(bundle_).path);
  EXPECT_EQ("more than one program in " + bundle_ + "/Contents/MacOS", findBundleProgram(bundle_).problem);
}

TEST_F(BundleProgramTest, MissingBundleOrProgramIsAnError) {
  EXPECT_EQ("no bundle at " + bundle_, findBundleProgram(bundle_).problem);
  fs::create_directory(bundle_);
  EXPECT_EQ("no program in " + bundle_ + "/Contents/MacOS", findBundleProgram(bundle_).problem);
  helper_test::writeFile(programs_ + "notes.txt", "");
  EXPECT_EQ("no program in " + bundle_ + "/Contents/MacOS", findBundleProgram(bundle_).problem);
}

TEST_F(BundleProgramTest, BundleOfAnotherUserInSharedFolderIsRefused) {
  helper_test::writeProgram(programs_ + "The Bundle", "");
  if (::lchown(bundle_.c_str(), kAnotherUser, kAnotherUser) != 0)
    GTEST_SKIP() << "cannot change the owner of a file";
  EXPECT_EQ("", findBundleProgram(bundle_).problem) << "a bundle in a private folder was refused";

  ASSERT_EQ(0, ::chmod(fs::path(bundle_).parent_path().c_str(), 01777));
  EXPECT_EQ(bundle_ + " belongs to another user", findBundleProgram(bundle_ + "/").problem);
  EXPECT_EQ("", findBundleProgram(bundle_).path);
}

TEST_F(BundleProgramTest, LinkOfAnotherUserInSharedFolderIsRefused) {
  helper_test::writeProgram(programs_ + "The Bundle", "");
  const std::string link = "/tmp/Linked.app";
  fs::create_directory_symlink(bundle_, link);
  EXPECT_EQ(link + "/Contents/MacOS/The Bundle", findBundleProgram(link).path);
  if (::lchown(link.c_str(), kAnotherUser, kAnotherUser) != 0)
    GTEST_SKIP() << "cannot change the owner of a file";
  EXPECT_EQ(link + " belongs to another user", findBundleProgram(link).problem);
}

}  // namespace
}  // namespace helpers
