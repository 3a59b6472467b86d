#pragma once

#include <filesystem>

#include "platform/file_descriptor.h"

namespace helpers {

// A new folder of this program's own in the agent's private folder, removed by the destructor. The
// constructor also removes those that killed programs have left there. The path is empty if there is no
// private folder.
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

// Leaves of the user's environment only PATH, language, time zone and proxies, so that the web engine's
// processes learn of no display, bus or other service, and sets it so that none of the libraries below the
// view reads the user's settings or leaves a file or a service behind: the home and all that belongs there
// lead nowhere. `runtimeFolder` is where sockets may be made. Before the first thread.
void replaceEnvironment(const std::filesystem::path& runtimeFolder);

}  // namespace helpers
