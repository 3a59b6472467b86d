#pragma once

#include <chrono>
#include <cstddef>
#include <iterator>
#include <map>
#include <random>
#include <set>
#include <string>
#include <string_view>

#include "tests/end_to_end/support/support_fixture.h"
#include "tests/end_to_end/usage/fake_clock.h"
#include "tests/end_to_end/usage/session_records.h"
#include "tests/end_to_end/usage/upload_servers.h"
#include "tests/harness/processes/process_children.h"

// Makes the real agent perform all its functions in pseudo-random order. Each action returns once the agent
// has completed it.
class RandomSessionTest : public testing::Test,
                          protected TestDesktop,
                          protected InstalledBundle,
                          protected RunningAgent,
                          protected NoticePipe,
                          protected SupportServer,
                          protected SupportWindowDriver {
 protected:
  RandomSessionTest()
      : RunningAgent(*this, *this), NoticePipe(*this, *this), SupportWindowDriver(*this, *this, *this) {}
  void SetUp() override;
  void TearDown() override { tearDownAgent(); }

  // Launches the agent, sometimes on another day, and waits for the uploads of its launch.
  void beginSession();
  void endByMenu();
  void endBySignal();
  void endByForce();

  // Performs a random action.
  void act();
  // Performs every action once, which fills the agent's caches.
  void performAll();
  // Shows every window, so that all pictures are loaded.
  void showEverything();

  [[nodiscard]] const std::map<std::string_view, int>& acts() const { return acts_; }
  // Returns how many update actions opened the updater.
  [[nodiscard]] int updates() const { return updates_; }
  [[nodiscard]] const RecordCounts& written() const { return written_; }
  [[nodiscard]] const UploadServers& uploads() const { return uploads_; }
  // Returns the records in the remaining files; a damaged file fails the test.
  [[nodiscard]] static RecordCounts recordsLeft();
  // Returns the contents of the remaining files of past days.
  [[nodiscard]] std::set<std::string> pastFiles() const;

  [[nodiscard]] long threads() const;
  [[nodiscard]] long children() const { return std::ssize(test_support::childrenOf(agent_.pid())); }
  [[nodiscard]] long displaysMemory() { return ownMemoryInKilobytes(display_.server().pid()); }

 private:
  struct Act {
    std::string_view name;
    int weight;
    void (RandomSessionTest::*play)();
  };
  static const std::vector<Act>& everyAct();
  void play(const Act& act);

  void record();
  void recordNothing();
  void showAccessNotice();
  void showLoadingNotice();
  void showBothNotices();
  void showBothCrosswise();
  void showTwice();
  void useSwitch();
  void useSwitchWithoutReader();
  void useSwitchWithoutPipe();
  void lookAtSupport();
  void lookAtSupportOffline();
  void openSheet();
  void collectLogs();
  void update();
  void showNoticeOverSupport();
  void openSupportOverNotice();
  void flipAppearance();
  void restartHost();
  void passMidnight();

  void flipSwitch();
  void sendRecord();
  void waitForUploads(std::size_t before, std::size_t past);
  void waitUntilIdle();
  // Describes an agent that does not answer, for a failure message.
  [[nodiscard]] std::string agentsState();
  // Describes the stacking order and the input focus.
  [[nodiscard]] std::string windowsState();
  [[nodiscard]] static std::string serverOption();
  [[nodiscard]] unsigned below(unsigned end) { return static_cast<unsigned>(random_()) % end; }

  static unsigned seed();

  std::mt19937 random_{seed()};
  FakeClock clock_{std::chrono::sys_days(std::chrono::year(2024) / 3 / 6) + std::chrono::hours(8)};
  DataMessages messages_{random_};
  UploadServers uploads_{seed(), [this] { clock_.forward(std::chrono::seconds(20)); }};
  RecordCounts written_;
  std::map<std::string_view, int> acts_;
  int updates_ = 0;
  bool automount_ = true;
  bool dark_ = false;
};
