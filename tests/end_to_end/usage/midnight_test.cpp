#include <gmock/gmock.h>

#include <filesystem>
#include <functional>

#include "tests/end_to_end/agent_test.h"
#include "tests/end_to_end/usage/fake_clock.h"
#include "tests/harness/processes/file_contents.h"
#include "tests/harness/processes/wait_until.h"
#include "tests/harness/servers/product_server_double.h"

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using test_support::contentsOf;
using test_support::ProductServerDouble;
using test_support::waitUntil;
using testing::HasSubstr;
using testing::StartsWith;

const std::string folder = "/tmp/home/.local/share/Tovalin";
const std::string dayBefore = folder + "/Tovalin_2024_03_06.dat";
const std::string newDay = folder + "/Tovalin_2024_03_07.dat";

// An agent whose clock is put forward, starting half an hour before midnight.
class Midnight : public AgentTest {
 protected:
  void SetUp() override {
    AgentTest::SetUp();
    if (HasFatalFailure()) return;
    ASSERT_TRUE(fs::exists(TOVALIN_FAKETIME));
    install("/tmp/Applications/Tovalin.app");
    setServers(server_.origin(), testServer_.origin());
    for (auto& [name, value] : FakeClock::environment()) environment_[name] = value;
  }

  // Advances the clock in steps shorter than an upload's timeout.
  [[nodiscard]] bool becomesTrueWithin(std::chrono::hours time, const std::function<bool()>& predicate) {
    const auto end = clock_.now() + time;
    while (!predicate() && clock_.now() < end) {
      clock_.forward(20s);
      if (!takesTheTimeIn()) return false;
    }
    return predicate();
  }

  FakeClock clock_{std::chrono::sys_days(std::chrono::year(2024) / 3 / 6) + 23h + 30min};
  ProductServerDouble server_;
  ProductServerDouble testServer_;

 private:
  // The first D-Bus request ends the agent's wait, whose timeout was computed before; the second is answered
  // once all due work is done, including the upload.
  [[nodiscard]] bool takesTheTimeIn() { return host_.ask("properties").ok && host_.ask("properties").ok; }
};

TEST_F(Midnight, CreatesNewDaysFileAndUploadsPreviousDay) {
  clock_.processStarts();
  launchAgentInPanel();
  ASSERT_TRUE(waitUntil([] { return contentsOf(dayBefore).find(startRecord) != std::string::npos; }));
  const std::string recorded = contentsOf(dayBefore);

  ASSERT_TRUE(becomesTrueWithin(1h, [] { return !contentsOf(newDay).empty(); }));
  // A step may skip the minute of the upload, which comes again an hour later.
  EXPECT_TRUE(becomesTrueWithin(3h, [] { return !fs::exists(dayBefore); }));

  EXPECT_THAT(contentsOf(newDay), StartsWith("TVLD2024-03-07"));
  std::vector<std::string> uploads;
  for (const auto& request : server_.requests()) {
    if (request.method == "POST") uploads.push_back(request.body);
  }
  EXPECT_THAT(uploads, testing::ElementsAre(HasSubstr(recorded)));
  EXPECT_THAT(testServer_.requests(), testing::IsEmpty());
}

}  // namespace
