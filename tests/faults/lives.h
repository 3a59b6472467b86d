#pragma once

#include <functional>
#include <string>
#include <utility>

#include "tests/faults/faulty_agent.h"

// A session with fixed steps in which calls fail: its steps and the checks after them.
class Life {
 public:
  explicit Life(FaultyAgent& agent, Expected expected = {}) : run_(agent), expected_(std::move(expected)) {}
  virtual ~Life() = default;
  Life(const Life&) = delete;
  Life& operator=(const Life&) = delete;

  // Runs the steps, beginning with the agent's start.
  virtual void lead() = 0;
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
class ShortLife : public Life {
 public:
  static constexpr const char* title = "short life";

  using Life::Life;

  void lead() override;
  [[nodiscard]] Outcome judge() override;

 private:
  void record();
  void useSwitch();
  void useSupportWindow();

  bool hasSwitched_ = false;
  bool hasOpened_ = false;
};

// Calls fail in the user's first launch, which creates the settings.
class FirstLaunchLife : public Life {
 public:
  static constexpr const char* title = "first launch";

  explicit FirstLaunchLife(FaultyAgent& agent) : Life(agent, {.isFirstLaunch = true}) {}

  void lead() override {
    run_.injector_.letCallsFail();
    run_.launchToItsEnd();
  }
};

// Calls fail while the support window collects the logs.
class LogCollectionLife : public Life {
 public:
  static constexpr const char* title = "collection of logs";

  using Life::Life;

  void lead() override;
  [[nodiscard]] Outcome judge() override;

 private:
  void collectLogs();
  [[nodiscard]] bool isShaded() const;
  [[nodiscard]] test_support::XPicture sheetsMessage() const;

  bool toldOfItsEnd_ = false;
};

// Calls fail while the support window copies and opens the updater.
class UpdateLife : public Life {
 public:
  static constexpr const char* title = "update";

  using Life::Life;

  void lead() override;
  [[nodiscard]] Outcome judge() override;

 private:
  void update();

  bool hasOpened_ = false;
};

// Calls fail from before midnight until after the day's upload; records are written on both days.
class MidnightLife : public Life {
 public:
  static constexpr const char* title = "midnight";

  explicit MidnightLife(FaultyAgent& agent);

  void lead() override;
  [[nodiscard]] Outcome judge() override;

 private:
  [[nodiscard]] std::string judgeDays() const;
  void passMidnight();
  void waitForPass();
  [[nodiscard]] bool wakes();
};

// Calls fail in a second process, which is started while the agent runs and delegates to it.
class SecondStartLife : public Life {
 public:
  static constexpr const char* title = "second start";

  using Life::Life;

  void lead() override;
  [[nodiscard]] Outcome judge() override;

 private:
  [[nodiscard]] Outcome judgeSecond();
  void closeMenu();
  [[nodiscard]] std::string harmToFirst();

  test_support::ChildProcess second_;
};

// Calls fail in a second process whose predecessor ends without answering it, so that it starts over.
class StartOverLife : public Life {
 public:
  static constexpr const char* title = "start over";

  explicit StartOverLife(FaultyAgent& agent) : Life(agent, {.starts = 2}) {}

  void lead() override;
};

// Calls fail in a process without a display, which ends.
class DisplaylessLife : public Life {
 public:
  static constexpr const char* title = "launch without a display";

  explicit DisplaylessLife(FaultyAgent& agent) : Life(agent, {.survival = Survival::EndedWithMessage}) {}

  void lead() override;
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
class RemovalLife : public Life {
 public:
  static constexpr const char* title = "removal of the bundle";

  using Life::Life;
  void lead() override;
  [[nodiscard]] Outcome judge() override { return loss_.judge(); }

 private:
  BundleLoss loss_{run_};
};

// Calls fail from the launch on, so that there may be no watch when the bundle is renamed.
class WatchLife : public Life {
 public:
  static constexpr const char* title = "watch on the bundle";

  using Life::Life;
  void lead() override;
  [[nodiscard]] Outcome judge() override { return loss_.judge(); }

 private:
  BundleLoss loss_{run_};
};
