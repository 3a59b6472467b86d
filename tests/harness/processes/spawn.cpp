#include "tests/harness/processes/spawn.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <unistd.h>

#include <cerrno>
#include <map>

namespace test_support {
namespace {

constexpr int kPipeBytes = 1 << 20;

class FileActions {
 public:
  FileActions() { posix_spawn_file_actions_init(&actions_); }
  FileActions(const FileActions&) = delete;
  FileActions& operator=(const FileActions&) = delete;
  ~FileActions() { posix_spawn_file_actions_destroy(&actions_); }

  posix_spawn_file_actions_t* get() { return &actions_; }
  void open(int stream, const std::string& path) {
    const int flags = stream == STDIN_FILENO ? O_RDONLY : O_WRONLY | O_CREAT | O_TRUNC;
    posix_spawn_file_actions_addopen(&actions_, stream, path.c_str(), flags, 0666);
  }
  void duplicate(int fd, int stream) { posix_spawn_file_actions_adddup2(&actions_, fd, stream); }
  void closeAllAbove(int stream) { posix_spawn_file_actions_addclosefrom_np(&actions_, stream + 1); }
  void changeDirectory(const std::string& path) {
    posix_spawn_file_actions_addchdir_np(&actions_, path.c_str());
  }

 private:
  posix_spawn_file_actions_t actions_{};
};

class CleanSignals {
 public:
  CleanSignals() {
    posix_spawnattr_init(&attributes_);
    sigset_t set;
    sigfillset(&set);
    posix_spawnattr_setsigdefault(&attributes_, &set);
    sigemptyset(&set);
    posix_spawnattr_setsigmask(&attributes_, &set);
    posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
  }
  CleanSignals(const CleanSignals&) = delete;
  CleanSignals& operator=(const CleanSignals&) = delete;
  ~CleanSignals() { posix_spawnattr_destroy(&attributes_); }

  const posix_spawnattr_t* get() const { return &attributes_; }

 private:
  posix_spawnattr_t attributes_{};
};

struct Pipe {
  FileDescriptor near = {};
  FileDescriptor far = {};
};

Pipe makePipe(int stream) {
  int ends[2];
  if (::pipe2(ends, O_CLOEXEC) != 0) return {};
  ::fcntl(ends[0], F_SETPIPE_SZ, kPipeBytes);
  FileDescriptor reading(ends[0]);
  FileDescriptor writing(ends[1]);
  if (stream == STDIN_FILENO) return {std::move(writing), std::move(reading)};
  ::fcntl(reading.get(), F_SETFL, O_NONBLOCK);
  return {std::move(reading), std::move(writing)};
}

Pipe redirect(FileActions& actions, int stream, const Redirection& redirection) {
  switch (redirection.to) {
    case Redirection::To::Inherit:
      return {};
    case Redirection::To::Null:
      actions.open(stream, "/dev/null");
      return {};
    case Redirection::To::File:
      actions.open(stream, redirection.path);
      return {};
    case Redirection::To::Pipe:
      break;
  }
  Pipe pipe = makePipe(stream);
  actions.duplicate(pipe.far.get(), stream);
  return pipe;
}

std::vector<std::string> environmentWith(const std::map<std::string, std::optional<std::string>>& changes) {
  std::vector<std::string> result;
  for (char** entry = environ; *entry != nullptr; ++entry) {
    const std::string text = *entry;
    if (!changes.contains(text.substr(0, text.find('=')))) result.push_back(text);
  }
  for (const auto& [name, value] : changes) {
    if (value) result.push_back(name + "=" + *value);
  }
  return result;
}

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> result;
  result.reserve(texts.size() + 1);
  for (std::string& text : texts) result.push_back(text.data());
  result.push_back(nullptr);
  return result;
}

}  // namespace

Spawned spawn(const std::vector<std::string>& argv, const ChildOptions& options) {
  FileActions actions;
  // Redirect before changing the directory: relative paths are relative to the caller's.
  Pipe input = redirect(actions, STDIN_FILENO, options.input);
  Pipe output = redirect(actions, STDOUT_FILENO, options.output);
  Pipe error = redirect(actions, STDERR_FILENO, options.error);
  actions.closeAllAbove(STDERR_FILENO);
  if (!options.workingDirectory.empty()) actions.changeDirectory(options.workingDirectory);

  std::vector<std::string> arguments = argv;
  std::vector<std::string> environment = environmentWith(options.environment);
  const CleanSignals signals;
  Spawned child;
  const int failure = posix_spawnp(&child.pid, argv.at(0).c_str(), actions.get(), signals.get(),
                                   pointersTo(arguments).data(), pointersTo(environment).data());
  if (failure != 0) {
    errno = failure;
    return {};
  }
  child.input = std::move(input.near);
  child.output = std::move(output.near);
  child.error = std::move(error.near);
  return child;
}

}  // namespace test_support
