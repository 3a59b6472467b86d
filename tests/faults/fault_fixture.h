#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tests/end_to_end/support_fixture.h"
#include "tests/faults/fault_report.h"

// One call of the agent's own code that is to fail.
struct Fault {
  std::string call = "none";
  int error = 0;
  std::uint64_t which = 0;
};

// What became of an agent that met its fault.
enum class Survival {
  NotReached,         // the call was not made so often this time
  Served,             // it goes on and answers the pipe
  ServedWithoutPipe,  // it goes on without the pipe, which it told, and its menu works
  EndedWithMessage,
  Failed,
};

struct Outcome {
  Survival survival = Survival::Failed;
  std::string detail = {};
};

// Leads the real agent through a short life of always the same steps: launch with an update, upload, records,
// the switch, the support window, a notice, the end. A step that the fault has spoilt is passed
// over; what must hold is asked at the end.
class FaultTest : public SupportTest {
 protected:
  void SetUp() override;

  // Leads a life in which this fails, and judges it.
  [[nodiscard]] Outcome live(const Fault& fault);
  // How often a call is made in a life without faults.
  [[nodiscard]] static std::uint64_t callsOf(const std::string& name);
  // Where in the agent's program the fault of the last life was, for addr2line(1).
  [[nodiscard]] std::uint64_t place() const { return report_->place; }

 private:
  void begin(const Fault& fault);
  void leadThroughItsSteps();
  void waitForListener();
  void record();
  void useSwitch();
  void useSupportWindow();
  [[nodiscard]] Outcome judge();
  [[nodiscard]] std::optional<Outcome> judgeEarlyEnd();
  [[nodiscard]] std::string judgeEnd();
  [[nodiscard]] std::string damageOfFiles() const;
  [[nodiscard]] std::string leftBehind();
  [[nodiscard]] bool hasAllRecords() const;

  [[nodiscard]] bool answersThePipe();
  [[nodiscard]] bool answersItsMenu();
  [[nodiscard]] bool toldThatThePipeIsGone();
  [[nodiscard]] std::string message();
  [[nodiscard]] bool comesTrue(const std::function<bool()>& condition);
  [[nodiscard]] bool hasFailed() const { return report_->failed != 0; }
  void sendToPipe(const std::string& text);

  faults::Report* report_ = nullptr;
  bool endsBySignal_ = false;  // every other time; else by its menu
  bool endsProperly_ = false;
  long processesBefore_ = 0;
  std::string console_ = {};
};
