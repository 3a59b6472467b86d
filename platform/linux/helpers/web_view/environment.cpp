#include "platform/linux/helpers/web_view/environment.h"

#include <stdlib.h>

#include <cstdlib>
#include <string>
#include <system_error>
#include <utility>

namespace helpers {
namespace {

// Nobody, not even root, can make a folder there.
constexpr const char* kNowhere = "/proc/nowhere";

void set(const char* name, const std::string& value) {
  ::setenv(name, value.c_str(), 1);
}

// The display's key is found below the home unless it is named.
void nameDisplayKey() {
  const char* home = std::getenv("HOME");
  if (home != nullptr) ::setenv("XAUTHORITY", (std::string(home) + "/.Xauthority").c_str(), 0);
}

}  // namespace

RuntimeFolder::RuntimeFolder() {
  const char* runtime = std::getenv("XDG_RUNTIME_DIR");
  if (runtime == nullptr || runtime[0] != '/') return;
  std::string folder = std::string(runtime) + "/TovalinWebView.XXXXXX";
  if (::mkdtemp(folder.data()) != nullptr) path_ = folder;
}

void RuntimeFolder::remove() {
  if (path_.empty()) return;
  std::error_code ignored;
  std::filesystem::remove_all(std::exchange(path_, {}), ignored);
}

void leaveUsersThingsAlone(const std::filesystem::path& runtimeFolder) {
  nameDisplayKey();
  for (const char* name : {"HOME", "XDG_CACHE_HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME"}) {
    set(name, kNowhere);
  }
  set("XDG_RUNTIME_DIR", runtimeFolder.empty() ? kNowhere : runtimeFolder.string());
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
