#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "tests/end_to_end/support/support_fixture.h"
#include "tests/faults/agents_words.h"
#include "tests/faults/fault_report.h"
#include "tests/faults/usage_account.h"

inline bool isMenu(const test_support::XWindow& window) {
  return window.className == "Tovalin" && window.width > 100;
}

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
  Served,              // it goes on, shows its icon, and answers its menu and the pipe
  ServedWithoutPipe,   // ... all but the pipe, of which it told
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
  // Whether the fault of the last life was reached.
  [[nodiscard]] bool hasFailed() const { return report_->failed != 0; }
  // How often a call is made in a life of this kind without faults.
  [[nodiscard]] static std::uint64_t callsOf(const std::string& name);
  // Where in the agent's program the fault of the last life was, for addr2line(1).
  [[nodiscard]] std::uint64_t place() const { return report_->place; }

  // The steps of the life, from the agent's start on.
  virtual void lead() = 0;
  // What must hold after them, the end included.
  [[nodiscard]] virtual Outcome judge();
  // What becomes of an agent that meets no fault.
  [[nodiscard]] virtual Survival usual() const { return Survival::Served; }
  // Whether no agent ran for this user before.
  [[nodiscard]] virtual bool isFirstLaunch() const { return false; }
  // How many starts its files are to have.
  [[nodiscard]] virtual int starts() const { return 1; }
  // The files that it is to send.
  [[nodiscard]] virtual std::vector<PastFile> pastFiles() const { return {UsageAccount::waiting}; }

  // How often it was made in this life so far.
  [[nodiscard]] std::uint64_t callsSoFar(std::string_view name) const {
    return report_->counts[faults::indexOf(name)];
  }
  // From here on calls are counted, and the one that is meant fails.
  void letCallsFail() { report_->isOpen = 1; }
  // Starts the agent, and returns when it listens and has its icon and its upload, or won't have them any
  // more.
  void launchToItsEnd();
  void waitForLaunch();

  [[nodiscard]] std::optional<Outcome> judgeEarlyEnd();
  // Each of these says what is wrong, or nothing.
  [[nodiscard]] std::string judgeItem();
  [[nodiscard]] std::string judgeEnd();
  [[nodiscard]] std::string judgeFiles();
  // ... with so many records of the end.
  [[nodiscard]] std::string judgeUsage(int ends);
  [[nodiscard]] bool nothingOutlivesIt() const;
  // The contents of what the product server got in this life.
  [[nodiscard]] std::vector<std::string> uploads() const;
  // What the agent has said of its fault, in the log or on its console.
  [[nodiscard]] AgentsWords words();
  [[nodiscard]] std::string message() { return words().first(); }

  [[nodiscard]] bool comesTrue(const std::function<bool()>& condition);
  [[nodiscard]] bool toldThatThePipeIsGone() { return words().tellThatThePipeIsGone(); }
  // Whether somebody reads the pipe.
  [[nodiscard]] static bool listens();
  // Whether it was read.
  bool sendToPipe(const std::string& text);
  // ... and waits for its record, which is to be in the files from now on.
  void sendRecord(const std::string& text, const std::string& record);
  // The menu's line that switches; empty without a menu.
  [[nodiscard]] std::string switchLabel();
  // Whether the line says the other thing once it was clicked; without an item, for want of its picture, in
  // the menu that a second start opens.
  [[nodiscard]] bool turnsTheSwitch();
  // Whether the panel has the menu, if need be with the switch turned to where there is a picture.
  [[nodiscard]] bool showsItsMenu();
  void closeSupportWindow(std::uint32_t window);
  // Launches and opens the support window; calls fail while `use` is at work on it.
  void leadInSupportWindow(const std::function<void()>& use);

  [[nodiscard]] const Fault& fault() const { return fault_; }
  [[nodiscard]] bool hasPipe() const { return hasPipe_; }
  void addToConsole(const std::string& text) { console_ += text; }

 private:
  void begin(const Fault& fault);
  void waitForListener();
  [[nodiscard]] std::string leftBehind();
  [[nodiscard]] bool answersThePipe();
  [[nodiscard]] std::string judgePipe();
  [[nodiscard]] std::string judgeEndOfLife();
  [[nodiscard]] bool showsItsIcon();
  [[nodiscard]] bool pictureIsLost();
  [[nodiscard]] bool turnsTheSwitchByAnotherStart();
  faults::Report* report_ = nullptr;
  Fault fault_;
  bool endsProperly_ = false;
  bool endedBySignal_ = false;
  bool hasPipe_ = true;
  // What has not come so long after the fault is not waited for.
  std::chrono::seconds patience_{};
  UsageAccount usage_;
  long processesBefore_ = 0;
  std::size_t requestsBefore_ = 0;
  std::string console_ = {};
};
