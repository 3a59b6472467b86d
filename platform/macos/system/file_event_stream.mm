#include "platform/file_event_stream.h"

#import <Cocoa/Cocoa.h>
#import <CoreServices/CoreServices.h>
#include <sys/stat.h>

#include <optional>
#include <utility>
#include <vector>

#include "platform/macos/foundation/autorelease_pool.h"
#include "platform/macos/foundation/text_impl.h"

namespace platform {
namespace {

struct FolderIdentity {
  dev_t device;
  ino_t number;
  bool operator==(const FolderIdentity&) const = default;
};

std::optional<FolderIdentity> folderAt(const std::string& path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0 || !S_ISDIR(status.st_mode)) return std::nullopt;
  return FolderIdentity{status.st_dev, status.st_ino};
}

}  // namespace

struct FileEventStream::Impl {
  ~Impl();
  [[nodiscard]] FSEventStreamRef makeNative(std::chrono::milliseconds latency);
  static void takeEvents(ConstFSEventStreamRef, void* owner, std::size_t count, void* paths,
                         const FSEventStreamEventFlags* flags, const FSEventStreamEventId*);
  // Passes the flags of FSEvents on unchanged: FileEvent uses the same values.
  void deliver(std::size_t count, char* const* paths, const FSEventStreamEventFlags* flags);
  // Returns whether a renamed root has its original name again when the batch is delivered.
  [[nodiscard]] bool isRootRestored(std::uint32_t flags) const {
    return (flags & rootChanged) != 0 && folderAt(path) == root;
  }

  FileEventStream* stream = nullptr;
  FSEventStreamRef native = nullptr;
  bool started = false;
  std::string path;
  std::optional<FolderIdentity> root;
  Callback callback;
};

FileEventStream::Impl::~Impl() {
  if (native == nullptr) return;
  if (started) FSEventStreamStop(native);
  FSEventStreamInvalidate(native);
  FSEventStreamRelease(native);
}

FSEventStreamRef FileEventStream::Impl::makeNative(std::chrono::milliseconds latency) {
  const AutoreleasePool pool;
  FSEventStreamContext context{};
  context.info = this;
  NSArray* paths = [NSArray arrayWithObject:textOf(path)];
  return FSEventStreamCreate(nullptr, takeEvents, &context, reinterpret_cast<CFArrayRef>(paths),
                             kFSEventStreamEventIdSinceNow, std::chrono::duration<double>(latency).count(),
                             kFSEventStreamCreateFlagWatchRoot);
}

void FileEventStream::Impl::takeEvents(ConstFSEventStreamRef, void* owner, std::size_t count, void* paths,
                                       const FSEventStreamEventFlags* flags, const FSEventStreamEventId*) {
  static_cast<Impl*>(owner)->deliver(count, static_cast<char* const*>(paths), flags);
}

void FileEventStream::Impl::deliver(std::size_t count, char* const* paths,
                                    const FSEventStreamEventFlags* flags) {
  std::vector<FileEvent> events;
  for (std::size_t i = 0; i < count; ++i) {
    if (!isRootRestored(flags[i])) events.push_back({paths[i], flags[i]});
  }
  if (events.empty()) return;
  // The callback may destroy the stream and this object with it, so call a copy.
  const auto callbackCopy = callback;
  callbackCopy(*stream, events);
}

std::shared_ptr<FileEventStream> FileEventStream::create(const std::string& path,
                                                         std::chrono::milliseconds latency,
                                                         Callback callback) {
  auto impl = std::make_unique<Impl>();
  impl->path = path;
  impl->root = folderAt(path);
  impl->callback = std::move(callback);
  if (!impl->root) return nullptr;
  impl->native = impl->makeNative(latency);
  if (impl->native == nullptr) return nullptr;
  FSEventStreamScheduleWithRunLoop(impl->native, CFRunLoopGetMain(), kCFRunLoopCommonModes);
  return std::shared_ptr<FileEventStream>(new FileEventStream(std::move(impl)));
}

FileEventStream::FileEventStream(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {
  impl_->stream = this;
}
FileEventStream::~FileEventStream() = default;

void FileEventStream::start() {
  if (!std::exchange(impl_->started, true)) FSEventStreamStart(impl_->native);
}

void FileEventStream::stop() {
  if (std::exchange(impl_->started, false)) FSEventStreamStop(impl_->native);
}

}  // namespace platform
