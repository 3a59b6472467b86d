#pragma once

#include <functional>
#include <string>

#include "tests/faults/fault_fixture.h"

// The kinds of lives in which calls fail.

// Launch with an update, upload, records, the switch, the support window, a notice, the end. Calls fail from
// the first one on.
class ShortLife : public FaultTest {
 public:
  static constexpr const char* title = "short life";

 protected:
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
class FirstLaunchLife : public FaultTest {
 public:
  static constexpr const char* title = "first launch";

 protected:
  void lead() override {
    letCallsFail();
    launchToItsEnd();
  }
  [[nodiscard]] bool isFirstLaunch() const override { return true; }
};

// Calls fail while the logs are collected out of the support window.
class LogCollectionLife : public FaultTest {
 public:
  static constexpr const char* title = "collection of logs";

 protected:
  void lead() override;
  [[nodiscard]] Outcome judge() override;

 private:
  void collectLogs();
  [[nodiscard]] bool isShaded() const;
  [[nodiscard]] test_support::XPicture sheetsMessage() const;

  bool toldOfItsEnd_ = false;
};

// Calls fail while the updater is copied and opened by the support window's button.
class UpdateLife : public FaultTest {
 public:
  static constexpr const char* title = "update";

 protected:
  void lead() override;
  [[nodiscard]] Outcome judge() override;

 private:
  void update();

  bool hasOpened_ = false;
};

// Calls fail from before midnight until after the day's upload; records are written on both days.
class MidnightLife : public FaultTest {
 public:
  static constexpr const char* title = "midnight";

 protected:
  void lead() override;
  [[nodiscard]] Outcome judge() override;
  [[nodiscard]] std::vector<PastFile> pastFiles() const override;

 private:
  [[nodiscard]] std::string judgeDays() const;
  void passMidnight();
  void waitForPass();
  [[nodiscard]] bool wakes();
};

// Calls fail in a second process, which is started while the agent runs and hands over to it.
class SecondStartLife : public FaultTest {
 public:
  static constexpr const char* title = "second start";

 protected:
  void lead() override;
  [[nodiscard]] Outcome judge() override;

 private:
  [[nodiscard]] Outcome judgeSecond();
  void closeMenu();
  [[nodiscard]] std::string harmToFirst();

  test_support::ChildProcess second_;
};

// Calls fail in a second process that finds the first one ended before that has answered it, and starts over.
class StartOverLife : public FaultTest {
 public:
  static constexpr const char* title = "start over";

 protected:
  void lead() override;
  [[nodiscard]] int starts() const override { return 2; }
};

// Calls fail in a process that finds no display, which ends it.
class DisplaylessLife : public FaultTest {
 public:
  static constexpr const char* title = "launch without a display";

 protected:
  void lead() override;
  [[nodiscard]] Outcome judge() override;
  [[nodiscard]] Survival usual() const override { return Survival::EndedWithMessage; }
};

// Calls fail when a folder of the bundle is moved and then the bundle is removed, which ends the agent.
class RemovalLife : public FaultTest {
 public:
  static constexpr const char* title = "removal of the bundle";

 protected:
  void lead() override;
  [[nodiscard]] Outcome judge() override;

  void installAnew();
  void loseBundle(const std::function<void()>& takeAway);

 private:
  [[nodiscard]] Outcome judgeUnwatched();
  [[nodiscard]] std::string judgeProperEnd();

  bool hasWatch_ = false;
};

// Calls fail from the launch on, so that there may be no watch when the bundle is renamed.
class WatchLife : public RemovalLife {
 public:
  static constexpr const char* title = "watch on the bundle";

 protected:
  void lead() override;
};
