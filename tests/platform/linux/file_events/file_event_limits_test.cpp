#include <fcntl.h>
#include <sys/inotify.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

#include "platform/linux/file_events/file_identity.h"
#include "platform/linux/file_events/inotify.h"
#include "tests/harness/processes/child_process.h"
#include "tests/platform/linux/file_events/file_event_fixture.h"

namespace {

namespace fs = std::filesystem;
using test_support::ChildProcess;
using testing::Contains;
using testing::ElementsAre;

TEST_F(FileEvents, MissingFolderReturnsNoStream) {
  EXPECT_EQ(make("/tmp/way/nothing"), nullptr);
}

TEST_F(FileEvents, FileReturnsNoStream) {
  write("file");
  EXPECT_EQ(make(inRoot("file")), nullptr);
}

TEST_F(FileEvents, RelativePathReturnsNoStream) {
  EXPECT_EQ(make(""), nullptr);
  EXPECT_EQ(make("tmp"), nullptr);
}

// A continuous writer must not keep the reader in its loop.
TEST_F(FileEvents, DrainReadsOnlyNoticesQueuedAtItsStart) {
  platform::Inotify queue;
  ASSERT_GE(queue.add(root_, IN_CREATE), 0);
  constexpr int enough = 100;
  int taken = 0;
  const auto writeNext = [&] { std::ofstream(inRoot(std::to_string(taken))).flush(); };
  writeNext();
  queue.drain([&](const platform::Inotify::Notice&) {
    if (++taken < enough) writeNext();
  });
  EXPECT_EQ(taken, 1);
}

// A file system may reuse the inode number of a removed folder; the birth time tells them apart.
TEST_F(FileEvents, FolderIdentityIncludesBirthTime) {
  struct statx status {};
  ASSERT_EQ(::statx(AT_FDCWD, root_.c_str(), 0, STATX_BTIME, &status), 0);
  if ((status.stx_mask & STATX_BTIME) == 0) GTEST_SKIP() << "the file system does not record birth times";
  const auto identity = platform::folderAt(root_);
  ASSERT_TRUE(identity);
  EXPECT_EQ(identity->birthSeconds, status.stx_btime.tv_sec);
  EXPECT_EQ(identity->birthNanoseconds, status.stx_btime.tv_nsec);
}

long watchesForAll() {
  long count = 0;
  std::ifstream("/proc/sys/fs/inotify/max_user_watches") >> count;
  return count;
}

TEST_F(FileEvents, TreeOf20000FoldersIsWatchedCompletely) {
  if (watchesForAll() < 25000) GTEST_SKIP() << "the inotify limit is " << watchesForAll() << " watches";
  for (int i = 0; i < 100; ++i) {
    for (int j = 0; j < 199; ++j) makeFolder("folder" + std::to_string(i) + "/folder" + std::to_string(j));
  }
  watch();
  for (const char* name : {"folder0/folder0", "folder57/folder123", "folder99/folder198"})
    write(std::string(name) + "/file");
  EXPECT_THAT(nextBatch(), ElementsAre(changed("folder0/folder0"), changed("folder57/folder123"),
                                       changed("folder99/folder198")));
  fs::rename(root_, root_ + " old");
  EXPECT_THAT(nextBatch(), ElementsAre(rootChanged()));
}

// Makes more changes than the inotify queue holds (max_queued_events) while nothing reads it.
void overflowQueueIn(const std::string& folder) {
  int room = 0;
  std::ifstream("/proc/sys/fs/inotify/max_queued_events") >> room;
  // Each iteration queues two events. Alternating names keep the kernel from merging equal successive ones.
  for (int i = 0; i <= room / 2; ++i) {
    std::ofstream(folder + "/file" + std::to_string(i % 2)) << "";
    fs::remove(folder + "/file" + std::to_string(i % 2));
  }
}

TEST_F(FileEvents, QueueOverflowReportsMustScanSubDirs) {
  makeFolder("a");
  watch();
  overflowQueueIn(inRoot("a"));
  EXPECT_THAT(nextBatch(), ElementsAre(changed("a"), platform::FileEvent{root_, Stream::mustScanSubDirs}));
}

TEST_F(FileEvents, FoldersCreatedDuringOverflowAreWatched) {
  makeFolder("a");
  watch();
  overflowQueueIn(inRoot("a"));
  makeFolder("lost/sub");
  ASSERT_THAT(nextBatch(), Contains(platform::FileEvent{root_, Stream::mustScanSubDirs}));
  write("lost/sub/file");
  EXPECT_THAT(nextBatch(), ElementsAre(changed("lost/sub")));
}

TEST_F(FileEvents, RemovalDuringOverflowIsReported) {
  makeFolder("a");
  watch();
  overflowQueueIn(inRoot("a"));
  fs::remove_all(root_);
  EXPECT_THAT(nextBatch(),
              ElementsAre(changed("a"), platform::FileEvent{root_, Stream::mustScanSubDirs}, rootChanged()));
}

// Runs the probe in a user namespace with its own inotify limits.
class WatchLimits : public FileEvents {
 protected:
  void SetUp() override {
    if (!canSet()) GTEST_SKIP() << "cannot set inotify limits in a user namespace";
    FileEvents::SetUp();
    for (int i = 0; i < 50; ++i) makeFolder("folder" + std::to_string(i));
  }

  // Starts the probe and returns the first line of its output.
  std::optional<std::string> startProbe(const std::string& limit, int value) {
    EXPECT_TRUE(probe_.start(limited(limit, value, "exec \"$0\" \"$1\"")));
    return probe_.readLine();
  }
  static std::string line(const platform::FileEvent& event) {
    return std::to_string(event.flags) + " " + event.path;
  }

  ChildProcess probe_;

 private:
  [[nodiscard]] std::vector<std::string> limited(const std::string& limit, int value,
                                                 const std::string& command) const {
    const std::string set = "echo " + std::to_string(value) + " >/proc/sys/user/" + limit;
    return {"unshare",        "--user", "--map-root-user", "sh", "-c", set + " && " + command,
            FILE_EVENT_PROBE, root_};
  }
  [[nodiscard]] bool canSet() const {
    ChildProcess trial;
    return trial.start(limited("max_inotify_watches", 1, "true")) &&
           trial.wait() == test_support::ExitStatus{.code = 0};
  }
};

TEST_F(WatchLimits, TooFewForTreeKeepUpperFoldersAndAncestors) {
  ASSERT_EQ(startProbe("max_inotify_watches", 20), "watching");
  write("sign");
  EXPECT_EQ(probe_.readLine(), line(changed()));
  fs::rename("/tmp/way", "/tmp/way out");
  EXPECT_EQ(probe_.readLine(), line(rootChanged()));
  fs::remove_all("/tmp/way out");
}

TEST_F(WatchLimits, NewFoldersBeyondLimitAreIgnored) {
  ASSERT_EQ(startProbe("max_inotify_watches", 20), "watching");
  makeFolder("new/sub");
  EXPECT_EQ(probe_.readLine(), line(changed()));
  write("new/sub/file");
  write("sign");
  EXPECT_EQ(probe_.readLine(), line(changed()));
}

TEST_F(WatchLimits, TooFewForAncestorsReturnNoStream) {
  EXPECT_EQ(startProbe("max_inotify_watches", 3), "none");
}

TEST_F(WatchLimits, WithoutInstanceReturnsNoStream) {
  EXPECT_EQ(startProbe("max_inotify_instances", 0), "none");
}

TEST_F(WatchLimits, SingleInstanceReportsRemovalOfRoot) {
  ASSERT_EQ(startProbe("max_inotify_instances", 1), "watching");
  fs::remove_all(root_);
  EXPECT_EQ(probe_.readLine(), line(rootChanged()));
}

}  // namespace
