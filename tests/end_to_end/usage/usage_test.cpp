#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <ctime>
#include <filesystem>
#include <fstream>
#include <future>

#include "tests/end_to_end/agent_test.h"
#include "tests/harness/collect_messages.h"
#include "tests/harness/processes/wait_until.h"
#include "tests/harness/servers/product_server_double.h"

namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;
using test_support::ExitStatus;
using test_support::ProductServerDouble;
using test_support::waitUntil;

constexpr const char* folder = "/tmp/home/.local/share/Tovalin";

void write(const std::string& path, const std::string& bytes) {
  fs::create_directories(fs::path(path).parent_path());
  std::ofstream(path, std::ios::binary) << bytes;
}

class Usage : public AgentTest {
 protected:
  void SetUp() override {
    AgentTest::SetUp();
    if (HasFatalFailure()) return;
    install("/tmp/Applications/Tovalin.app");
    setServers(server_.origin(), testServer_.origin());
  }

  static void send(const std::string& message) {
    const test_support::FileDescriptor pipe(::open("/tmp/KMNOTIPIPE", O_WRONLY | O_CLOEXEC));
    ASSERT_EQ(::write(pipe.get(), message.data(), message.size()), static_cast<ssize_t>(message.size()));
  }

  [[nodiscard]] bool waitForListener() {
    return waitUntil([] {
      const test_support::FileDescriptor pipe(::open("/tmp/KMNOTIPIPE", O_WRONLY | O_NONBLOCK | O_CLOEXEC));
      return pipe.valid();
    });
  }

  void launchTwice() {
    for (int i = 0; i < 2; ++i) {
      ASSERT_NO_FATAL_FAILURE(launchAgent());
      terminateAgent();
      timeline_.clear();
    }
  }

  static int dayOfTheYear() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    ::localtime_r(&now, &local);
    return local.tm_yday;
  }

  ProductServerDouble server_;
  ProductServerDouble testServer_;
};

TEST_F(Usage, LaunchWritesHeaderAndOneStartRecord) {
  launchAgent();
  ASSERT_TRUE(waitForListener());
  EXPECT_EQ(recordedUsage().substr(0, 4), "TVLD");
  EXPECT_EQ(recordsLike(startRecord), 1);
  EXPECT_EQ(recordsLike(quitRecord), 0);
}

TEST_F(Usage, QuitFromMenuWritesTwoQuitRecords) {
  launchAgentInPanel();
  ASSERT_TRUE(host_.click("Quit Tovalin"));
  EXPECT_EQ(endOfAgent(), ExitStatus{.code = 0});
  EXPECT_EQ(recordsLike(startRecord), 1);
  EXPECT_EQ(recordsLike(quitRecord), 2);
}

TEST_F(Usage, SignalWritesOneQuitRecord) {
  launchAgent();
  terminateAgent();
  EXPECT_EQ(recordsLike(quitRecord), 1);
}

TEST_F(Usage, SecondLaunchOfDayAppends) {
  for (int day = -1; day != dayOfTheYear();) {
    fs::remove_all(folder);
    day = dayOfTheYear();
    launchTwice();
    ASSERT_FALSE(HasFatalFailure());
  }
  EXPECT_EQ(static_cast<int>(usageFiles().size()), 1);
  EXPECT_EQ(recordsLike("TVLD"), 1);
  EXPECT_EQ(recordsLike(startRecord), 2);
  EXPECT_EQ(recordsLike(quitRecord), 2);
}

TEST_F(Usage, EventsAndTransfersFromPipeAreRecorded) {
  launchAgent();
  ASSERT_TRUE(waitForListener());
  send(test_support::deviceMessage());
  EXPECT_TRUE(waitUntil([] { return recordsLike("\x04\x13") == 1; }));
  EXPECT_TRUE(recordedUsage().ends_with("\x06My Pad"));
  send(test_support::kTransferMessage);
  EXPECT_TRUE(waitUntil([] { return recordedUsage().ends_with("\x07\x08\x00\x10\0\0\0\0\0\0\x03mp4"s); }));
}

TEST_F(Usage, UnknownDataCommandIsLoggedAndListenerContinues) {
  launchAgent();
  ASSERT_TRUE(waitForListener());
  send(test_support::collectMessage(5));
  EXPECT_TRUE(timeline_.waitFor([](const auto& event) { return event.text == "log 3: unknown command"; }));
  send(test_support::collectMessage(4, "\0"s));
  EXPECT_TRUE(waitUntil([] { return recordedUsage().ends_with("\x07Unknown"); }));
}

TEST_F(Usage, PastDaysAreUploadedAndDeletedAndTodaysFileStays) {
  write(folder + "/Tovalin_2024_03_07.dat"s, "yesterday's bytes\0\xff"s);
  launchAgent();
  ASSERT_TRUE(server_.waitForRequests("POST", 1));
  EXPECT_TRUE(waitUntil([] { return !fs::exists(folder + "/Tovalin_2024_03_07.dat"s); }));
  const auto requests = server_.requests();
  EXPECT_EQ(requests.back().target, "/product/nimba/userlog/postdata.php");
  EXPECT_THAT(requests.back().body, testing::HasSubstr("yesterday's bytes\0\xff"s));
  EXPECT_EQ(recordsLike(startRecord), 1);
  EXPECT_THAT(testServer_.requests(), testing::IsEmpty());
}

TEST_F(Usage, StoredServerOptionZeroUploadsToTestServer) {
  write(folder + "/TovalinServerOption.txt"s, "0");
  write(folder + "/Tovalin_2024_03_07.dat"s, "bytes");
  launchAgent();
  ASSERT_TRUE(testServer_.waitForRequests("POST", 1));
  EXPECT_TRUE(waitUntil([] { return !fs::exists(folder + "/Tovalin_2024_03_07.dat"s); }));
  for (const auto& request : server_.requests()) EXPECT_NE(request.method, "POST");
}

TEST_F(Usage, UploadUnderWayDoesNotDelayEnd) {
  std::promise<void> release;
  server_.judgeUploads([released = release.get_future().share()](const test_support::ServedRequest&) {
    released.wait();
    return ProductServerDouble::Reply{};
  });
  write(folder + "/Tovalin_2024_03_07.dat"s, "bytes");
  launchAgent();
  ASSERT_TRUE(server_.waitForRequests("POST", 1));
  terminateAgent();
  release.set_value();
  EXPECT_TRUE(fs::exists(folder + "/Tovalin_2024_03_07.dat"s));
}

}  // namespace
