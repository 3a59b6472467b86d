#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tests/end_to_end/support/support_fixture.h"
#include "tests/faults/agents_words.h"
#include "tests/faults/fault_injector.h"
#include "tests/faults/usage_account.h"

inline bool isMenu(const test_support::XWindow& window) {
  return window.className == "Tovalin" && window.width > 100;
}

// What the main application sends of a device and of a transfer, and how the records of it begin.
extern const std::string deviceMessage, deviceRecord, transferMessage, transferRecord;

// What became of an agent that met its fault.
enum class Survival {
  NotReached,          // the call was not made so often this time
  Served,              // it goes on, shows its icon, and answers its menu and the pipe
  ServedWithoutPipe,   // ... except for the pipe, which it logs
  ServedWithoutWatch,  // it goes on without the watch on its bundle
  EndedWithMessage,
  Failed,
};

struct Outcome {
  Survival survival = Survival::Failed;
  std::string detail = {};
};

// What becomes of the agent that meets no fault.
struct Expected {
  Survival survival = Survival::Served;
  // Whether no agent ran for this user before.
  bool isFirstLaunch = false;
  // How many starts its files are to have.
  int starts = 1;
  // The files that it is to send.
  std::vector<PastFile> pastFiles = {UsageAccount::waiting};
  // How many descriptors it has open before its end; nullopt until a session without faults has counted them.
  std::optional<long> descriptors = {};
};

// The real agent with a fault: the steps of which its sessions are made, and what must hold after them. A
// step that the fault has spoilt is passed over; what must hold is asked at the end.
class FaultyAgent : public TestDesktop,
                    public InstalledBundle,
                    public RunningAgent,
                    public NoticePipe,
                    public SupportServer,
                    public SupportWindowDriver {
 public:
  FaultyAgent()
      : RunningAgent(*this, *this), NoticePipe(*this, *this), SupportWindowDriver(*this, *this, *this) {}

  // Makes ready what all sessions of a test share; fails the test if it can't.
  void setUp();
  // What each session begins with, before the agent's start.
  void begin(const Fault& fault, const Expected& expected);

  // What must hold after a session, the end included.
  [[nodiscard]] Outcome judge();

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
  // The contents that the product server received in this session.
  [[nodiscard]] std::vector<std::string> uploads() const;
  // What the agent has said of its fault, in the log or on its console.
  [[nodiscard]] AgentsWords words();
  [[nodiscard]] std::string message() { return words().first(); }

  [[nodiscard]] bool comesTrue(const std::function<bool()>& condition);
  [[nodiscard]] bool toldThatThePipeIsGone() { return words().tellThatThePipeIsGone(); }
  // Whether a process reads the pipe.
  [[nodiscard]] static bool listens();
  // Whether it was read.
  bool sendToPipe(const std::string& text);
  // ... and waits for its record, which is to be in the files from now on.
  void sendRecord(const std::string& text, const std::string& record);
  // The menu's line that switches; empty without a menu.
  [[nodiscard]] std::string switchLabel();
  // Whether the line's text changes after a click; if the item is missing because its picture was not loaded,
  // in the menu that a second start opens.
  [[nodiscard]] bool turnsTheSwitch();
  // Whether the panel has the menu, if need be with the switch turned to where there is a picture.
  [[nodiscard]] bool showsItsMenu();
  void closeSupportWindow(std::uint32_t window);
  // Launches and opens the support window; calls fail while `use` is at work on it.
  void leadInSupportWindow(const std::function<void()>& use);

  [[nodiscard]] bool hasPipe() const { return hasPipe_; }
  void addToConsole(const std::string& text) { said_ += text; }
  // How many descriptors it had open before its end; nullopt if it ended earlier.
  [[nodiscard]] std::optional<long> openAtLast() const { return openAtLast_; }

  FaultInjector injector_;

 private:
  void waitForListener();
  [[nodiscard]] std::string leftBehind();
  [[nodiscard]] bool answersThePipe();
  [[nodiscard]] std::string judgePipe();
  [[nodiscard]] std::string judgeEndOfLife();
  [[nodiscard]] bool showsItsIcon();
  [[nodiscard]] bool pictureIsLost();
  [[nodiscard]] bool turnsTheSwitchByAnotherStart();

  Expected expected_;
  bool endsProperly_ = false;
  bool endedBySignal_ = false;
  bool hasPipe_ = true;
  // What has not come so long after the fault is not waited for.
  std::chrono::seconds patience_{};
  UsageAccount usage_;
  long processesBefore_ = 0;
  std::size_t requestsBefore_ = 0;
  std::string said_ = {};
  std::optional<long> openAtLast_ = {};
};
