#include "platform/linux/helpers/web_view/environment.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cstdlib>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace helpers {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view folderName = "TovalinWebView.";
constexpr int tries = 5;

// Nobody, not even root, can make a folder there.
constexpr const char* nowhere = "/proc/nowhere";

void set(const char* name, const std::string& value) {
  ::setenv(name, value.c_str(), 1);
}

// The display's key is found below the home unless it is named.
void nameDisplayKey() {
  const char* home = std::getenv("HOME");
  if (home != nullptr) ::setenv("XAUTHORITY", (std::string(home) + "/.Xauthority").c_str(), 0);
}

// Held by the folder's user as long as it lives, so that what is not locked is left over. None where another
// has the lock or has removed the folder.
platform::FileDescriptor lockFolder(const fs::path& folder) {
  platform::FileDescriptor lock(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  struct stat status {};
  const bool isOurs = lock.valid() && ::flock(lock.get(), LOCK_EX | LOCK_NB) == 0 &&
                      ::fstat(lock.get(), &status) == 0 && status.st_nlink > 0;
  if (!isOurs) lock.reset();
  return lock;
}

void sweep(const fs::path& runtime) {
  std::error_code ignored;
  std::vector<fs::path> found;
  for (fs::directory_iterator entry(runtime, ignored), end; !ignored && entry != end;
       entry.increment(ignored)) {
    if (entry->path().filename().string().starts_with(folderName)) found.push_back(entry->path());
  }
  for (const fs::path& folder : found) {
    const platform::FileDescriptor lock = lockFolder(folder);
    if (lock.valid()) fs::remove_all(folder, ignored);
  }
}

}  // namespace

RuntimeFolder::RuntimeFolder() {
  const char* runtime = std::getenv("XDG_RUNTIME_DIR");
  if (runtime == nullptr || runtime[0] != '/') return;
  sweep(runtime);
  // Another program's sweep may come between the making and the locking.
  for (int i = 0; i < tries && path_.empty(); ++i) {
    std::string folder = std::string(runtime) + "/" + std::string(folderName) + "XXXXXX";
    if (::mkdtemp(folder.data()) == nullptr) return;
    lock_ = lockFolder(folder);
    if (lock_.valid()) path_ = folder;
  }
}

void RuntimeFolder::remove() {
  if (path_.empty()) return;
  std::error_code ignored;
  fs::remove_all(std::exchange(path_, {}), ignored);
  lock_.reset();
}

void leaveUsersThingsAlone(const std::filesystem::path& runtimeFolder) {
  nameDisplayKey();
  for (const char* name : {"HOME", "XDG_CACHE_HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME"}) {
    set(name, nowhere);
  }
  set("XDG_RUNTIME_DIR", runtimeFolder.empty() ? nowhere : runtimeFolder.string());
  // Without an address the libraries would start a bus that stays.
  set("DBUS_SESSION_BUS_ADDRESS", "disabled:");
  set("NO_AT_BRIDGE", "1");
  set("GSETTINGS_BACKEND", "memory");
  set("GIO_USE_VFS", "local");
  set("GIO_USE_VOLUME_MONITOR", "unix");
  set("GTK_USE_PORTAL", "0");
  set("GTK_IM_MODULE", "gtk-im-context-simple");
  set("GDK_BACKEND", "x11");
  set("MESA_SHADER_CACHE_DISABLE", "true");
  ::unsetenv("GTK_MODULES");
}

}  // namespace helpers
