#pragma once

#include <filesystem>

#include "platform/file_descriptor.h"

namespace helpers {

// A new folder of this program's own below $XDG_RUNTIME_DIR, gone with this object; those that killed
// programs have left there go with its making. Empty path where there is no such place.
class RuntimeFolder {
 public:
  RuntimeFolder();
  ~RuntimeFolder() { remove(); }
  RuntimeFolder(const RuntimeFolder&) = delete;
  RuntimeFolder& operator=(const RuntimeFolder&) = delete;

  [[nodiscard]] const std::filesystem::path& path() const { return path_; }
  void remove();

 private:
  std::filesystem::path path_;
  platform::FileDescriptor lock_;
};

// Sets the environment so that none of the libraries below the view reads the user's settings or leaves a
// file or a service behind: the home and all that belongs there lead nowhere. `runtimeFolder` is where
// sockets may be made; empty: nowhere. Before the first thread.
void leaveUsersThingsAlone(const std::filesystem::path& runtimeFolder);

}  // namespace helpers
