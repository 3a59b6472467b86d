#include "tests/faults/fault_injector.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <new>

#include "tests/harness/processes/file_descriptor.h"

namespace {

constexpr const char* kReport = "/tmp/faults.report";

// Shared memory, written by the agent in which the calls fail.
faults::Report* makeReport() {
  const test_support::FileDescriptor file(::open(kReport, O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
  if (::ftruncate(file.get(), sizeof(faults::Report)) != 0) return nullptr;
  void* const memory =
      ::mmap(nullptr, sizeof(faults::Report), PROT_READ | PROT_WRITE, MAP_SHARED, file.get(), 0);
  return memory == MAP_FAILED ? nullptr : new (memory) faults::Report;
}

}  // namespace

bool FaultInjector::open() {
  report_ = makeReport();
  return report_ != nullptr;
}

void FaultInjector::arm(const Fault& fault, Environment& environment) {
  new (report_) faults::Report;
  environment["TOVALIN_FAULT_REPORT"] = kReport;
  environment["TOVALIN_FAULT"] =
      fault.call + " " + std::to_string(fault.which) + " " + std::to_string(fault.error);
  fault_ = fault;
}

std::array<std::uint64_t, faults::callNames.size()> FaultInjector::allCalls() const {
  std::array<std::uint64_t, faults::callNames.size()> counts{};
  for (std::size_t i = 0; i < counts.size(); ++i) counts[i] = report_->counts[i];
  return counts;
}
