#include "platform/file_event_stream.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <chrono>
#include <iterator>

#include "platform/application.h"
#include "platform/timer.h"
#include "platform/window.h"
#include "tests/platform/linux/file_events/file_event_fixture.h"

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using platform::Application;
using platform::FileEvent;
using std::chrono::steady_clock;
using testing::ElementsAre;

TEST_F(FileEvents, FlagsHaveDocumentedValues) {
  EXPECT_EQ(Stream::mustScanSubDirs, 0x1u);
  EXPECT_EQ(Stream::rootChanged, 0x20u);
}

TEST_F(FileEvents, NewEntryIsReportedAsChangeOfFolder) {
  makeFolder("Contents");
  watch();
  write("Contents/file");
  EXPECT_THAT(nextBatch(), ElementsAre(changed("Contents")));
}

TEST_F(FileEvents, RemovedEntryIsReportedAsChangeOfFolder) {
  write("file");
  watch();
  fs::remove(inRoot("file"));
  EXPECT_THAT(nextBatch(), ElementsAre(changed()));
}

TEST_F(FileEvents, WriteIsReportedAsChangeOfFolder) {
  makeFolder("a");
  write("a/file");
  watch();
  write("a/file");
  EXPECT_THAT(nextBatch(), ElementsAre(changed("a")));
}

TEST_F(FileEvents, TruncationIsReportedAsChangeOfFolder) {
  write("file");
  watch();
  fs::resize_file(inRoot("file"), 1);
  EXPECT_THAT(nextBatch(), ElementsAre(changed()));
}

TEST_F(FileEvents, RenameIsReportedAsChangeOfBothFolders) {
  makeFolder("from");
  makeFolder("to");
  write("from/file");
  watch();
  fs::rename(inRoot("from/file"), inRoot("to/file"));
  EXPECT_THAT(nextBatch(), ElementsAre(changed("from"), changed("to")));
}

TEST_F(FileEvents, ChangesInOneFolderAreMergedInOrderOfFirstChange) {
  for (const char* folder : {"a", "b"}) makeFolder(folder);
  watch();
  for (const char* file : {"b/1", "a/1", "b/2", "a/2", "b/1"}) write(file);
  EXPECT_THAT(nextBatch(), ElementsAre(changed("b"), changed("a")));
}

TEST_F(FileEvents, ReadingAndOpeningAreNotReported) {
  makeFolder("a");
  write("a/file");
  watch();
  std::ifstream file(inRoot("a/file"));
  const std::string contents(std::istreambuf_iterator<char>(file), {});
  EXPECT_EQ(std::distance(fs::directory_iterator(inRoot("a")), {}), 1);
  // open() for writing without a write() must not be reported either.
  ::close(::open(inRoot("a/file").c_str(), O_RDWR | O_CLOEXEC));
  write("sign");
  EXPECT_THAT(nextBatch(), ElementsAre(changed()));
}

// A shell command and the system call that it makes to change an attribute.
struct AttributeChange {
  const char* command;
  int (*make)(const char* path);
};

int setTimes(const char* path, const timespec& access, const timespec& writing) {
  const timespec times[] = {access, writing};
  return ::utimensat(AT_FDCWD, path, times, 0);
}

constexpr timespec kSomeTime{1, 0};
constexpr timespec kUnchanged{0, UTIME_OMIT};

const AttributeChange kAttributeChanges[] = {
    {"chmod", [](const char* path) { return ::chmod(path, 0500); }},
    {"touch", [](const char* path) { return setTimes(path, kSomeTime, kSomeTime); }},
    {"touch -m", [](const char* path) { return setTimes(path, kUnchanged, kSomeTime); }},
    {"chown", [](const char* path) { return ::chown(path, 65534, 65534); }},
    {"setfattr", [](const char* path) { return ::setxattr(path, "trusted.test", "x", 1, 0); }},
};

TEST_F(FileEvents, AttributeOfFileIsReportedAsChangeOfFolder) {
  makeFolder("a");
  write("a/file");
  watch();
  for (const AttributeChange& change : kAttributeChanges) {
    ASSERT_EQ(change.make(inRoot("a/file").c_str()), 0) << change.command;
    ASSERT_THAT(nextBatch(), ElementsAre(changed("a"))) << change.command;
  }
}

TEST_F(FileEvents, AttributeOfFolderIsReportedAsChangeOfParent) {
  makeFolder("a/b");
  watch();
  for (const AttributeChange& change : kAttributeChanges) {
    ASSERT_EQ(change.make(inRoot("a/b").c_str()), 0) << change.command;
    ASSERT_THAT(nextBatch(), ElementsAre(changed("a"))) << change.command;
  }
}

TEST_F(FileEvents, AttributeOfRootIsNotReported) {
  makeFolder("b");
  watch();
  for (const AttributeChange& change : kAttributeChanges)
    ASSERT_EQ(change.make(root_.c_str()), 0) << change.command;
  write("b/sign");
  EXPECT_THAT(nextBatch(), ElementsAre(changed("b")));
}

TEST_F(FileEvents, AccessTimeIsNotReported) {
  makeFolder("a");
  write("a/file");
  makeFolder("b");
  watch();
  for (const char* name : {"a/file", "a"})
    ASSERT_EQ(setTimes(inRoot(name).c_str(), kSomeTime, kUnchanged), 0) << name;
  write("b/sign");
  EXPECT_THAT(nextBatch(), ElementsAre(changed("b")));
}

TEST_F(FileEvents, HardLinkOutsideRootIsNotReported) {
  makeFolder("a");
  write("a/file");
  makeFolder("b");
  watch();
  fs::create_hard_link(inRoot("a/file"), "/tmp/way/outside");
  ASSERT_EQ(::chmod("/tmp/way/outside", 0600), 0);
  fs::remove("/tmp/way/outside");
  write("b/sign");
  EXPECT_THAT(nextBatch(), ElementsAre(changed("b")));
}

TEST_F(FileEvents, ChangesOutsideRootAreNotReported) {
  fs::create_directory("/tmp/way/middle/beside");
  watch();
  std::ofstream("/tmp/way/middle/beside/file") << "text";
  std::ofstream("/tmp/way/middle/file") << "text";
  fs::remove("/tmp/way/middle/file");
  fs::rename("/tmp/way/middle/beside", "/tmp/way/beside");
  write("sign");
  EXPECT_THAT(nextBatch(), ElementsAre(changed()));
}

TEST_F(FileEvents, LinksBelowRootAreNotFollowed) {
  fs::create_directories("/tmp/way/other/sub");
  fs::create_directory_symlink("/tmp/way/other", inRoot("link"));
  watch();
  fs::create_directory_symlink("/tmp/way/other", inRoot("later"));
  ASSERT_THAT(nextBatch(), ElementsAre(changed()));
  std::ofstream("/tmp/way/other/file") << "text";
  std::ofstream("/tmp/way/other/sub/file") << "text";
  write("sign");
  EXPECT_THAT(nextBatch(), ElementsAre(changed()));
}

TEST_F(FileEvents, EntriesCreatedBeforeNewFolderIsWatchedAreReported) {
  watch();
  makeFolder("a/b/c");
  write("a/b/c/file");
  EXPECT_THAT(nextBatch(), ElementsAre(changed(), changed("a"), changed("a/b"), changed("a/b/c")));
}

TEST_F(FileEvents, NewFoldersAreWatched) {
  watch();
  makeFolder("a/b/c");
  nextBatch();
  write("a/b/c/file");
  EXPECT_THAT(nextBatch(), ElementsAre(changed("a/b/c")));
}

TEST_F(FileEvents, FolderMovedInIsWatched) {
  fs::create_directories("/tmp/way/outside/sub");
  watch();
  fs::rename("/tmp/way/outside", inRoot("inside"));
  nextBatch();
  write("inside/sub/file");
  EXPECT_THAT(nextBatch(), ElementsAre(changed("inside/sub")));
}

TEST_F(FileEvents, FolderMovedOutIsNotWatched) {
  makeFolder("inside/sub");
  watch();
  fs::rename(inRoot("inside"), "/tmp/way/outside");
  ASSERT_THAT(nextBatch(), ElementsAre(changed()));
  std::ofstream("/tmp/way/outside/file") << "text";
  std::ofstream("/tmp/way/outside/sub/file") << "text";
  write("sign");
  EXPECT_THAT(nextBatch(), ElementsAre(changed()));
}

TEST_F(FileEvents, RenamedFolderIsReportedUnderNewName) {
  makeFolder("old/sub");
  makeFolder("old name");
  watch();
  fs::rename(inRoot("old"), inRoot("new"));
  nextBatch();
  write("new/sub/file");
  write("old name/file");
  EXPECT_THAT(nextBatch(), ElementsAre(changed("new/sub"), changed("old name")));
}

TEST_F(FileEvents, FolderMovedIntoUnseenNewFolderIsWatched) {
  makeFolder("a/sub");
  watch();
  makeFolder("x");
  fs::rename(inRoot("a"), inRoot("x/a"));
  nextBatch();
  write("x/a/sub/file");
  EXPECT_THAT(nextBatch(), ElementsAre(changed("x/a/sub")));
}

TEST_F(FileEvents, RecreatedFolderIsWatched) {
  makeFolder("a");
  watch();
  fs::remove(inRoot("a"));
  makeFolder("a");
  nextBatch();
  write("a/file");
  EXPECT_THAT(nextBatch(), ElementsAre(changed("a")));
}

TEST_F(FileEvents, NamesOfAnyBytesAreReported) {
  const std::string name = "a \n\xff%s";
  makeFolder(name);
  watch();
  write(name + "/file");
  EXPECT_THAT(nextBatch(), ElementsAre(changed(name)));
}

TEST_F(FileEvents, BatchIsDelayedByLatency) {
  watch(500ms);
  const auto start = steady_clock::now();
  write("file");
  ASSERT_THAT(nextBatch(), ElementsAre(changed()));
  EXPECT_GE(steady_clock::now() - start, 500ms);
}

// The run loop fires timers in the order of their due times, independent of the load of the machine.
TEST_F(FileEvents, BatchPrecedesTimerOfTwoAndAHalfLatencies) {
  watch(2000ms);
  bool timerFired = false;
  write("file");
  const auto timer = platform::Timer::scheduledTimer(5s, [&] { timerFired = true; });
  ASSERT_TRUE(serveEventsUntil([&] { return timerFired || !batches_.empty(); }));
  timer->invalidate();
  EXPECT_THAT(nextBatch(), ElementsAre(changed()));
  EXPECT_FALSE(timerFired);
}

TEST_F(FileEvents, LaterChangesDoNotDelayBatch) {
  watch(500ms);
  const auto start = steady_clock::now();
  int written = 0;
  ASSERT_TRUE(serveEventsUntil([&] {
    write("file" + std::to_string(++written % 10));
    return !batches_.empty();
  }));
  EXPECT_GE(steady_clock::now() - start, 500ms);
  EXPECT_GT(written, 1);
  EXPECT_THAT(batches_.front(), ElementsAre(changed()));
}

TEST_F(FileEvents, ChangesWhileThreadIsBusyFormOneBatch) {
  for (const char* folder : {"a", "b"}) makeFolder(folder);
  watch(50ms);
  write("a/file");
  std::this_thread::sleep_for(200ms);
  write("b/file");
  EXPECT_TRUE(batches_.empty());
  EXPECT_THAT(nextBatch(), ElementsAre(changed("a"), changed("b")));
}

TEST_F(FileEvents, BatchesAreDeliveredInModalRun) {
  auto window = platform::Window::make({0, 0, 200, 80}, platform::WindowStyle::TitledClosable);
  window->makeKeyAndOrderFront();
  stream_ = Stream::create(root_, kLatency, [this](Stream&, std::span<const FileEvent> events) {
    batches_.emplace_back(events.begin(), events.end());
    Application::sharedApplication().stopModal();
  });
  ASSERT_NE(stream_, nullptr);
  stream_->start();
  write("file");
  Application::sharedApplication().runModalForWindow(window);
  ASSERT_EQ(batches_.size(), 1u);
  EXPECT_THAT(batches_.front(), ElementsAre(changed()));
}

TEST_F(FileEvents, ChangesBetweenCreationAndStartAreReported) {
  stream_ = make(root_);
  ASSERT_NE(stream_, nullptr);
  write("file");
  stream_->start();
  EXPECT_THAT(nextBatch(), ElementsAre(changed()));
}

TEST_F(FileEvents, StreamNotStartedReportsNothing) {
  const auto idle = Stream::create(root_, 1ms, [](auto&&...) { ADD_FAILURE() << "called"; });
  watch();
  write("file");
  EXPECT_THAT(nextBatch(), ElementsAre(changed()));
}

TEST_F(FileEvents, StoppedStreamDiscardsPendingEvents) {
  const auto stopped = Stream::create(root_, kLatency, [](auto&&...) { ADD_FAILURE() << "called"; });
  stopped->start();
  watch(2 * kLatency);
  write("file");
  // After half a latency the stopped stream holds the pending event.
  ASSERT_TRUE(
      serveEventsUntil([start = steady_clock::now()] { return steady_clock::now() - start > kLatency / 2; }));
  stopped->stop();
  EXPECT_THAT(nextBatch(), ElementsAre(changed()));
  stopped->start();
  write("file");
  EXPECT_THAT(nextBatch(), ElementsAre(changed()));
}

TEST_F(FileEvents, StoppedStreamClosesItsDescriptors) {
  const auto descriptors = [] { return std::distance(fs::directory_iterator("/proc/self/fd"), {}); };
  const auto before = descriptors();
  watch();
  EXPECT_GT(descriptors(), before);
  stream_->stop();
  EXPECT_EQ(descriptors(), before);
}

TEST_F(FileEvents, CallbackMayStopItsStreamAndKeepsItsEvents) {
  Batch seen;
  stream_ = Stream::create(root_, kLatency, [&](Stream& stream, std::span<const FileEvent> events) {
    stream.stop();
    seen.assign(events.begin(), events.end());
  });
  stream_->start();
  write("file");
  ASSERT_TRUE(serveEventsUntil([&] { return !seen.empty(); }));
  EXPECT_THAT(seen, ElementsAre(changed()));
}

TEST_F(FileEvents, CallbackMayDestroyItsStream) {
  Batch seen;
  stream_ = Stream::create(root_, kLatency, [&](Stream&, std::span<const FileEvent> events) {
    stream_.reset();
    seen.assign(events.begin(), events.end());
  });
  stream_->start();
  write("file");
  ASSERT_TRUE(serveEventsUntil([&] { return !seen.empty(); }));
  EXPECT_THAT(seen, ElementsAre(changed()));
}

TEST_F(FileEvents, DescriptorsAreCloseOnExec) {
  const auto staysOpen = [] {
    int count = 0;
    for (const auto& entry : fs::directory_iterator("/proc/self/fd")) {
      const int flags = ::fcntl(std::stoi(entry.path().filename()), F_GETFD);
      if (flags >= 0 && (flags & FD_CLOEXEC) == 0) ++count;
    }
    return count;
  };
  const int before = staysOpen();
  watch();
  EXPECT_EQ(staysOpen(), before);
}

}  // namespace
