#include <gmock/gmock.h>

#include <filesystem>

#include "tests/end_to_end/agent_test.h"
#include "tests/support/file_contents.h"
#include "tests/support/product_server_double.h"
#include "tests/support/wait_until.h"

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

// An agent whose clocks run 200 times as fast, from half an hour before midnight: an hour takes 18 seconds.
class Midnight : public AgentTest {
 protected:
  void SetUp() override {
    AgentTest::SetUp();
    if (HasFatalFailure()) return;
    ASSERT_TRUE(fs::exists(TOVALIN_FAKETIME));
    install("/tmp/Applications/Tovalin.app");
    setServers(server_.origin(), testServer_.origin());
    environment_["LD_PRELOAD"] = TOVALIN_FAKETIME;
    environment_["FAKETIME"] = "@2024-03-06 23:30:00 x200";
  }

  ProductServerDouble server_;
  ProductServerDouble testServer_;
};

TEST_F(Midnight, MakesTheNewDaysFileAndUploadsTheDayBefore) {
  launchAgent();
  ASSERT_TRUE(waitUntil([] { return contentsOf(dayBefore).find(startRecord) != std::string::npos; }));
  const std::string recorded = contentsOf(dayBefore);

  ASSERT_TRUE(waitUntil([] { return !contentsOf(newDay).empty(); }, 60s));
  EXPECT_TRUE(waitUntil([] { return !fs::exists(dayBefore); }, 60s));

  EXPECT_THAT(contentsOf(newDay), StartsWith("TVLD2024-03-07"));
  std::vector<std::string> uploads;
  for (const auto& request : server_.requests()) {
    if (request.method == "POST") uploads.push_back(request.body);
  }
  EXPECT_THAT(uploads, testing::ElementsAre(HasSubstr(recorded)));
  EXPECT_THAT(testServer_.requests(), testing::IsEmpty());
}

}  // namespace
