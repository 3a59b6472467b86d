#include "platform/linux/helpers/web_view/environment.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "platform/linux/processes/nowhere.h"
#include "platform/linux/processes/private_folder.h"

namespace helpers {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view folderName = "TovalinWebView.";
constexpr int tries = 5;

void set(const char* name, const std::string& value) {
  ::setenv(name, value.c_str(), 1);
}

bool isKept(std::string_view name) {
  constexpr std::array<std::string_view, 4> names{"LANG", "LANGUAGE", "PATH", "TZ"};
  return std::ranges::count(names, name) != 0 || name.starts_with("LC_") || name.ends_with("_proxy") ||
         name.ends_with("_PROXY");
}

void unsetOtherVariables() {
  std::vector<std::string> kept;
  for (char** entry = environ; *entry != nullptr; ++entry) {
    const std::string_view text = *entry;
    if (isKept(text.substr(0, text.find('=')))) kept.emplace_back(text);
  }
  ::clearenv();
  for (const std::string& entry : kept) {
    const std::size_t end = entry.find('=');
    if (end != std::string::npos) ::setenv(entry.substr(0, end).c_str(), entry.c_str() + end + 1, 1);
  }
}

// The owner holds this lock for the lifetime of the folder, so an unlocked folder is a leftover. Returns an
// invalid descriptor if another process holds the lock or has removed the folder.
platform::FileDescriptor lockFolder(const fs::path& folder) {
  platform::FileDescriptor lock(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  struct stat status {};
  const bool isOurs = lock.valid() && ::flock(lock.get(), LOCK_EX | LOCK_NB) == 0 &&
                      ::fstat(lock.get(), &status) == 0 && status.st_nlink > 0;
  if (!isOurs) lock.reset();
  return lock;
}

void removeLeftovers(const fs::path& parent) {
  std::error_code ignored;
  std::vector<fs::path> found;
  for (fs::directory_iterator entry(parent, ignored), end; !ignored && entry != end;
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
  const auto parent = platform::privateFolder();
  if (!parent) return;
  removeLeftovers(*parent);
  // Retries, because removeLeftovers in another process may remove the folder before it is locked.
  for (int i = 0; i < tries && path_.empty(); ++i) {
    std::string folder = *parent + "/" + std::string(folderName) + "XXXXXX";
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

void replaceEnvironment(const std::filesystem::path& runtimeFolder) {
  unsetOtherVariables();
  for (const char* name : {"HOME", "XDG_CACHE_HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME"}) {
    set(name, platform::nowhere);
  }
  set("XDG_RUNTIME_DIR", runtimeFolder);
  // If these variables were unset, the libraries would start a bus that outlives this process.
  set("DBUS_SESSION_BUS_ADDRESS", "disabled:");
  set("DBUS_SYSTEM_BUS_ADDRESS", "disabled:");
  set("NO_AT_BRIDGE", "1");
  set("GSETTINGS_BACKEND", "memory");
  set("GIO_USE_VFS", "local");
  set("GIO_USE_VOLUME_MONITOR", "unix");
  set("GTK_USE_PORTAL", "0");
  set("GTK_IM_MODULE", "gtk-im-context-simple");
  set("GDK_BACKEND", "wayland");
  set("MESA_SHADER_CACHE_DISABLE", "true");
}

}  // namespace helpers
