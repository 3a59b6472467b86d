#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "tests/faults/fault_report.h"

// A call of the agent's own code that is to fail.
struct Fault {
  std::string call = "none";
  int error = 0;
  std::uint64_t which = 0;
};

// Makes one call of an agent fail, and reports whether that call was made. Only one injector may be open at a
// time, because it shares a file with the agent.
class FaultInjector {
 public:
  using Environment = std::map<std::string, std::optional<std::string>>;

  // Returns whether the shared file could be created.
  [[nodiscard]] bool open();
  // Prepares `environment`: an agent started in it has this fault once `injectFailures` was called.
  void arm(const Fault& fault, Environment& environment);
  // Starts counting calls and makes the chosen one fail.
  void injectFailures() { report_->isOpen = 1; }

  [[nodiscard]] const Fault& fault() const { return fault_; }
  // Returns whether the chosen call was made, and failed.
  [[nodiscard]] bool hasFailed() const { return report_->failed != 0; }
  // Returns the address of that call in the agent's program, for addr2line(1).
  [[nodiscard]] std::uint64_t place() const { return report_->place; }
  // Returns how often this call was made so far; `allCalls` the counts of all calls.
  [[nodiscard]] std::uint64_t calls(std::string_view name) const {
    return report_->counts[faults::indexOf(name)];
  }
  [[nodiscard]] std::array<std::uint64_t, faults::callNames.size()> allCalls() const;

 private:
  faults::Report* report_ = nullptr;
  Fault fault_;
};
