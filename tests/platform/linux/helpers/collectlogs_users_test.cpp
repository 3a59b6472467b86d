#include <unistd.h>

#include "tests/platform/linux/helpers/collectlogs_fixture.h"

namespace helper_test {
namespace {

constexpr uid_t kUser = 65534;

// Runs the helper as an unprivileged user.
class CollectLogsOfUser : public CollectLogs {
 protected:
  void SetUp() override {
    CollectLogs::SetUp();
    fs::permissions(root_, fs::perms(0755));
    ASSERT_EQ(::chown(target_.c_str(), kUser, kUser), 0);
    ASSERT_EQ(asUser({"true"}).code, 0);
  }
  [[nodiscard]] static Ended asUser(const std::vector<std::string>& command) {
    const std::string id = std::to_string(kUser);
    std::vector<std::string> argv{"setpriv", "--reuid", id, "--regid", id, "--clear-groups", "--"};
    argv.insert(argv.end(), command.begin(), command.end());
    return run(argv);
  }
  [[nodiscard]] Ended copyAsUser() const {
    return asUser({ownHelper(), "whole", "1000", source_, "*.log", target_});
  }
  void putFor(uid_t owner, const std::string& name) const {
    put(name);
    ASSERT_EQ(::chown((source_ + "/" + name).c_str(), owner, owner), 0);
  }

 private:
  // Copies the helper, because the user may not have access to the build folder.
  [[nodiscard]] std::string ownHelper() const {
    std::string place = root_ + "/collectlogs";
    fs::copy_file(helper("collectlogs"), place, fs::copy_options::overwrite_existing);
    fs::permissions(place, fs::perms(0755));
    return place;
  }
};

TEST_F(CollectLogsOfUser, FilesOfOthersInSharedFolderAreLeftOut) {
  fs::permissions(source_, fs::perms::all | fs::perms::sticky_bit);
  putFor(kUser, "own.log");
  putFor(kAnotherUser, "foreign.log");
  putFor(0, "system.log");
  EXPECT_EQ(copyAsUser().code, 1);
  EXPECT_THAT(namesIn(target_), ElementsAre("own.log"));
}

TEST_F(CollectLogsOfUser, FilesOfServicesInFolderOfRootAreCopied) {
  putFor(kAnotherUser, "service.log");
  EXPECT_EQ(copyAsUser().code, 0);
  EXPECT_THAT(namesIn(target_), ElementsAre("service.log"));
}

TEST_F(CollectLogsOfUser, FilesInFolderOfAnotherUserAreLeftOut) {
  ASSERT_EQ(::chown(source_.c_str(), kAnotherUser, kAnotherUser), 0);
  putFor(kAnotherUser, "a.log");
  EXPECT_EQ(copyAsUser().code, 1);
  EXPECT_THAT(namesIn(target_), IsEmpty());
}

TEST_F(CollectLogsOfUser, UnreadableFileDoesNotPreventOtherCopies) {
  putFor(0, "closed.log");
  fs::permissions(source_ + "/closed.log", fs::perms(0600));
  ASSERT_NE(asUser({"cat", source_ + "/closed.log"}).code, 0);
  putFor(kUser, "own.log");
  EXPECT_EQ(copyAsUser().code, 1);
  EXPECT_THAT(namesIn(target_), ElementsAre("own.log"));
}

}  // namespace
}  // namespace helper_test
