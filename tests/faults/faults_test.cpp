#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <optional>
#include <set>
#include <span>
#include <string_view>
#include <vector>

#include "tests/faults/sessions.h"

namespace {

struct Kind {
  const char* call;
  int error;
};

// Which of a function's calls in a session fail: in a sample one, otherwise all.
struct Extent {
  enum class Place { Middle, Last } sample;
  std::uint64_t ofMany;  // limit for functions called hundreds of times, or repeatedly during a wait
};
constexpr Extent kOfWholeSession{Extent::Place::Middle, 60}, kOfPartOfSession{Extent::Place::Last, 20};
constexpr std::uint64_t kAll = 100'000;

bool isSample() {
  return std::getenv("TOVALIN_FAULTS") == nullptr;
}

std::uint64_t limitFor(const std::string& call, const Extent& extent) {
  const bool comesWithoutEnd = call == "small malloc" || call == "curl_multi_poll" ||
                               call == "curl_multi_perform" || call == "ioctl" || call == "select";
  return comesWithoutEnd ? extent.ofMany : kAll;
}

std::uint64_t samplePlace(std::uint64_t count, const Extent& extent) {
  return extent.sample == Extent::Place::Last ? count : (count + 1) / 2;
}

// Returns the first, the last and evenly spaced numbers in between.
std::set<std::uint64_t> placesAmong(std::uint64_t count, std::uint64_t limit) {
  std::set<std::uint64_t> places;
  for (std::uint64_t i = 0; i < std::min(count, limit); ++i)
    places.insert(count <= limit ? i + 1 : 1 + i * (count - 1) / (limit - 1));
  return places;
}

const char* nameOf(Survival survival) {
  switch (survival) {
    case Survival::NotReached:
      return "not reached";
    case Survival::Served:
      return "served";
    case Survival::ServedWithoutPipe:
      return "served without the pipe";
    case Survival::ServedWithoutWatch:
      return "served without the watch";
    case Survival::EndedWithMessage:
      return "ended with a message";
    case Survival::Failed:
      break;
  }
  return "failed";
}

constexpr Kind allKinds[] = {{"open", EMFILE},
                             {"open", EACCES},
                             {"openat", EMFILE},
                             {"fopen64", EMFILE},
                             {"read", EIO},
                             {"read", EINTR},
                             {"write", ENOSPC},
                             {"write", EINTR},
                             {"close", EIO},
                             {"lseek", EINVAL},
                             {"stat", EACCES},
                             {"lstat", EACCES},
                             {"fstat", EIO},
                             {"statx", EACCES},
                             {"readlink", EACCES},
                             {"fdopendir", ENOMEM},
                             {"readdir", EIO},
                             {"mkdir", ENOSPC},
                             {"mkfifo", ENOSPC},
                             {"chmod", EPERM},
                             {"fchmod", EPERM},
                             {"sendfile", EIO},
                             {"unlink", EACCES},
                             {"unlinkat", EACCES},
                             {"remove", EACCES},
                             {"flock", ENOLCK},
                             {"flock", EINTR},
                             {"select", ENOMEM},
                             {"select", EINTR},
                             {"poll", ENOMEM},
                             {"pipe2", EMFILE},
                             {"socket", EMFILE},
                             {"socketpair", EMFILE},
                             {"connect", ECONNREFUSED},
                             {"send", EPIPE},
                             {"ioctl", ENOTTY},
                             {"pidfd_open", EMFILE},
                             {"posix_spawn", EAGAIN},
                             {"posix_spawn", ENOENT},
                             {"execv", EACCES},
                             {"waitpid", EINTR},
                             {"waitpid", ECHILD},
                             {"pthread_create", EAGAIN},
                             {"inotify_init1", EMFILE},
                             {"inotify_add_watch", ENOSPC},
                             {"inotify_rm_watch", EINVAL},
                             {"statvfs", EIO},
                             {"close_range", ENOSYS},
                             {"sigaction", EINVAL},
                             {"writev", EIO},
                             {"curl_global_init", ENOMEM},
                             {"curl_easy_init", ENOMEM},
                             {"curl_multi_init", ENOMEM},
                             {"curl_multi_add_handle", ENOMEM},
                             {"curl_multi_perform", ENOMEM},
                             {"curl_multi_poll", ENOMEM},
                             {"curl_slist_append", ENOMEM},
                             {"malloc", ENOMEM},
                             {"small malloc", ENOMEM},
                             {"calloc", ENOMEM},
                             {"rmdir", EACCES},
                             {"realpath", EACCES},
                             {"write in part", ENOSPC}};

// The functions that each session calls.
// clang-format off
constexpr std::string_view callsOfLogCollection[] = {
    "open", "openat", "read", "write", "write in part", "close", "lseek", "lstat",
    "fstat", "readlink", "fdopendir", "readdir", "mkdir", "unlinkat", "remove",
    "flock", "select", "send", "ioctl", "posix_spawn", "waitpid", "small malloc"};
constexpr std::string_view callsOfUpdate[] = {
    "open", "close", "lstat", "mkdir", "rmdir", "flock", "write", "select",
    "send", "posix_spawn", "waitpid", "small malloc"};
constexpr std::string_view callsOfMidnight[] = {
    "open", "openat", "fopen64", "read", "write", "write in part", "close", "lseek",
    "stat", "lstat", "fstat", "readlink", "fdopendir", "readdir", "mkdir", "unlink",
    "unlinkat", "remove", "flock", "select", "socket", "send", "ioctl", "posix_spawn",
    "waitpid", "curl_easy_init", "curl_multi_init",
    "curl_multi_add_handle", "curl_multi_perform", "curl_multi_poll", "curl_slist_append", "small malloc"};
constexpr std::string_view callsOfFirstLaunch[] = {"open", "read", "write", "close", "lstat", "fstat", "mkdir"};
constexpr std::string_view callsOfSecondStart[] = {
    "open", "close", "lstat", "mkdir", "flock", "poll", "socket", "connect", "send", "small malloc"};
constexpr std::string_view callsOfRemoval[] = {
    "open", "openat", "read", "write", "write in part", "close", "lseek", "lstat",
    "fdopendir", "readdir", "mkdir", "unlinkat", "remove", "flock", "select", "ioctl",
    "posix_spawn", "waitpid", "inotify_add_watch", "inotify_rm_watch", "small malloc"};
constexpr std::string_view callsOfWatch[] = {
    "open", "lstat", "statx", "readlink", "fdopendir", "inotify_init1", "inotify_add_watch"};
constexpr std::string_view callsOfStartOver[] = {"execv"};
constexpr std::string_view callsOfDisplayless[] = {"writev"};
// Functions that only the other sessions call.
constexpr std::string_view callsOfOthersAlone[] = {"execv", "inotify_rm_watch", "rmdir", "writev"};
// clang-format on

std::vector<Kind> kindsOfShortSession() {
  std::vector<Kind> kinds;
  std::ranges::copy_if(allKinds, std::back_inserter(kinds), [](const Kind& kind) {
    return std::ranges::count(callsOfOthersAlone, kind.call) == 0;
  });
  return kinds;
}

// In a sample, every third function.
std::vector<Kind> kindsOf(std::span<const std::string_view> calls) {
  std::vector<Kind> kinds;
  std::size_t seen = 0;
  std::ranges::copy_if(allKinds, std::back_inserter(kinds), [&](const Kind& kind) {
    return std::ranges::count(calls, kind.call) == 1 && (!isSample() || seen++ % 3 == 0);
  });
  return kinds;
}

// The results of a session without a fault, which runs once per kind and test program.
struct FaultlessRun {
  std::array<std::uint64_t, faults::callNames.size()> calls{};
  std::optional<long> descriptors = {};
};

template <typename Session, Extent extent = kOfPartOfSession>
class FaultsIn : public testing::TestWithParam<Kind> {
 protected:
  void SetUp() override {
#ifdef TOVALIN_SANITIZED
    GTEST_SKIP() << "the sanitizer and the library of failing calls must both be loaded first";
#endif
    run_.setUp();
    if (HasFatalFailure() || faultlessRun()) return;
    const Outcome plain = runSession({});
    ASSERT_EQ(plain.survival, session_.expected().survival) << "without any fault: " << plain.detail;
    faultlessRun() = FaultlessRun{run_.injector_.allCalls(), run_.descriptorsAtEnd()};
  }
  void TearDown() override {
    run_.tearDownAgent();
  }

  void injectEach() {
    const auto [call, error] = GetParam();
    const std::uint64_t count = faultlessRun()->calls[faults::indexOf(call)];
    ASSERT_GT(count, 0u) << "the agent does not make this call";
    int reached = 0;
    for (const std::uint64_t which : placesOf(call, count)) reached += inject({call, error, which});
    // The last calls may not be made again, for example if a wait is shorter; the first one always is.
    if (reached == 0) reached += inject({call, error, 1});
    EXPECT_GT(reached, 0) << "no call failed";
  }

 private:
  static std::optional<FaultlessRun>& faultlessRun() {
    static std::optional<FaultlessRun> plain;
    return plain;
  }

  static std::set<std::uint64_t> placesOf(const std::string& call, std::uint64_t count) {
    if (isSample()) return {samplePlace(count, extent)};
    return placesAmong(count, limitFor(call, extent));
  }

  // Runs a session with this fault and judges it.
  Outcome runSession(const Fault& fault) {
    Expected expected = session_.expected();
    if (faultlessRun()) expected.descriptors = faultlessRun()->descriptors;
    run_.begin(fault, expected);
    session_.play();
    Outcome outcome = session_.judge();
    const bool hasFailed = run_.injector_.hasFailed();
    if (outcome.survival == Survival::Failed) run_.agent_.kill();
    if (fault.which == 0 || hasFailed || outcome.survival == Survival::Failed) return outcome;
    // If no call failed, the outcome must be that of a session without a fault.
    if (outcome.survival == expected.survival) return {Survival::NotReached, outcome.detail};
    return {Survival::Failed, "not as usual without its fault: " + outcome.detail};
  }

  // Returns whether the call was made.
  bool inject(const Fault& fault) {
    const Outcome outcome = runSession(fault);
    printOutcome(fault, outcome);
    EXPECT_NE(outcome.survival, Survival::Failed) << outcome.detail;
    return run_.injector_.hasFailed();
  }

  // Prints a line from which tests/faults/run makes its tables.
  void printOutcome(const Fault& fault, const Outcome& outcome) const {
    std::printf("fault\t%s\t%s\t%s\t%llu\t%s\t0x%llx %s\n", Session::title, fault.call.c_str(),
                ::strerrorname_np(fault.error), static_cast<unsigned long long>(fault.which),
                nameOf(outcome.survival), static_cast<unsigned long long>(run_.injector_.place()),
                outcome.detail.substr(0, 200).c_str());
    std::fflush(stdout);
  }

  FaultyAgent run_;
  Session session_{run_};
};

std::string nameOfKind(const testing::TestParamInfo<Kind>& kind) {
  std::string name = std::string(kind.param.call) + "_" + ::strerrorname_np(kind.param.error);
  std::ranges::replace(name, ' ', '_');
  return name;
}

class ShortSessionFaults : public FaultsIn<ShortSession, kOfWholeSession> {};
TEST_P(ShortSessionFaults, AgentServesOrEndsWithMessage) {
  injectEach();
}
INSTANTIATE_TEST_SUITE_P(OfEachCall, ShortSessionFaults, testing::ValuesIn(kindsOfShortSession()),
                         nameOfKind);

class LogCollectionFaults : public FaultsIn<LogCollectionSession> {};
TEST_P(LogCollectionFaults, AgentServesOrEndsWithMessage) {
  injectEach();
}
INSTANTIATE_TEST_SUITE_P(OfEachCall, LogCollectionFaults, testing::ValuesIn(kindsOf(callsOfLogCollection)),
                         nameOfKind);

class UpdateFaults : public FaultsIn<UpdateSession> {};
TEST_P(UpdateFaults, AgentServesOrEndsWithMessage) {
  injectEach();
}
INSTANTIATE_TEST_SUITE_P(OfEachCall, UpdateFaults, testing::ValuesIn(kindsOf(callsOfUpdate)), nameOfKind);

class MidnightFaults : public FaultsIn<MidnightSession> {};
TEST_P(MidnightFaults, AgentServesOrEndsWithMessage) {
  injectEach();
}
INSTANTIATE_TEST_SUITE_P(OfEachCall, MidnightFaults, testing::ValuesIn(kindsOf(callsOfMidnight)), nameOfKind);

class FirstLaunchFaults : public FaultsIn<FirstLaunchSession> {};
TEST_P(FirstLaunchFaults, AgentServesOrEndsWithMessage) {
  injectEach();
}
INSTANTIATE_TEST_SUITE_P(OfEachCall, FirstLaunchFaults, testing::ValuesIn(kindsOf(callsOfFirstLaunch)),
                         nameOfKind);

class SecondStartFaults : public FaultsIn<SecondStartSession> {};
TEST_P(SecondStartFaults, FirstAgentIsUnharmedAndSecondProcessEnds) {
  injectEach();
}
INSTANTIATE_TEST_SUITE_P(OfEachCall, SecondStartFaults, testing::ValuesIn(kindsOf(callsOfSecondStart)),
                         nameOfKind);

class RemovalFaults : public FaultsIn<RemovalSession> {};
TEST_P(RemovalFaults, AgentEndsWithItsBundle) {
  injectEach();
}
INSTANTIATE_TEST_SUITE_P(OfEachCall, RemovalFaults, testing::ValuesIn(kindsOf(callsOfRemoval)), nameOfKind);

class WatchFaults : public FaultsIn<WatchSession> {};
TEST_P(WatchFaults, AgentEndsWithItsBundleOrReportsMissingWatch) {
  injectEach();
}
INSTANTIATE_TEST_SUITE_P(OfEachCall, WatchFaults, testing::ValuesIn(kindsOf(callsOfWatch)), nameOfKind);

class StartOverFaults : public FaultsIn<StartOverSession> {};
TEST_P(StartOverFaults, AgentServesOrEndsWithMessage) {
  injectEach();
}
INSTANTIATE_TEST_SUITE_P(OfEachCall, StartOverFaults, testing::ValuesIn(kindsOf(callsOfStartOver)),
                         nameOfKind);

class DisplaylessFaults : public FaultsIn<DisplaylessSession> {};
TEST_P(DisplaylessFaults, AgentEndsWithMessage) {
  injectEach();
}
INSTANTIATE_TEST_SUITE_P(OfEachCall, DisplaylessFaults, testing::ValuesIn(kindsOf(callsOfDisplayless)),
                         nameOfKind);

}  // namespace
