#include "platform/linux/helpers/program_output.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>

#include "platform/linux/helpers/new_file.h"
#include "platform/linux/processes/pidfd.h"
#include "platform/portable/child_process.h"
#include "platform/portable/spawn_attributes.h"

namespace helpers {
namespace {

using platform::FileDescriptor;
using Clock = std::chrono::steady_clock;

// journalctl prints the newest entries last, so a run that is killed early lacks them. Runs with fewer
// entries come first; all three take a third more time than the last one alone.
constexpr std::array entryCounts{"12500", "50000", "200000"};

// Exit status of zip if some files could not be read.
constexpr int zipFilesUnreadable = 18;

// Runs `command` with its standard output redirected to `output`.
Child startWithOutput(const Arguments& command, int output) {
  Arguments copy = command;
  const std::vector<char*> pointers = platform::pointersTo(copy);
  const platform::SpawnAttributes attributes;
  platform::SpawnStreams streams;
  streams.lead(STDIN_FILENO, "/dev/null", O_RDONLY);
  streams.set(STDOUT_FILENO, output);
  Child child;
  child.error =
      posix_spawnp(&child.pid, pointers[0], streams.get(), attributes.get(), pointers.data(), environ);
  return child;
}

// Waits until `input` is readable. Returns false at the deadline or on error.
bool waitForInput(int input, Clock::time_point deadline) {
  for (;;) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
    if (left.count() <= 0) return false;
    pollfd readable{input, POLLIN, 0};
    const int count = ::poll(&readable, 1, static_cast<int>(left.count()));
    if (count == -1 && errno == EINTR) continue;
    return count == 1;
  }
}

// Keeps the last `limit` bytes of a stream. Uses at most twice the limit of memory, plus one read.
class Tail {
 public:
  explicit Tail(std::size_t limit) : limit_(limit) {}

  void add(std::string_view bytes) {
    bytes_.append(bytes);
    if (bytes_.size() >= 2 * limit_) cut();
  }
  [[nodiscard]] std::string take() {
    if (bytes_.size() > limit_) cut();
    return std::move(bytes_);
  }

 private:
  void cut() { bytes_.erase(0, bytes_.size() - limit_); }

  std::size_t limit_;
  std::string bytes_;
};

// Reads to the end of the input. Returns false if the deadline comes first.
bool readInto(Tail& tail, int input, Clock::time_point deadline) {
  std::array<char, 1 << 16> buffer{};
  while (waitForInput(input, deadline)) {
    const ssize_t count = ::read(input, buffer.data(), buffer.size());
    if (count == -1 && errno == EINTR) continue;
    if (count <= 0) return true;
    tail.add({buffer.data(), static_cast<std::size_t>(count)});
  }
  return false;
}

// Returns false if the child still runs at the deadline, or if no pidfd is available.
bool exitsBy(Clock::time_point deadline, pid_t child) {
  const FileDescriptor end = platform::openPidfd(child);
  return end.valid() && waitForInput(end.get(), deadline);
}

struct Output {
  std::string text;
  bool isComplete = false;  // printed in full, with exit status 0
};

// Returns the last `limit` bytes that the command prints before the deadline; empty if it cannot be started.
Output outputOf(const Arguments& command, std::size_t limit, Clock::time_point deadline) {
  std::array<int, 2> ends{-1, -1};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) return {};
  const FileDescriptor input(ends[0]);
  FileDescriptor output(ends[1]);
  const Child child = startWithOutput(command, output.get());
  if (child.error != 0) return {};
  output.reset();
  Tail tail(limit);
  const bool isWhole = readInto(tail, input.get(), deadline);
  if (!isWhole || !exitsBy(deadline, child.pid)) ::kill(child.pid, SIGKILL);
  const int status = platform::waitStatusOf(child.pid);
  return {tail.take(), isWhole && status == 0};
}

Arguments withCount(Arguments command, const char* count) {
  command.emplace_back(count);
  return command;
}

// Returns the output of the last complete run; if the first run fails or times out, its partial output.
std::string newestEntries(const KeepOutput& request) {
  const auto limit = static_cast<std::size_t>(request.limit);
  const auto deadline = Clock::now() + request.timeout;
  std::string newest;
  for (const char* count : entryCounts) {
    Output output = outputOf(withCount(request.command, count), limit, deadline);
    if (!output.isComplete) return newest.empty() ? output.text : newest;
    const bool hasMore = output.text.size() < limit && output.text != newest;
    newest = std::move(output.text);
    if (!hasMore) break;
  }
  return newest;
}

bool hasPacked(int status) {
  return WIFEXITED(status) && (WEXITSTATUS(status) == 0 || WEXITSTATUS(status) == zipFilesUnreadable);
}

std::string problem(const std::string& what, int error) {
  return what + ": " + std::strerror(error);
}

}  // namespace

std::optional<std::size_t> keepOutput(const KeepOutput& request) {
  const FileDescriptor target = openOwnFolder(request.target);
  if (!target.valid()) return std::nullopt;
  NewFile file(target.get(), request.name);
  if (!file.valid()) return std::nullopt;
  const std::string output = newestEntries(request);
  if (!file.write(output)) return std::nullopt;
  file.keep();
  return output.size();
}

std::optional<std::string> keepArchive(const KeepArchive& request) {
  if (!openOwnFolder(request.source).valid()) return problem(request.source, errno);
  std::error_code ignored;
  std::filesystem::create_directories(request.target, ignored);
  const FileDescriptor target(::open(request.target.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!target.valid()) return problem(request.target, errno);
  NewFile archive(target.get(), "." + request.name);
  if (!archive.valid()) return problem(request.target + "/." + request.name, errno);

  const Child child = startWithOutput(request.command, archive.descriptor());
  if (child.error != 0) return problem(request.command[0], child.error);
  if (!hasPacked(platform::waitStatusOf(child.pid))) return request.command[0] + " has failed";
  if (!archive.keepAs(request.name)) return problem(request.target + "/" + request.name, errno);
  return std::nullopt;
}

}  // namespace helpers
