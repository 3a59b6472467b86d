// FileEventStream of platform/macos on fake functions of FSEvents, which record the calls and deliver
// batches.

#include "platform/file_event_stream.h"

#import <CoreServices/CoreServices.h>
#include <gmock/gmock.h>

#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

namespace platform {

void PrintTo(const FileEvent& event, std::ostream* stream) {
  *stream << event.path << " " << event.flags;
}

}  // namespace platform

namespace {

namespace fs = std::filesystem;
using platform::FileEvent;
using platform::FileEventStream;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

constexpr const char* root = "/tmp/Watched.app";
constexpr const char* movedRoot = "/tmp/Moved.app";
constexpr FSEventStreamEventFlags rootChanged = 0x20;

// The stream that the code under test created last.
struct NativeStream {
  FSEventStreamCallback callback = nullptr;
  void* info = nullptr;
  std::vector<std::string> paths = {};
  FSEventStreamEventId since = 0;
  double latency = 0;
  FSEventStreamCreateFlags flags = 0;
  std::vector<std::string> calls = {};

  void deliver(const std::vector<FSEventStreamEventFlags>& eventFlags) {
    std::vector<char*> pathOfEach(eventFlags.size(), paths[0].data());
    const std::vector<FSEventStreamEventId> ids(eventFlags.size());
    callback(handle(), info, eventFlags.size(), pathOfEach.data(), eventFlags.data(), ids.data());
  }
  FSEventStreamRef handle() { return reinterpret_cast<FSEventStreamRef>(this); }
};
NativeStream native;
bool creationFails;
char mainRunLoop, commonModes;  // their addresses stand for the objects

std::vector<FileEvent> eventsWith(const std::vector<FSEventStreamEventFlags>& flags) {
  std::vector<FileEvent> events;
  for (const FSEventStreamEventFlags each : flags) events.push_back({root, each});
  return events;
}

class MacosFileEvents : public testing::Test {
 protected:
  void SetUp() override {
    fs::remove_all(movedRoot);
    fs::create_directories(root);
    native = {};
    creationFails = false;
  }

  std::shared_ptr<FileEventStream> startStream(FileEventStream::Callback callback) {
    auto stream = FileEventStream::create(root, std::chrono::milliseconds(500), std::move(callback));
    if (stream != nullptr) stream->start();
    return stream;
  }
  std::shared_ptr<FileEventStream> startStream() {
    return startStream([this](FileEventStream&, std::span<const FileEvent> events) {
      batches_.push_back(std::vector<FileEvent>(events.begin(), events.end()));
    });
  }

  std::vector<std::vector<FileEvent>> batches_;
};

TEST_F(MacosFileEvents, WatchesRootAloneFromNowOnWithLatency) {
  const auto stream = startStream();
  EXPECT_THAT(native.paths, ElementsAre(root));
  EXPECT_EQ(native.since, kFSEventStreamEventIdSinceNow);
  EXPECT_EQ(native.latency, 0.5);
  EXPECT_EQ(native.flags, 4U);
  EXPECT_THAT(native.calls, ElementsAre("main run loop, common modes", "start"));
}

TEST_F(MacosFileEvents, EachBatchIsPassedOnUnchanged) {
  const std::vector<std::vector<FSEventStreamEventFlags>> cases{
      {}, {0}, {0, 0x1}, {rootChanged}, {0, rootChanged, 0x1}, {0x80000000}, {0xffffffff}};
  const auto stream = startStream();
  for (const auto& flags : cases) {
    batches_.clear();
    native.deliver(flags);
    EXPECT_THAT(batches_, ElementsAre(ElementsAreArray(eventsWith(flags))));
  }
}

TEST_F(MacosFileEvents, ChangedRootIsReportedWhetherItIsGoneOrBack) {
  const auto stream = startStream();
  fs::rename(root, movedRoot);
  native.deliver({rootChanged});
  EXPECT_THAT(batches_, ElementsAre(ElementsAre(FileEvent{root, rootChanged})));
  fs::rename(movedRoot, root);
  native.deliver({rootChanged});
  EXPECT_EQ(batches_.size(), 2U);
}

TEST_F(MacosFileEvents, StopInCallbackStopsNativeStreamOnce) {
  auto stream = startStream([](FileEventStream& own, std::span<const FileEvent>) { own.stop(); });
  native.deliver({});
  EXPECT_THAT(native.calls, ElementsAre("main run loop, common modes", "start", "stop"));
  stream->stop();
  stream.reset();
  EXPECT_THAT(native.calls,
              ElementsAre("main run loop, common modes", "start", "stop", "invalidate", "release"));
}

TEST_F(MacosFileEvents, StreamReleasedInCallbackIsStoppedFirst) {
  std::shared_ptr<FileEventStream> stream;
  stream = startStream([&](FileEventStream&, std::span<const FileEvent>) { stream.reset(); });
  native.deliver({0});
  EXPECT_THAT(native.calls,
              ElementsAre("main run loop, common modes", "start", "stop", "invalidate", "release"));
}

TEST_F(MacosFileEvents, FailedCreationReturnsNull) {
  creationFails = true;
  EXPECT_EQ(startStream(), nullptr);
  EXPECT_THAT(native.calls, IsEmpty());
}

TEST_F(MacosFileEvents, MissingFolderReturnsNull) {
  fs::remove_all(root);
  EXPECT_EQ(startStream(), nullptr);
}

}  // namespace

FSEventStreamRef FSEventStreamCreate(const void*, FSEventStreamCallback callback,
                                     FSEventStreamContext* context, CFArrayRef paths,
                                     FSEventStreamEventId since, double latency,
                                     FSEventStreamCreateFlags flags) {
  if (creationFails) return nullptr;
  NSArray* array = reinterpret_cast<NSArray*>(const_cast<__CFArray*>(paths));
  native = {.callback = callback, .info = context->info, .since = since, .latency = latency, .flags = flags};
  for (NSUInteger i = 0; i < [array count]; ++i)
    native.paths.push_back([static_cast<NSString*>([array objectAtIndex:i]) UTF8String]);
  return native.handle();
}

CFRunLoopRef CFRunLoopGetMain() {
  return reinterpret_cast<CFRunLoopRef>(&mainRunLoop);
}

const CFStringRef kCFRunLoopCommonModes = reinterpret_cast<CFStringRef>(&commonModes);

void FSEventStreamScheduleWithRunLoop(FSEventStreamRef, CFRunLoopRef loop, CFStringRef mode) {
  const bool asRequired = loop == CFRunLoopGetMain() && mode == kCFRunLoopCommonModes;
  native.calls.push_back(asRequired ? "main run loop, common modes" : "another run loop or mode");
}

unsigned char FSEventStreamStart(FSEventStreamRef) {
  native.calls.push_back("start");
  return 1;
}

void FSEventStreamStop(FSEventStreamRef) {
  native.calls.push_back("stop");
}

void FSEventStreamInvalidate(FSEventStreamRef) {
  native.calls.push_back("invalidate");
}

void FSEventStreamRelease(FSEventStreamRef) {
  native.calls.push_back("release");
}
