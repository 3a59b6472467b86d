#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>

namespace platform {

// A change in one folder, or a condition named by `flags`.
struct FileEvent {
  std::string path = {};
  std::uint32_t flags = 0;

  bool operator==(const FileEvent&) const = default;
};

// Reports changes in a root folder and in all folders below it, from its creation on. Main thread only. The
// run loop delivers the events, also during modal runs.
//
// A folder has changed if one of its entries was created, removed, renamed or written, or if the entry's
// mode, owner, extended attributes or modification time changed. Reading, opening, a new access time, writes
// through a memory mapping and changed attributes of the root itself do not count. Symbolic links below the
// root are not followed. All changes within the latency after the first one form a batch, which names each
// folder once, in the order of first changes.
class FileEventStream {
 public:
  // Events were lost somewhere in the folder or below it.
  static constexpr std::uint32_t mustScanSubDirs = 0x1;
  // The root or a folder above it was moved, renamed or removed. The event's path is that of the root. On
  // Linux it is the last event of the stream, and missing if the path leads to the root again when the batch
  // is delivered; on macOS the system decides.
  static constexpr std::uint32_t rootChanged = 0x20;

  // The callback may stop the stream and release it.
  using Callback = std::function<void(FileEventStream& stream, std::span<const FileEvent> events)>;

  // Watches the folder at the absolute `path`. Returns nullptr if the folder does not exist or no watch can
  // be established. If the system's limit of watches is reached, some folders below the root are not watched.
  // The stream is active for as long as a reference to it exists.
  [[nodiscard]] static std::shared_ptr<FileEventStream> create(const std::string& path,
                                                               std::chrono::milliseconds latency,
                                                               Callback callback);
  ~FileEventStream();
  FileEventStream(const FileEventStream&) = delete;
  FileEventStream& operator=(const FileEventStream&) = delete;

  // Begins delivery, including the changes since the creation.
  void start();
  // Ends delivery permanently and releases the watches.
  void stop();

 private:
  struct Impl;
  explicit FileEventStream(std::unique_ptr<Impl> impl);
  std::unique_ptr<Impl> impl_;
};

}  // namespace platform
