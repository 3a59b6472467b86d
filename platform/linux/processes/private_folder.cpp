#include "platform/linux/processes/private_folder.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

#include "platform/own_folder.h"

namespace platform {
namespace {

std::string pathInTmp() {
  return "/tmp/TovalinTray-" + std::to_string(::geteuid());
}

std::optional<std::string> ownFolderAt(const std::string& path) {
  ::mkdir(path.c_str(), S_IRWXU);
  if (!isOwnFolder(path.c_str())) return std::nullopt;
  // A folder that existed before may be readable by other users.
  ::chmod(path.c_str(), S_IRWXU);
  return path;
}

}  // namespace

std::string privateFolderPath() {
  const char* runtime = std::getenv("XDG_RUNTIME_DIR");
  if (runtime != nullptr && runtime[0] == '/' && isOwnFolder(runtime)) {
    return std::string(runtime) + "/TovalinTray";
  }
  const std::string ofSession = "/run/user/" + std::to_string(::geteuid());
  if (isOwnFolder(ofSession.c_str())) return ofSession + "/TovalinTray";
  return pathInTmp();
}

std::optional<std::string> privateFolder() {
  return ownFolderAt(privateFolderPath());
}

std::optional<std::string> privateFolderInTmp() {
  return ownFolderAt(pathInTmp());
}

}  // namespace platform
