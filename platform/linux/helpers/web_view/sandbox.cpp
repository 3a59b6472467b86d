#include "platform/linux/helpers/web_view/sandbox.h"

#include <glib.h>

#include <string>
#include <vector>

#include "platform/portable/child_process.h"

namespace helpers {
namespace {

// The paths at which the web engine looks for these programs.
constexpr const char* lock = "/usr/bin/bwrap";
constexpr const char* busProxy = "/usr/bin/xdg-dbus-proxy";

std::vector<std::string> trial(const std::string& runtimeFolder) {
  std::vector<std::string> command{
      lock,          "--unshare-uts", "--unshare-ipc", "--unshare-pid", "--unshare-net", "--dev",
      "/dev",        "--proc",        "/proc",         "--tmpfs",       "/tmp",          "--ro-bind",
      "/etc",        "/etc",          "--ro-bind",     "/usr",          "/usr",          "--ro-bind-try",
      "/lib",        "/lib",          "--ro-bind-try", "/lib64",        "/lib64",        "--bind",
      runtimeFolder, runtimeFolder};
  for (const char* part : {"/sys/block", "/sys/bus", "/sys/class", "/sys/dev", "/sys/devices"}) {
    command.insert(command.end(), {"--ro-bind", part, part});
  }
  command.insert(command.end(), {"--", busProxy, "--version"});
  return command;
}

bool succeeds(std::vector<std::string> command) {
  std::vector<char*> argv = platform::pointersTo(command);
  constexpr auto silently = static_cast<GSpawnFlags>(G_SPAWN_STDOUT_TO_DEV_NULL | G_SPAWN_STDERR_TO_DEV_NULL);
  int status = -1;
  return g_spawn_sync("/", argv.data(), nullptr, silently, nullptr, nullptr, nullptr, nullptr, &status,
                      nullptr) != FALSE &&
         status == 0;
}

}  // namespace

bool canLockInWebProcess(const std::filesystem::path& runtimeFolder) {
  return succeeds(trial(runtimeFolder.string()));
}

}  // namespace helpers
