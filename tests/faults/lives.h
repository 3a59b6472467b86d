#pragma once

#include <functional>
#include <string>
#include <utility>

#include "tests/faults/faulty_agent.h"

// A session of always the same steps, in which calls fail: the steps and what must hold after them.
class Life {
 public:
  explicit Life(FaultyAgent& agent, Expected expected = {}) : run_(agent), expected_(std::move(expected)) {}
  virtual ~Life() = default;
  Life(const Life&) = delete;
  Life& operator=(const Life&) = delete;

  // From the agent's start on.
  virtual void lead() = 0;
  // After them, the end included.
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

// Calls fail in the first launch of all, which makes the settings.
class FirstLaunchLife : public Life {
 public:
  static constexpr const char* title = "first launch";

  explicit FirstLaunchLife(FaultyAgent& agent) : Life(agent, {.isFirstLaunch = true}) {}

  void lead() override {
    run_.injector_.letCallsFail();
    run_.launchToItsEnd();
  }
};

// Calls fail while the logs are collected out of the support window.
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

// Calls fail while the updater is copied and opened by the support window's button.
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

// Calls fail in a second process, which is started while the agent runs and hands over to it.
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

// Calls fail in a second process that finds the first one ended before that has answered it, and starts over.
class StartOverLife : public Life {
 public:
  static constexpr const char* title = "start over";

  explicit StartOverLife(FaultyAgent& agent) : Life(agent, {.starts = 2}) {}

  void lead() override;
};

// Calls fail in a process that finds no display, which ends it.
class DisplaylessLife : public Life {
 public:
  static constexpr const char* title = "launch without a display";

  explicit DisplaylessLife(FaultyAgent& agent) : Life(agent, {.survival = Survival::EndedWithMessage}) {}

  void lead() override;
  [[nodiscard]] Outcome judge() override;
};

// The bundle is taken away from under a running agent, which ends with it.
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

// Calls fail when a folder of the bundle is moved and then the bundle is removed, which ends the agent.
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
