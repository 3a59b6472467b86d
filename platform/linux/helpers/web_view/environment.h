#pragma once

#include <filesystem>

#include "platform/file_descriptor.h"

namespace helpers {

// A new folder in the agent's private folder, removed by the destructor. The constructor also removes the
// leftover folders of killed processes. path() is empty if there is no private folder or the folder cannot be
// created.
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

// Replaces the environment. Keeps only PATH, language, time zone and proxies, so that the web engine's
// processes have no access to a display, a bus or another service. Points the home and XDG folders to a
// nonexistent path and configures the libraries so that they neither read the user's settings nor leave files
// or services behind. Sockets are created in `runtimeFolder`. Call it before any other thread exists.
void replaceEnvironment(const std::filesystem::path& runtimeFolder);

}  // namespace helpers
