// Fakes FSEvents: checks once per latency whether the path still leads to the same folder and whether a
// folder in it has changed. Reports the findings as one batch.

#import <Cocoa/Cocoa.h>
#import <CoreServices/CoreServices.h>
#include <sys/stat.h>

#include <filesystem>
#include <map>
#include <string>
#include <system_error>
#include <vector>

namespace {

namespace fs = std::filesystem;

constexpr FSEventStreamEventFlags rootChanged = 0x20;

struct FolderState {
  dev_t device;
  ino_t number;
  long changedSeconds;
  long changedNanoseconds;
  bool operator==(const FolderState&) const = default;
};
using Folders = std::map<std::string, FolderState>;

bool stateOf(const std::string& path, FolderState& state) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0 || !S_ISDIR(status.st_mode)) return false;
  state = {status.st_dev, status.st_ino, status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
  return true;
}

Folders foldersBelow(const std::string& root) {
  Folders folders;
  FolderState state{};
  if (stateOf(root, state)) folders.emplace(root, state);
  std::error_code error;
  for (fs::recursive_directory_iterator entry(root, error);
       !error && entry != fs::recursive_directory_iterator(); entry.increment(error)) {
    if (entry->is_directory() && stateOf(entry->path().string(), state))
      folders.emplace(entry->path().string(), state);
  }
  return folders;
}

}  // namespace

@class StandInFileEventLook;

struct __FSEventStream {
  FSEventStreamCallback callback;
  void* info;
  std::string path;
  double latency;
  Folders folders;
  StandInFileEventLook* looks;

  void look();
};

void __FSEventStream::look() {
  FolderState now{}, before = folders[path];
  std::vector<std::string> changed;
  std::vector<FSEventStreamEventFlags> flags;
  if (!stateOf(path, now) || now.device != before.device || now.number != before.number) {
    changed.push_back(path);
    flags.push_back(rootChanged);
  } else {
    Folders current = foldersBelow(path);
    for (const auto& [folder, state] : current) {
      const auto known = folders.find(folder);
      if (known != folders.end() && known->second == state) continue;
      changed.push_back(folder);
      flags.push_back(0);
    }
    folders = std::move(current);
  }
  if (changed.empty()) return;
  std::vector<char*> paths;
  for (std::string& each : changed) paths.push_back(each.data());
  const std::vector<FSEventStreamEventId> ids(changed.size());
  callback(this, info, changed.size(), paths.data(), flags.data(), ids.data());
}

@interface StandInFileEventLook : NSObject {
  FSEventStreamRef stream_;
}
- (id)initWithEvents:(FSEventStreamRef)stream;
- (void)look:(NSTimer*)timer;
- (void)stop;
@end

@implementation StandInFileEventLook

- (id)initWithEvents:(FSEventStreamRef)stream {
  self = [super init];
  if (self != nil) stream_ = stream;
  return self;
}

- (void)look:(NSTimer*)timer {
  static_cast<void>(timer);
  if (stream_ != nullptr) stream_->look();
}

- (void)stop {
  stream_ = nullptr;
}

@end

FSEventStreamRef FSEventStreamCreate(const void*, FSEventStreamCallback callback,
                                     FSEventStreamContext* context, CFArrayRef paths, FSEventStreamEventId,
                                     double latency, FSEventStreamCreateFlags) {
  NSArray* array = reinterpret_cast<NSArray*>(const_cast<__CFArray*>(paths));
  const char* path = [static_cast<NSString*>([array objectAtIndex:0]) UTF8String];
  return new __FSEventStream{callback, context->info, path, latency, foldersBelow(path), nil};
}

CFRunLoopRef CFRunLoopGetMain() {
  return nullptr;
}
const CFStringRef kCFRunLoopCommonModes = nullptr;

void FSEventStreamScheduleWithRunLoop(FSEventStreamRef, CFRunLoopRef, CFStringRef) {}

unsigned char FSEventStreamStart(FSEventStreamRef stream) {
  StandInFileEventLook* look = [[[StandInFileEventLook alloc] initWithEvents:stream] autorelease];
  stream->looks = look;
  NSTimer* timer = [NSTimer timerWithTimeInterval:stream->latency
                                           target:look
                                         selector:@selector(look:)
                                         userInfo:nil
                                          repeats:YES];
  for (NSString* mode : {NSDefaultRunLoopMode, NSModalPanelRunLoopMode, NSEventTrackingRunLoopMode})
    [[NSRunLoop mainRunLoop] addTimer:timer forMode:mode];
  return 1;
}

// The timer goes on: without any, GNUstep leaves input that Xlib has already read in Xlib's queue.
void FSEventStreamStop(FSEventStreamRef stream) {
  [stream->looks stop];
  stream->looks = nil;
}

void FSEventStreamInvalidate(FSEventStreamRef) {}

void FSEventStreamRelease(FSEventStreamRef stream) {
  delete stream;
}
