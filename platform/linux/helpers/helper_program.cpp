#include "platform/linux/helpers/helper_program.h"

#include <fcntl.h>
#include <spawn.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "platform/portable/child_process.h"
#include "platform/portable/spawn_attributes.h"
#include "platform/portable/standard_streams.h"

namespace helpers {
namespace {

constexpr char originalPath[] = "TOVALIN_ORIGINAL_PATH";

void restorePath() {
  const char* original = std::getenv(originalPath);
  if (original == nullptr) return;
  ::setenv("PATH", original, 1);
  ::unsetenv(originalPath);
}

void printError(std::string_view program, std::string_view reason) {
  const std::string line = std::string(program) + ": " + std::string(reason) + "\n";
  std::fputs(line.c_str(), stderr);
}

}  // namespace

void prepareEnvironment() {
  restorePath();
  platform::fillStandardStreams();
  ::closefrom(STDERR_FILENO + 1);
}

Child startDetached(const Arguments& argv, Output output) {
  Arguments copy = argv;
  const std::vector<char*> pointers = platform::pointersTo(copy);
  const platform::SpawnAttributes session(POSIX_SPAWN_SETSID);
  platform::SpawnStreams streams;
  streams.lead(STDIN_FILENO, "/dev/null", O_RDONLY);
  if (output == Output::Discarded) {
    streams.lead(STDOUT_FILENO, "/dev/null", O_WRONLY);
    streams.set(STDERR_FILENO, STDOUT_FILENO);
  }
  Child child;
  // posix_spawnp of glibc waits for the exec and returns its errno.
  child.error = posix_spawnp(&child.pid, pointers[0], streams.get(), session.get(), pointers.data(), environ);
  return child;
}

int showUsage(std::string_view usage) {
  const std::string text(usage);
  return std::fputs(text.c_str(), stdout) < 0 || std::fflush(stdout) != 0 ? Failed : Done;
}

int fail(std::string_view program, std::string_view reason) {
  printError(program, reason);
  return Failed;
}

int refuse(std::string_view program, std::string_view reason) {
  printError(program, std::string(reason) + "; try " + std::string(program) + " --help");
  return Misused;
}

}  // namespace helpers
