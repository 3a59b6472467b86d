#include "platform/shell.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <string_view>
#include <vector>

#include "platform/linux/private_folder.h"
#include "platform/linux/spawn_attributes.h"

namespace platform {
namespace {

// The environment of the agent with the helper programs first on PATH; what they start gets the original one
// back.
std::vector<std::string> environmentWithHelpers() {
  std::vector<std::string> environment;
  std::string originalPath = "/usr/local/bin:/usr/bin:/bin";
  for (char** entry = environ; *entry != nullptr; ++entry) {
    const std::string_view text = *entry;
    if (text.starts_with("PATH=")) {
      originalPath = text.substr(5);
    } else if (!text.starts_with("TOVALIN_ORIGINAL_PATH=")) {
      environment.emplace_back(text);
    }
  }
  const auto helpers = helperFolder();
  environment.push_back("PATH=" + (helpers ? *helpers + ":" : "") + originalPath);
  environment.push_back("TOVALIN_ORIGINAL_PATH=" + originalPath);
  return environment;
}

int waitFor(pid_t child) {
  int status = 0;
  while (::waitpid(child, &status, 0) == -1) {
    if (errno != EINTR) return -1;
  }
  return status;
}

}  // namespace

int system(const std::string& command) {
  const std::vector<std::string> environment = environmentWithHelpers();
  std::vector<char*> entries;
  entries.reserve(environment.size() + 1);
  for (const std::string& entry : environment) entries.push_back(const_cast<char*>(entry.c_str()));
  entries.push_back(nullptr);

  std::string shell = "sh", option = "-c", text = command;
  char* arguments[] = {shell.data(), option.data(), text.data(), nullptr};

  const SpawnAttributes attributes;
  pid_t child = 0;
  if (posix_spawn(&child, "/bin/sh", nullptr, attributes.get(), arguments, entries.data()) != 0) return -1;
  return waitFor(child);
}

}  // namespace platform
