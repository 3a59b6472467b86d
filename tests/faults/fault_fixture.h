#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "tests/end_to_end/support_fixture.h"
#include "tests/faults/fault_report.h"

// One call of the agent's own code that is to fail.
struct Fault {
  std::string call = "none";
  int error = 0;
  std::uint64_t which = 0;
};

// What the main application sends of a device and of a transfer, and how the records of it begin.
extern const std::string deviceMessage, deviceRecord, transferMessage, transferRecord;

// What became of an agent that met its fault.
enum class Survival {
  NotReached,          // the call was not made so often this time
  Served,              // it goes on and answers the pipe
  ServedWithoutPipe,   // it goes on without the pipe, which it told, and its menu works
  ServedWithoutWatch,  // it goes on without the watch on its bundle
  EndedWithMessage,
  Failed,
};

struct Outcome {
  Survival survival = Survival::Failed;
  std::string detail = {};
};

// Leads the real agent through a life of always the same steps, which a class of its own says for each kind
// of life. A step that the fault has spoilt is passed over; what must hold is asked at the end.
class FaultTest : public SupportTest {
 protected:
  void SetUp() override;

  // Leads a life in which this fails, and judges it.
  [[nodiscard]] Outcome live(const Fault& fault);
  // How often a call is made in a life of this kind without faults.
  [[nodiscard]] static std::uint64_t callsOf(const std::string& name);
  // Where in the agent's program the fault of the last life was, for addr2line(1).
  [[nodiscard]] std::uint64_t place() const { return report_->place; }

  // The steps of the life, from the agent's start on.
  virtual void lead() = 0;
  // What must hold after them, the end included.
  [[nodiscard]] virtual Outcome judge();
  // Whether the files have each record that this life makes.
  [[nodiscard]] virtual bool hasAllRecords() const = 0;

  // From here on calls are counted, and the one that is meant fails.
  void letCallsFail() { report_->isOpen = 1; }
  // Returns when the agent listens and has its icon and its upload, or won't have them any more.
  void launchToItsEnd();

  [[nodiscard]] std::optional<Outcome> judgeEarlyEnd();
  [[nodiscard]] std::string judgeEnd();
  [[nodiscard]] bool nothingOutlivesIt() const;
  [[nodiscard]] std::string damageOfFiles() const;
  // The bodies of what the product server got in this life.
  [[nodiscard]] std::string sentUploads() const;
  // What the agent has said of its fault, in the log or on its console.
  [[nodiscard]] std::string message();

  [[nodiscard]] bool comesTrue(const std::function<bool()>& condition);
  [[nodiscard]] bool toldThatThePipeIsGone();
  void sendToPipe(const std::string& text);
  void closeSupportWindow(std::uint32_t window);

  [[nodiscard]] const Fault& fault() const { return fault_; }
  // How this life has ended; else by the menu.
  [[nodiscard]] bool endedBySignal() const { return endedBySignal_; }
  void addToConsole(const std::string& text) { console_ += text; }

 private:
  void begin(const Fault& fault);
  void waitForListener();
  [[nodiscard]] std::string leftBehind();
  [[nodiscard]] bool answersThePipe();
  [[nodiscard]] bool answersItsMenu();
  [[nodiscard]] bool hasFailed() const { return report_->failed != 0; }

  faults::Report* report_ = nullptr;
  Fault fault_;
  bool endsProperly_ = false;
  bool endedBySignal_ = false;
  long processesBefore_ = 0;
  std::size_t requestsBefore_ = 0;
  std::string console_ = {};
};
