#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "tests/faults/fault_report.h"

// One call of the agent's own code that is to fail.
struct Fault {
  std::string call = "none";
  int error = 0;
  std::uint64_t which = 0;
};

// Makes one call of an agent fail, and reports whether it was reached. Only one injector may be open at a
// time, because it shares a file with the agent.
class FaultInjector {
 public:
  using Environment = std::map<std::string, std::optional<std::string>>;

  // Whether it can be used.
  [[nodiscard]] bool open();
  // An agent that is started in this environment has this fault, once calls may fail.
  void arm(const Fault& fault, Environment& environment);
  // From here on calls are counted, and the one that is meant fails.
  void letCallsFail() { report_->isOpen = 1; }

  [[nodiscard]] const Fault& fault() const { return fault_; }
  // Whether the fault was reached.
  [[nodiscard]] bool hasFailed() const { return report_->failed != 0; }
  // Where in the agent's program it was, for addr2line(1).
  [[nodiscard]] std::uint64_t place() const { return report_->place; }
  // How often this call was made so far, and each call.
  [[nodiscard]] std::uint64_t calls(std::string_view name) const {
    return report_->counts[faults::indexOf(name)];
  }
  [[nodiscard]] std::array<std::uint64_t, faults::callNames.size()> allCalls() const;

 private:
  faults::Report* report_ = nullptr;
  Fault fault_;
};
