#include "platform/file_event_stream.h"

#import <Cocoa/Cocoa.h>
#import <CoreServices/CoreServices.h>

#include <filesystem>
#include <system_error>
#include <utility>
#include <vector>

#include "platform/macos/foundation/autorelease_pool.h"
#include "platform/macos/foundation/text_impl.h"

namespace platform {

struct FileEventStream::Impl {
  ~Impl();
  [[nodiscard]] FSEventStreamRef makeNative(std::chrono::milliseconds latency);
  static void takeEvents(ConstFSEventStreamRef, void* owner, std::size_t count, void* paths,
                         const FSEventStreamEventFlags* flags, const FSEventStreamEventId*);
  // Passes each batch on unchanged, even an empty one: FileEvent uses the flags of FSEvents.
  void deliver(std::size_t count, char* const* paths, const FSEventStreamEventFlags* flags);

  FileEventStream* stream = nullptr;
  FSEventStreamRef native = nullptr;
  bool started = false;
  std::string path;
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
  for (std::size_t i = 0; i < count; ++i) events.push_back({paths[i], flags[i]});
  // The callback may destroy the stream and this object with it, so call a copy.
  const auto callbackCopy = callback;
  callbackCopy(*stream, events);
}

std::shared_ptr<FileEventStream> FileEventStream::create(const std::string& path,
                                                         std::chrono::milliseconds latency,
                                                         Callback callback) {
  std::error_code error;
  if (!std::filesystem::is_directory(path, error)) return nullptr;
  auto impl = std::make_unique<Impl>();
  impl->path = path;
  impl->callback = std::move(callback);
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
