#include "platform/linux/helpers/helper_program.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace helpers {
namespace {

constexpr char kOriginalPath[] = "TOVALIN_ORIGINAL_PATH";

void restorePath() {
  const char* original = std::getenv(kOriginalPath);
  if (original == nullptr) return;
  ::setenv("PATH", original, 1);
  ::unsetenv(kOriginalPath);
}

void keepStandardStreamsOnly() {
  int fd = 0;
  do {
    fd = ::open("/dev/null", O_RDWR);
  } while (fd >= 0 && fd <= STDERR_FILENO);
  ::closefrom(STDERR_FILENO + 1);
}

class DetachedSession {
 public:
  DetachedSession() {
    posix_spawnattr_init(&attributes_);
    sigset_t signals;
    sigfillset(&signals);
    posix_spawnattr_setsigdefault(&attributes_, &signals);
    sigemptyset(&signals);
    posix_spawnattr_setsigmask(&attributes_, &signals);
    posix_spawnattr_setflags(&attributes_,
                             POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSID);
  }
  DetachedSession(const DetachedSession&) = delete;
  DetachedSession& operator=(const DetachedSession&) = delete;
  ~DetachedSession() { posix_spawnattr_destroy(&attributes_); }

  [[nodiscard]] const posix_spawnattr_t* get() const { return &attributes_; }

 private:
  posix_spawnattr_t attributes_{};
};

class Streams {
 public:
  explicit Streams(Output output) {
    posix_spawn_file_actions_init(&actions_);
    posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    if (output == Output::kInherited) return;
    posix_spawn_file_actions_addopen(&actions_, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_adddup2(&actions_, STDOUT_FILENO, STDERR_FILENO);
  }
  Streams(const Streams&) = delete;
  Streams& operator=(const Streams&) = delete;
  ~Streams() { posix_spawn_file_actions_destroy(&actions_); }

  [[nodiscard]] const posix_spawn_file_actions_t* get() const { return &actions_; }

 private:
  posix_spawn_file_actions_t actions_{};
};

void printError(std::string_view program, std::string_view reason) {
  const std::string line = std::string(program) + ": " + std::string(reason) + "\n";
  std::fputs(line.c_str(), stderr);
}

}  // namespace

void takeUsersEnvironment() {
  restorePath();
  keepStandardStreamsOnly();
}

Child startDetached(const Arguments& argv, Output output) {
  Arguments copy = argv;
  std::vector<char*> pointers;
  for (std::string& argument : copy) pointers.push_back(argument.data());
  pointers.push_back(nullptr);

  const DetachedSession session;
  const Streams streams(output);
  Child child;
  // The C library's own spawn waits for the exec and hands back its errno.
  child.error = posix_spawnp(&child.pid, pointers[0], streams.get(), session.get(), pointers.data(), environ);
  return child;
}

int showUsage(std::string_view usage) {
  const std::string text(usage);
  return std::fputs(text.c_str(), stdout) < 0 || std::fflush(stdout) != 0 ? kFailed : kDone;
}

int fail(std::string_view program, std::string_view reason) {
  printError(program, reason);
  return kFailed;
}

int refuse(std::string_view program, std::string_view reason) {
  printError(program, std::string(reason) + "; try " + std::string(program) + " --help");
  return kMisused;
}

}  // namespace helpers
