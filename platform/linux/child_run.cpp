#include "platform/linux/child_run.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <string_view>

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

// As execve(2) takes them; they point into `texts`.
std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

}  // namespace

int runAndWait(const std::string& program, std::vector<std::string> arguments) {
  std::vector<std::string> environment = environmentWithHelpers();
  const SpawnAttributes attributes;
  SpawnStreams inherited;
  pid_t child = 0;
  const int error = posix_spawn(&child, program.c_str(), inherited.get(), attributes.get(),
                                pointersTo(arguments).data(), pointersTo(environment).data());
  return error == 0 ? waitFor(child) : -1;
}

}  // namespace platform
