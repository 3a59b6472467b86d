#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>

namespace platform {

// One folder in which something has changed, or what `flags` says of it.
struct FileEvent {
  std::string path = {};
  std::uint32_t flags = 0;

  bool operator==(const FileEvent&) const = default;
};

// Tells of changes in a folder, the root, and in all folders below it, from its creation on. Main thread
// only; reported by the run loop, in modal runs too, so never while the thread is busy.
//
// A folder has changed when an entry of it came, went, was renamed, was written to, or got a new mode, owner,
// extended attribute or time of writing. Reading, opening, a new access time alone, and attributes of the
// root itself are no changes. Links below the root are not followed. All changes within the latency after the
// first are one batch, with each folder once, in the order of their first changes.
class FileEventStream {
 public:
  // Changes went by untold somewhere in the folder or below it.
  static constexpr std::uint32_t mustScanSubDirs = 0x1;
  // The root's path no longer leads to the root: it, or a folder above it, was moved, renamed or removed, and
  // was not back when the batch was delivered. The event bears the path of the root, and is the last of all.
  static constexpr std::uint32_t rootChanged = 0x20;

  // May stop and drop its stream.
  using Callback = std::function<void(FileEventStream& stream, std::span<const FileEvent> events)>;

  // Watches the folder at `path`, an absolute one. Null when there is no such folder or no watch on it and
  // those above it can be had; where the system has no room for all that are below, some of those are left
  // out. The stream lasts as long as somebody holds it.
  [[nodiscard]] static std::shared_ptr<FileEventStream> create(const std::string& path,
                                                               std::chrono::milliseconds latency,
                                                               Callback callback);
  ~FileEventStream();
  FileEventStream(const FileEventStream&) = delete;
  FileEventStream& operator=(const FileEventStream&) = delete;

  // Has the run loop report what has changed since the creation.
  void start();
  // Nothing is reported from now on. For good: the watch is given up.
  void stop();

 private:
  struct Impl;
  explicit FileEventStream(std::unique_ptr<Impl> impl);
  std::unique_ptr<Impl> impl_;
};

}  // namespace platform
