#pragma once

#include <functional>
#include <string>
#include <utility>

#include "tests/faults/faulty_agent.h"

// A session with fixed steps in which calls fail: its steps and the checks after them.
class ScriptedSession {
 public:
  explicit ScriptedSession(FaultyAgent& agent, Expected expected = {})
      : run_(agent), expected_(std::move(expected)) {}
  virtual ~ScriptedSession() = default;
  ScriptedSession(const ScriptedSession&) = delete;
  ScriptedSession& operator=(const ScriptedSession&) = delete;

  // Runs the steps, beginning with the agent's start.
  virtual void play() = 0;
  // Checks the agent after the steps, including its end.
  [[nodiscard]] virtual Outcome judge() { return run_.judge(); }
  [[nodiscard]] const Expected& expected() const { return expected_; }

 protected:
  FaultyAgent& run_;

 private:
  Expected expected_;
};

// Launch with an update, upload, records, the switch, the support window, a notice, the end. Calls fail from
// the first one on.
class ShortSession : public ScriptedSession {
 public:
  static constexpr const char* title = "short session";

  using ScriptedSession::ScriptedSession;

  void play() override;
  [[nodiscard]] Outcome judge() override;

 private:
  void record();
  void useSwitch();
  void useSupportWindow();

  bool hasSwitched_ = false;
  bool hasOpened_ = false;
};

// Calls fail in the user's first launch, which creates the settings.
class FirstLaunchSession : public ScriptedSession {
 public:
  static constexpr const char* title = "first launch";

  explicit FirstLaunchSession(FaultyAgent& agent) : ScriptedSession(agent, {.isFirstLaunch = true}) {}

  void play() override {
    run_.injector_.injectFailures();
    run_.launchCompletely();
  }
};

// Calls fail while the support window collects the logs.
class LogCollectionSession : public ScriptedSession {
 public:
  static constexpr const char* title = "collection of logs";

  using ScriptedSession::ScriptedSession;

  void play() override;
  [[nodiscard]] Outcome judge() override;

 private:
  void collectLogs();
  [[nodiscard]] bool isShaded() const;
  [[nodiscard]] test_support::XPicture sheetMessage() const;

  bool hasReportedEnd_ = false;
};

// Calls fail while the support window copies and opens the updater.
class UpdateSession : public ScriptedSession {
 public:
  static constexpr const char* title = "update";

  using ScriptedSession::ScriptedSession;

  void play() override;
  [[nodiscard]] Outcome judge() override;

 private:
  void update();

  bool hasOpened_ = false;
};

// Calls fail from before midnight until after the day's upload; records are written on both days.
class MidnightSession : public ScriptedSession {
 public:
  static constexpr const char* title = "midnight";

  explicit MidnightSession(FaultyAgent& agent);

  void play() override;
  [[nodiscard]] Outcome judge() override;

 private:
  [[nodiscard]] std::string judgeDays() const;
  void passMidnight();
  void waitForPass();
  [[nodiscard]] bool wakes();
};

// Calls fail in a second process, which is started while the agent runs and delegates to it.
class SecondStartSession : public ScriptedSession {
 public:
  static constexpr const char* title = "second start";

  using ScriptedSession::ScriptedSession;

  void play() override;
  [[nodiscard]] Outcome judge() override;

 private:
  [[nodiscard]] Outcome judgeSecond();
  void closeMenu();
  [[nodiscard]] std::string harmToFirst();

  test_support::ChildProcess second_;
};

// Calls fail in a second process whose predecessor ends without answering it, so that it starts over.
class StartOverSession : public ScriptedSession {
 public:
  static constexpr const char* title = "start over";

  explicit StartOverSession(FaultyAgent& agent) : ScriptedSession(agent, {.starts = 2}) {}

  void play() override;
};

// Calls fail in a process without a display, which ends.
class DisplaylessSession : public ScriptedSession {
 public:
  static constexpr const char* title = "launch without a display";

  explicit DisplaylessSession(FaultyAgent& agent)
      : ScriptedSession(agent, {.survival = Survival::EndedWithMessage}) {}

  void play() override;
  [[nodiscard]] Outcome judge() override;
};

// The removal of the bundle of a running agent, which then ends.
class BundleLoss {
 public:
  explicit BundleLoss(FaultyAgent& agent) : run_(agent) {}

  void installAnew();
  void loseBundle(const std::function<void()>& takeAway);
  [[nodiscard]] Outcome judge();

 private:
  [[nodiscard]] Outcome judgeUnwatched();
  [[nodiscard]] std::string judgeProperEnd();

  FaultyAgent& run_;
  bool hasWatch_ = false;
};

// Calls fail while a folder of the bundle is moved and the bundle is removed, which ends the agent.
class RemovalSession : public ScriptedSession {
 public:
  static constexpr const char* title = "removal of the bundle";

  using ScriptedSession::ScriptedSession;
  void play() override;
  [[nodiscard]] Outcome judge() override { return loss_.judge(); }

 private:
  BundleLoss loss_{run_};
};

// Calls fail from the launch on, so that there may be no watch when the bundle is renamed.
class WatchSession : public ScriptedSession {
 public:
  static constexpr const char* title = "watch on the bundle";

  using ScriptedSession::ScriptedSession;
  void play() override;
  [[nodiscard]] Outcome judge() override { return loss_.judge(); }

 private:
  BundleLoss loss_{run_};
};
