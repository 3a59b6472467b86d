#include "tests/harness/processes/refused_call.h"

#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>

#include <array>
#include <cstddef>
#include <thread>

namespace {

bool refuse(int call, int error) {
  std::array<sock_filter, 4> rules{{
      {BPF_LD | BPF_W | BPF_ABS, 0, 0, offsetof(seccomp_data, nr)},
      {BPF_JMP | BPF_JEQ | BPF_K, 0, 1, static_cast<unsigned>(call)},
      {BPF_RET | BPF_K, 0, 0, SECCOMP_RET_ERRNO | static_cast<unsigned>(error)},
      {BPF_RET | BPF_K, 0, 0, SECCOMP_RET_ALLOW},
  }};
  const sock_fprog program{rules.size(), rules.data()};
  return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
         ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program, 0, 0) == 0;
}

}  // namespace

bool withRefusedCall(int call, int error, const std::function<void()>& work) {
  bool refused = false;
  std::thread([&] {
    refused = refuse(call, error);
    if (refused) work();
  }).join();
  return refused;
}
