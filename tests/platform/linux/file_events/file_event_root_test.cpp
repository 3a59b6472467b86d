#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "platform/file_descriptor.h"
#include "platform/linux/file_events/root_watch.h"
#include "tests/harness/processes/forked_call.h"
#include "tests/harness/processes/refused_call.h"
#include "tests/platform/linux/file_events/file_event_fixture.h"

namespace {

namespace fs = std::filesystem;
using platform::FileDescriptor;
using testing::Contains;
using testing::ElementsAre;

FileDescriptor hold(const std::string& folder) {
  return FileDescriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

// Gives the folders to an ordinary user and changes this process to that user. Returns false if that is not
// permitted.
bool becomesOwnerOf(const std::vector<std::string>& folders) {
  const bool given = std::ranges::all_of(folders, [](const std::string& folder) {
    return ::chown(folder.c_str(), test_support::kNobody, test_support::kNobody) == 0;
  });
  return given && test_support::becomeNobody();
}

// Changes that make the path of a root lead to another folder, and changes that do not.
using RootChange = FileEvents;

TEST_F(RootChange, RenamedRootIsReported) {
  watch();
  fs::rename(root_, root_ + " old");
  EXPECT_THAT(nextBatch(), ElementsAre(rootChanged()));
}

TEST_F(RootChange, RootMovedToOtherFolderIsReported) {
  watch();
  fs::rename(root_, "/tmp/way/elsewhere");
  EXPECT_THAT(nextBatch(), ElementsAre(rootChanged()));
}

TEST_F(RootChange, MovedParentIsReported) {
  watch();
  fs::rename("/tmp/way/middle", "/tmp/way/other");
  EXPECT_THAT(nextBatch(), ElementsAre(rootChanged()));
}

TEST_F(RootChange, MovedAncestorIsReported) {
  fs::remove_all("/tmp/other way");
  watch();
  fs::rename("/tmp/way", "/tmp/other way");
  EXPECT_THAT(nextBatch(), ElementsAre(rootChanged()));
}

TEST_F(RootChange, RemovedEmptyRootIsReported) {
  watch();
  fs::remove(root_);
  EXPECT_THAT(nextBatch(), ElementsAre(rootChanged()));
}

TEST_F(RootChange, RemovedTreeIsReportedAfterItsFolders) {
  makeFolder("a/b");
  write("a/b/file");
  watch();
  fs::remove_all(root_);
  EXPECT_THAT(nextBatch(), ElementsAre(changed("a/b"), changed("a"), changed(), rootChanged()));
}

TEST_F(RootChange, RemovedAncestorIsReported) {
  makeFolder("a");
  watch();
  fs::remove_all("/tmp/way");
  EXPECT_THAT(nextBatch(), ElementsAre(changed(), rootChanged()));
}

TEST_F(RootChange, RemovalIsReportedIfStatxFails) {
  auto watch = platform::RootWatch::create(root_);
  ASSERT_TRUE(watch);
  fs::remove(root_);
  bool changed = false;
  ASSERT_TRUE(withRefusedCall(SYS_statx, EACCES, [&] { changed = watch->hasChanged(); }));
  EXPECT_TRUE(changed);
}

TEST_F(RootChange, RemovedRootThatIsHeldOpenIsReported) {
  watch();
  const FileDescriptor held = hold(root_);
  fs::remove(root_);
  EXPECT_THAT(nextBatch(), ElementsAre(rootChanged()));
}

TEST_F(RootChange, RemovedTreeWithFolderHeldOpenIsReported) {
  makeFolder("a/b");
  watch();
  const FileDescriptor held = hold(inRoot("a/b"));
  fs::remove_all("/tmp/way");
  EXPECT_THAT(nextBatch(), ElementsAre(changed("a"), changed(), rootChanged()));
}

TEST_F(RootChange, ReplacedRootIsReported) {
  watch();
  fs::create_directory("/tmp/way/new");
  fs::remove(root_);
  fs::rename("/tmp/way/new", root_);
  EXPECT_THAT(nextBatch(), ElementsAre(rootChanged()));
}

TEST_F(RootChange, RecreatedRootIsReported) {
  watch();
  fs::remove(root_);
  fs::create_directory(root_);
  EXPECT_THAT(nextBatch(), ElementsAre(rootChanged()));
}

// File systems on disk may reuse the inode number of a removed folder; those in memory do not.
TEST_F(RootChange, RecreatedRootWithSameInodeNumberIsReported) {
  std::string onDisk = "/var/tmp/root.XXXXXX";
  ASSERT_NE(::mkdtemp(onDisk.data()), nullptr);
  root_ = onDisk + "/root";
  fs::create_directory(root_);
  const auto numberOfRoot = [this] {
    struct stat status {};
    return ::stat(root_.c_str(), &status) == 0 ? status.st_ino : 0;
  };
  watch();
  const auto first = numberOfRoot();
  fs::remove(root_);
  bool sameNumber = false;
  for (int i = 0; i < 100 && !sameNumber; ++i) {
    fs::remove(root_);
    fs::create_directory(root_);
    sameNumber = numberOfRoot() == first;
  }
  const Batch batch = nextBatch();
  fs::remove_all(onDisk);
  if (!sameNumber) GTEST_SKIP() << "/var/tmp does not reuse inode numbers";
  EXPECT_THAT(batch, ElementsAre(rootChanged()));
}

TEST_F(RootChange, RootReplacedByFileIsReported) {
  watch();
  fs::remove(root_);
  std::ofstream(root_) << "text";
  EXPECT_THAT(nextBatch(), ElementsAre(rootChanged()));
}

TEST_F(RootChange, ChangesInMovedRootAreNotReported) {
  watch();
  fs::rename(root_, "/tmp/way/elsewhere");
  std::ofstream("/tmp/way/elsewhere/file") << "text";
  ASSERT_THAT(nextBatch(), Contains(rootChanged()));
  const auto other = make("/tmp/way/elsewhere");
  other->start();
  std::ofstream("/tmp/way/elsewhere/file") << "text";
  EXPECT_THAT(nextBatch(), ElementsAre(platform::FileEvent{"/tmp/way/elsewhere", 0}));
}

TEST_F(RootChange, RootMovedBackBeforeCheckIsNotReported) {
  watch();
  fs::rename(root_, "/tmp/way/elsewhere");
  fs::rename("/tmp/way/elsewhere", root_);
  write("sign");
  EXPECT_THAT(nextBatch(), ElementsAre(changed()));
}

TEST_F(RootChange, RootMovedBackBeforeBatchIsNotReported) {
  watch();
  fs::rename(root_, "/tmp/way/elsewhere");
  QCoreApplication::processEvents();  // notices that the root is missing
  fs::rename("/tmp/way/elsewhere", root_);
  write("sign");
  EXPECT_THAT(nextBatch(), ElementsAre(changed()));
  fs::rename(root_, "/tmp/way/elsewhere");
  EXPECT_THAT(nextBatch(), ElementsAre(rootChanged())) << "the root is no longer watched";
}

TEST_F(RootChange, RootIsCheckedAfterChangesInParentOnly) {
  auto watch = platform::RootWatch::create(root_);
  ASSERT_TRUE(watch);
  const auto isTouched = [&] {
    pollfd touched{.fd = watch->folders(), .events = POLLIN, .revents = 0};
    return ::poll(&touched, 1, 0) == 1;
  };
  std::ofstream("/tmp/way/file").close();
  fs::remove("/tmp/way/file");
  EXPECT_FALSE(isTouched());
  std::ofstream("/tmp/way/middle/file").close();
  fs::remove("/tmp/way/middle/file");
  EXPECT_TRUE(isTouched());
  EXPECT_FALSE(watch->hasChanged());
}

TEST_F(RootChange, MovedSiblingOfAncestorIsNotReported) {
  fs::create_directory("/tmp/way/beside");
  watch();
  fs::rename("/tmp/way/beside", "/tmp/way/middle/beside");
  fs::remove("/tmp/way/middle/beside");
  write("sign");
  EXPECT_THAT(nextBatch(), ElementsAre(changed()));
}

TEST_F(RootChange, InaccessibleParentIsNotReported) {
  const auto finished = test_support::runForked([this] {
    if (!becomesOwnerOf({"/tmp/way/middle", root_})) return test_support::kUnavailable;
    watch();
    fs::permissions("/tmp/way/middle", fs::perms(0));
    fs::permissions("/tmp/way/middle", fs::perms(0700));
    write("sign");
    const bool first = nextBatch() == Batch{changed()};
    write("sign");
    fs::permissions("/tmp/way/middle", fs::perms(0));
    const bool second = nextBatch() == Batch{changed()};
    fs::permissions("/tmp/way/middle", fs::perms(0700));
    return first && second ? 0 : 1;
  });
  if (wasUnavailable(finished)) GTEST_SKIP() << "cannot change to another user";
  EXPECT_EQ(finished.status, test_support::ExitStatus{.code = 0});
}

TEST_F(RootChange, ChangeIsReportedIfParentBecomesInaccessible) {
  const auto finished = test_support::runForked([this] {
    if (!becomesOwnerOf({"/tmp/way/middle", root_})) return test_support::kUnavailable;
    watch();
    fs::rename(root_, root_ + " old");
    QCoreApplication::processEvents();  // notices that the root is missing
    fs::permissions("/tmp/way/middle", fs::perms(0));
    const bool wasReported = nextBatch() == Batch{rootChanged()};
    fs::permissions("/tmp/way/middle", fs::perms(0700));
    return wasReported ? 0 : 1;
  });
  if (wasUnavailable(finished)) GTEST_SKIP() << "cannot change to another user";
  EXPECT_EQ(finished.status, test_support::ExitStatus{.code = 0});
}

TEST_F(RootChange, ChangeIsReportedBelowUnreadableFolder) {
  for (const auto& [closed, moved] :
       {std::pair("/tmp/way", "/tmp/way/middle"), std::pair("/tmp/way/middle", "/tmp/way/middle"),
        std::pair("/tmp/way/middle", "/tmp/way/middle/root")}) {
    SetUp();
    const auto finished = test_support::runForked([this, closed = closed, moved = moved] {
      if (!becomesOwnerOf({"/tmp/way", "/tmp/way/middle", root_})) return test_support::kUnavailable;
      fs::permissions(closed, fs::perms(0300));
      watch();
      fs::rename(moved, std::string(moved) + " old");
      return nextBatch() == Batch{rootChanged()} ? 0 : 1;
    });
    if (wasUnavailable(finished)) GTEST_SKIP() << "cannot change to another user";
    EXPECT_EQ(finished.status, test_support::ExitStatus{.code = 0}) << closed << ", " << moved;
  }
}

TEST_F(RootChange, RemovedLinkInPathIsReported) {
  fs::create_directory_symlink("/tmp/way/middle", "/tmp/way/link");
  root_ = "/tmp/way/link/root";
  watch();
  fs::remove("/tmp/way/link");
  EXPECT_THAT(nextBatch(), ElementsAre(rootChanged()));
}

TEST_F(RootChange, MovedTargetOfLinkInPathIsReported) {
  fs::create_directories("/tmp/way/real/deep/root");
  fs::create_directory_symlink("/tmp/way/real/deep", "/tmp/way/middle/link");
  root_ = "/tmp/way/middle/link/root";
  watch();
  fs::rename("/tmp/way/real", "/tmp/way/gone");
  EXPECT_THAT(nextBatch(), ElementsAre(rootChanged()));
}

TEST_F(RootChange, ChangesInRootGivenByLinkAreReported) {
  fs::create_directory_symlink(root_, "/tmp/way/link");
  root_ = "/tmp/way/link";
  watch();
  write("file");
  EXPECT_THAT(nextBatch(), ElementsAre(changed()));
}

TEST_F(RootChange, PathLeadingToSameFolderByLinkIsNotReported) {
  watch();
  fs::rename("/tmp/way/middle", "/tmp/way/other");
  fs::create_directory_symlink("/tmp/way/other", "/tmp/way/middle");
  write("sign");
  EXPECT_THAT(nextBatch(), ElementsAre(changed()));
}

// A root on a tmpfs, which is unmounted after the test.
class OnAMount : public FileEvents {
 protected:
  void SetUp() override {
    FileEvents::SetUp();
    if (::mount("none", "/tmp/way/middle", "tmpfs", 0, nullptr) != 0)
      GTEST_SKIP() << "cannot mount a file system";
    fs::create_directory(root_);
  }
  void TearDown() override {
    FileEvents::TearDown();
    ::umount2("/tmp/way/middle", MNT_DETACH);
  }
};

TEST_F(OnAMount, UnmountIsReported) {
  watch();
  // umount() fails with EBUSY if the watch keeps the file system busy.
  ASSERT_EQ(::umount("/tmp/way/middle"), 0);
  EXPECT_THAT(nextBatch(), ElementsAre(rootChanged()));
}

TEST_F(OnAMount, LazyUnmountWithOpenFileIsReported) {
  write("file");
  const FileDescriptor held = hold(root_);
  watch();
  ASSERT_EQ(::umount2("/tmp/way/middle", MNT_DETACH), 0);
  EXPECT_THAT(nextBatch(), ElementsAre(rootChanged()));
}

TEST_F(OnAMount, MountOverRootIsReported) {
  watch();
  ASSERT_EQ(::mount("none", "/tmp/way/middle", "tmpfs", 0, nullptr), 0);
  EXPECT_THAT(nextBatch(), ElementsAre(rootChanged()));
  ::umount("/tmp/way/middle");
}

TEST_F(OnAMount, UnmountOfBindMountIsReported) {
  fs::create_directory("/tmp/way/second");
  ASSERT_EQ(::mount("/tmp/way/middle", "/tmp/way/second", nullptr, MS_BIND, nullptr), 0);
  root_ = "/tmp/way/second/root";
  watch();
  ASSERT_EQ(::umount("/tmp/way/second"), 0);
  EXPECT_THAT(nextBatch(), ElementsAre(rootChanged()));
}

TEST_F(OnAMount, MountBelowRootIsNotReported) {
  makeFolder("sub");
  watch();
  ASSERT_EQ(::mount("none", inRoot("sub").c_str(), "tmpfs", 0, nullptr), 0);
  ASSERT_EQ(::umount(inRoot("sub").c_str()), 0);
  write("sign");
  EXPECT_THAT(nextBatch(), ElementsAre(changed()));
}

TEST_F(OnAMount, RootMountedInsideItselfIsNoEndlessTree) {
  makeFolder("again");
  ASSERT_EQ(::mount(root_.c_str(), inRoot("again").c_str(), nullptr, MS_BIND, nullptr), 0);
  watch();
  fs::rename(root_, root_ + " old");
  EXPECT_THAT(nextBatch(), Contains(rootChanged()));
}

// A root in the lower layer of an overlay. The first write below it copies it to the upper layer, which gives
// it a later birth time.
class OnAnOverlay : public FileEvents {
 protected:
  void SetUp() override {
    FileEvents::SetUp();
    for (const char* folder : {"lower/root/inner", "upper", "work"})
      fs::create_directories(std::string("/tmp/way/") + folder);
    if (::mount("overlay", "/tmp/way/middle", "overlay", 0,
                "lowerdir=/tmp/way/lower,upperdir=/tmp/way/upper,workdir=/tmp/way/work") != 0)
      GTEST_SKIP() << "cannot mount an overlay";
  }
  void TearDown() override {
    FileEvents::TearDown();
    ::umount2("/tmp/way/middle", MNT_DETACH);
  }

  void moveRootToUpperLayer() {
    write("inner/file");
    ASSERT_TRUE(fs::exists("/tmp/way/upper/root/inner/file"));
  }
};

TEST_F(OnAnOverlay, CopyUpOfRootIsNotReported) {
  watch();
  moveRootToUpperLayer();
  EXPECT_THAT(nextBatch(), ElementsAre(changed("inner")));
}

TEST_F(OnAnOverlay, RemovalAfterCopyUpIsReported) {
  watch();
  moveRootToUpperLayer();
  ASSERT_THAT(nextBatch(), ElementsAre(changed("inner")));
  fs::remove_all(root_);
  EXPECT_THAT(nextBatch(), Contains(rootChanged()));
}

TEST_F(OnAnOverlay, RecreatedRootIsReported) {
  watch();
  fs::remove_all(root_);
  fs::create_directory(root_);
  EXPECT_THAT(nextBatch(), Contains(rootChanged()));
}

}  // namespace
