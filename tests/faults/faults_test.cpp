#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <set>

#include "tests/faults/fault_fixture.h"

namespace {

struct Kind {
  const char* call;
  int error;
};

// In how many places of a life each of these fails: a few, or all.
constexpr std::uint64_t kSample = 2, kAll = 100'000, kOfManyAll = 60;

std::uint64_t limitFor(const std::string& call) {
  if (std::getenv("TOVALIN_FAULTS") == nullptr) return kSample;
  // Of those that come by the thousand, or as long as somebody waits.
  const bool comesWithoutEnd = call == "small malloc" || call == "curl_multi_poll" ||
                               call == "curl_multi_perform" || call == "ioctl" || call == "select";
  return comesWithoutEnd ? kOfManyAll : kAll;
}

// The first and the last of `count`, and others between them at equal distances.
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
    case Survival::EndedWithMessage:
      return "ended with a message";
    case Survival::Failed:
      break;
  }
  return "failed";
}

class Faults : public FaultTest, public testing::WithParamInterface<Kind> {
 protected:
  // A line that tests/faults/run makes its table of.
  void tell(const Fault& fault, const Outcome& outcome) const {
    std::printf("fault\t%s\t%s\t%llu\t%s\t0x%llx %s\n", fault.call.c_str(), ::strerrorname_np(fault.error),
                static_cast<unsigned long long>(fault.which), nameOf(outcome.survival),
                static_cast<unsigned long long>(place()), outcome.detail.substr(0, 200).c_str());
    std::fflush(stdout);
  }
};

TEST_P(Faults, LeavesAnAgentThatServesOrHasEndedWithAMessage) {
  const auto [call, error] = GetParam();
  const std::uint64_t count = callsOf(call);
  ASSERT_GT(count, 0u) << "the agent makes no such call";
  for (const std::uint64_t which : placesAmong(count, limitFor(call))) {
    const Fault fault{call, error, which};
    const Outcome outcome = live(fault);
    tell(fault, outcome);
    EXPECT_NE(outcome.survival, Survival::Failed) << outcome.detail;
  }
}

constexpr Kind kinds[] = {{"open", EMFILE},
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
                          {"poll", ENOMEM},
                          {"pipe2", EMFILE},
                          {"socket", EMFILE},
                          {"socketpair", EMFILE},
                          {"connect", ECONNREFUSED},
                          {"send", EPIPE},
                          {"ioctl", ENOTTY},
                          {"pidfd_open", EMFILE},
                          {"posix_spawn", EAGAIN},
                          {"waitpid", EINTR},
                          {"pthread_create", EAGAIN},
                          {"inotify_init1", EMFILE},
                          {"inotify_add_watch", ENOSPC},
                          {"curl_global_init", ENOMEM},
                          {"curl_easy_init", ENOMEM},
                          {"curl_multi_init", ENOMEM},
                          {"curl_multi_add_handle", ENOMEM},
                          {"curl_multi_perform", ENOMEM},
                          {"curl_multi_poll", ENOMEM},
                          {"curl_slist_append", ENOMEM},
                          {"malloc", ENOMEM},
                          {"small malloc", ENOMEM}};

INSTANTIATE_TEST_SUITE_P(OfEachCall, Faults, testing::ValuesIn(kinds), [](const auto& kind) {
  std::string name = std::string(kind.param.call) + "_" + ::strerrorname_np(kind.param.error);
  std::ranges::replace(name, ' ', '_');
  return name;
});

}  // namespace
