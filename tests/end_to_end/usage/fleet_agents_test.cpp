#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <utility>
#include <vector>

#include "tests/end_to_end/agent_test.h"
#include "tests/end_to_end/usage/fake_clock.h"
#include "tests/harness/processes/file_contents.h"
#include "tests/harness/processes/wait_until.h"
#include "tests/harness/servers/product_server_double.h"
#include "tools/fleet/agent_model.h"

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using test_support::contentsOf;
using test_support::ProductServerDouble;
using test_support::waitUntil;

const std::string folder = "/tmp/home/.local/share/Tovalin";
const std::string dayBefore = folder + "/Tovalin_2024_03_06.dat";
const std::string oldDay = folder + "/Tovalin_2000_01_01.dat";
const std::string newDay = folder + "/Tovalin_2024_03_07.dat";
constexpr std::chrono::sys_days launchDay = std::chrono::year(2024) / 3 / 6;

// Computes with the model of the tool `fleet` when an agent uploads that is launched at that time and never
// sleeps.
class FirstUpload : public fleet::Events {
 public:
  explicit FirstUpload(FakeClock::Time launch, std::vector<fleet::SleepPeriod> sleepPeriods = {}) {
    fleet::Random random(1);
    fleet::AgentModel model(0, random, *this);
    model.run({(launch - launchDay).count(), 2 * fleet::day, std::move(sleepPeriods)});
  }
  void launch(fleet::Seconds /*time*/) override {}
  void upload(fleet::Seconds time, int /*files*/) override {
    if (!time_) time_ = launchDay + std::chrono::seconds(time);
  }
  [[nodiscard]] FakeClock::Time time() const { return time_.value(); }

 private:
  std::optional<FakeClock::Time> time_;
};

// Returns the time in the start record, which is written directly before the timer starts.
FakeClock::Time launchTime() {
  const std::string bytes = contentsOf(dayBefore);
  const std::string time = bytes.substr(bytes.find(startRecord) + startRecord.size() + 11, 8);
  const auto number = [&](std::size_t place) { return std::stoi(time.substr(place, 2)); };
  return launchDay + std::chrono::hours(number(0)) + std::chrono::minutes(number(3)) +
         std::chrono::seconds(number(6));
}

bool isLaunched() {
  return waitUntil([] { return contentsOf(dayBefore).find(startRecord) != std::string::npos; });
}

// The uploads of an agent that starts with the file of an old day. The end of this upload shows that the
// pass of the launch has listed the files: only then may the day change, or that pass would upload the
// launch's day as well.
class Uploads {
 public:
  static void placeOldDay() {
    fs::create_directories(folder);
    std::ofstream(oldDay) << "records";
  }
  [[nodiscard]] std::string origin() const { return server_.origin(); }
  [[nodiscard]] bool waitForOldDay() {
    return server_.waitForRequests("POST", 1) && waitUntil([] { return !fs::exists(oldDay); });
  }
  [[nodiscard]] long afterOldDay() const {
    return std::ranges::count(server_.requests(), "POST", &test_support::ServedRequest::method) - 1;
  }

 private:
  ProductServerDouble server_;
};

// Tests one installation at a time with a fake clock, which is put forward to just before the relevant ticks.
// The parameter is the second of the minute at which the agent is started.
class FleetAgent : public AgentTest, public testing::WithParamInterface<int> {
 protected:
  void SetUp() override {
    AgentTest::SetUp();
    if (HasFatalFailure()) return;
    ASSERT_TRUE(fs::exists(TOVALIN_FAKETIME));
    install("/tmp/Applications/Tovalin.app");
    setServers(uploads_.origin());
    Uploads::placeOldDay();
    for (auto& [name, value] : FakeClock::environment()) environment_[name] = value;
  }

  // Skipped ticks are delivered as one, two seconds after the tick before `tick`, when no work is due.
  void forwardToJustBefore(FakeClock::Time tick) {
    for (const auto before : {58s, 2s}) {
      clock_.forwardTo(tick - before);
      // The first D-Bus request ends the agent's wait, whose timeout was computed before; the second is
      // answered once all due work is done.
      ASSERT_TRUE(host_.ask("properties").ok && host_.ask("properties").ok);
    }
  }

  // Returns whether the past file is uploaded at that tick and not before it.
  [[nodiscard]] bool uploadsAt(FakeClock::Time tick) {
    forwardToJustBefore(tick);
    if (uploads_.afterOldDay() > 0 && clock_.now() < tick) ADD_FAILURE() << "uploaded too early";
    return waitUntil([&] { return uploads_.afterOldDay() > 0 || clock_.now() > tick + 30s; }) &&
           uploads_.afterOldDay() > 0;
  }

  FakeClock clock_{launchDay + 23h + 50min + std::chrono::seconds(GetParam())};
  Uploads uploads_;
};

TEST_P(FleetAgent, UploadsAtSecondPredictedByModel) {
  clock_.processStarts();
  launchAgentInPanel();
  ASSERT_TRUE(isLaunched());
  ASSERT_TRUE(uploads_.waitForOldDay());
  const FakeClock::Time launch = launchTime();
  const FakeClock::Time midnight = launchDay + std::chrono::days(1);
  FakeClock::Time change = launch;
  while (change < midnight) change += 60s;

  ASSERT_NO_FATAL_FAILURE(forwardToJustBefore(change));
  ASSERT_FALSE(fs::exists(newDay));
  ASSERT_TRUE(waitUntil([] { return fs::exists(newDay); }));

  FakeClock::Time said = FirstUpload(launch).time();
  // If the launch was at the end of its second, ticks may show the next one.
  if (!uploadsAt(said)) said = FirstUpload(launch + 1s).time();
  EXPECT_TRUE(uploadsAt(said));
}

INSTANTIATE_TEST_SUITE_P(Launches, FleetAgent, testing::Values(2, 13, 25, 38, 47));

// The agent on a suspended machine: the wall clock advances, but not the clock of its timer.
class SleepingAgent : public AgentTest {
 protected:
  using Wall = std::chrono::sys_time<std::chrono::duration<double>>;

  void SetUp() override {
    AgentTest::SetUp();
    if (HasFatalFailure()) return;
    install("/tmp/Applications/Tovalin.app");
    setServers(uploads_.origin());
    Uploads::placeOldDay();
    environment_["LD_PRELOAD"] = TOVALIN_FAKETIME;
    environment_["FAKETIME_TIMESTAMP_FILE"] = file;
    environment_["FAKETIME_NO_CACHE"] = "1";
    environment_["FAKETIME_DONT_FAKE_MONOTONIC"] = "1";
  }

  void setWall(Wall time) {
    ahead_ = time - std::chrono::system_clock::now();
    const std::string draft = std::string(file) + ".new";
    std::ofstream(draft) << std::showpos << std::fixed << ahead_.count() << '\n';
    fs::rename(draft, file);
  }
  [[nodiscard]] Wall wall() const { return std::chrono::system_clock::now() + ahead_; }

  static constexpr const char* file = "/tmp/wall.clock";

  std::chrono::duration<double> ahead_{};
  Uploads uploads_;
};

TEST_F(SleepingAgent, UploadsAtSecondPredictedByModel) {
  setWall(launchDay + 23h + 50min + 10s);
  launchAgentInPanel();
  ASSERT_TRUE(isLaunched());
  ASSERT_TRUE(uploads_.waitForOldDay());
  const FakeClock::Time launch = launchTime();
  // The first tick comes one minute of the timer's clock after the launch. After this suspension the wall
  // clock then shows a minute and a second with the same number, at about the middle of the second.
  const FakeClock::Time tick = launchDay + 24h + 6h + 17min + 17s;
  const auto asleep = tick - (launch + 60s);
  setWall(Wall(launch + asleep) + 400ms);
  const fleet::Seconds from = (launch - launchDay).count() + 5;
  ASSERT_EQ(FirstUpload(launch, {{from, from + asleep.count()}}).time(), tick);

  ASSERT_TRUE(waitUntil([&] { return uploads_.afterOldDay() > 0 || wall() > tick + 30s; }, 120s));
  EXPECT_GE(wall(), tick);
  EXPECT_LE(wall(), tick + 10s);
  EXPECT_EQ(uploads_.afterOldDay(), 1);
}

}  // namespace
