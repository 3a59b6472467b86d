#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tests/end_to_end/support/support_fixture.h"
#include "tests/faults/fault_injector.h"
#include "tests/faults/unusual_output.h"
#include "tests/faults/usage_check.h"

inline bool isMenu(const test_support::XWindow& window) {
  return window.className == "Tovalin" && window.width > 100;
}

// Messages of the main application about a device and a transfer, and the prefixes of the resulting records.
extern const std::string deviceMessage, deviceRecord, transferMessage, transferRecord;

// The outcome of a session with a fault.
enum class Survival {
  NotReached,          // the chosen call was not made in this session
  Served,              // runs on, shows its icon, and answers its menu and the pipe
  ServedWithoutPipe,   // as before, but has logged that it does not serve the pipe
  ServedWithoutWatch,  // runs on without the watch on its bundle
  EndedWithMessage,
  Failed,
};

struct Outcome {
  Survival survival = Survival::Failed;
  std::string detail = {};
};

// The outcome of a session without a fault.
struct Expected {
  Survival survival = Survival::Served;
  // Whether this is the user's first launch.
  bool isFirstLaunch = false;
  // Number of start records in the files.
  int starts = 1;
  // The files to be uploaded.
  std::vector<PastFile> pastFiles = {UsageCheck::waiting};
  // Number of descriptors open before the end; nullopt until a session without a fault has counted them.
  std::optional<long> descriptors = {};
};

// The real agent with a fault: the steps of a session and the checks after it. A step that the fault prevents
// is skipped; the checks at the end decide.
class FaultyAgent : public TestDesktop,
                    public InstalledBundle,
                    public RunningAgent,
                    public NoticePipe,
                    public SupportServer,
                    public SupportWindowDriver {
 public:
  FaultyAgent()
      : RunningAgent(*this, *this), NoticePipe(*this, *this), SupportWindowDriver(*this, *this, *this) {}

  // Prepares what all sessions of a test share; fails the test if it cannot.
  void setUp();
  // Prepares a session, before the agent's start.
  void begin(const Fault& fault, const Expected& expected);

  // Checks the agent after a session, then ends it and checks the end.
  [[nodiscard]] Outcome judge();

  // Starts the agent. Returns once it listens, shows its icon and has uploaded the past file, or once these
  // can no longer be expected.
  void launchCompletely();
  void waitForLaunch();

  [[nodiscard]] std::optional<Outcome> judgeEarlyEnd();
  // Each of these returns what is wrong; an empty text if nothing is.
  [[nodiscard]] std::string judgeItem();
  [[nodiscard]] std::string judgeEnd();
  [[nodiscard]] std::string judgeFiles();
  // As above, with `ends` quit records.
  [[nodiscard]] std::string judgeUsage(int ends);
  [[nodiscard]] bool hasNoProcessesLeft() const;
  // Returns the files that the product server received in this session.
  [[nodiscard]] std::vector<std::string> uploads() const;
  // Returns the unusual lines in the log and on the console.
  [[nodiscard]] UnusualOutput unusualOutput();
  [[nodiscard]] std::string message() { return unusualOutput().first(); }

  [[nodiscard]] bool becomesTrue(const std::function<bool()>& condition);
  [[nodiscard]] bool hasReportedLostPipe() { return unusualOutput().reportsLostPipe(); }
  // Returns whether a process reads the pipe.
  [[nodiscard]] static bool listens();
  // Returns whether the message was read.
  bool sendToPipe(const std::string& text);
  // Sends a message and waits for its record, which must stay in the files from then on.
  void sendRecord(const std::string& text, const std::string& record);
  // Returns the label of the menu's switch; empty without a menu.
  [[nodiscard]] std::string switchLabel();
  // Returns whether the switch's label changes after a click. If the item is missing because its picture was
  // not loaded, uses the menu that a second start opens.
  [[nodiscard]] bool switchWorks();
  // Returns whether the panel has the menu; if necessary turns the switch to the state whose picture is
  // loaded.
  [[nodiscard]] bool showsMenu();
  void closeSupportWindow(std::uint32_t window);
  // Launches the agent and opens the support window; calls fail during `use`.
  void playInSupportWindow(const std::function<void()>& use);

  [[nodiscard]] bool hasPipe() const { return hasPipe_; }
  void addToConsole(const std::string& text) { consoleLog_ += text; }
  // Returns the number of descriptors open before the end; nullopt if the agent ended earlier.
  [[nodiscard]] std::optional<long> descriptorsAtEnd() const { return descriptorsAtEnd_; }

  FaultInjector injector_;

 private:
  void waitForListener();
  [[nodiscard]] std::string judgeLeaks();
  [[nodiscard]] bool answersPipe();
  [[nodiscard]] std::string judgePipe();
  [[nodiscard]] std::string judgeUsageAtEnd();
  [[nodiscard]] bool showsIcon();
  [[nodiscard]] bool pictureIsLost();
  [[nodiscard]] bool switchWorksFromSecondStart();

  Expected expected_;
  bool endsProperly_ = false;
  bool endedBySignal_ = false;
  bool hasPipe_ = true;
  // Timeout after the fault has occurred.
  std::chrono::seconds patience_{};
  UsageCheck usage_;
  long processesBefore_ = 0;
  std::size_t requestsBefore_ = 0;
  std::string consoleLog_ = {};
  std::optional<long> descriptorsAtEnd_ = {};
};
