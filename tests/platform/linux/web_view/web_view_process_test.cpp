// Tests the socket to the helper with small programs in place of the helper.
#include "platform/linux/web_view/web_view_process.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "tests/harness/desktop/event_loop.h"
#include "tests/harness/processes/refused_call.h"
#include "tests/harness/processes/web_processes.h"
#include "tests/platform/linux/helpers/helper_run.h"

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using platform::WebViewProcess;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using Clock = std::chrono::steady_clock;

std::vector<std::string> linesOf(const std::string& path) {
  std::vector<std::string> lines;
  std::ifstream file(path);
  for (std::string line; std::getline(file, line);) lines.push_back(line);
  return lines;
}

class WebViewProcessTest : public testing::Test {
 protected:
  void SetUp() override {
    helper_test::writeProgram(program_, "echo $$ >>'" + pids_ + "'; exec cat >>'" + received_ + "'");
  }
  void TearDown() override {
    process_.reset();
    EXPECT_TRUE(serveEventsUntil([] { return !web_view_test::hasZombie(); }));
    fs::remove_all(folder_);
  }

  void send(const std::string& address) { process_->send(program_, address); }
  [[nodiscard]] std::vector<std::string> receivedAfter(std::size_t count) const {
    static_cast<void>(test_support::waitUntil([&] { return linesOf(received_).size() >= count; }));
    return linesOf(received_);
  }
  // Kills the program that was started last; process_ has not noticed yet when this returns.
  void killProgram() const {
    ASSERT_FALSE(linesOf(pids_).empty());
    const std::string pid = linesOf(pids_).back();
    ASSERT_EQ(::kill(std::stoi(pid), SIGKILL), 0);
    ASSERT_TRUE(test_support::waitUntil([&] { return !helper_test::isAlive(pid); }));
  }

  const std::string folder_ = helper_test::newFolder();
  const std::string program_ = folder_ + "/program";
  const std::string received_ = folder_ + "/received";
  const std::string pids_ = folder_ + "/pids";
  std::unique_ptr<WebViewProcess> process_ = std::make_unique<WebViewProcess>();
};

TEST_F(WebViewProcessTest, SendsAllAddressesToOneProgram) {
  send("http://a");
  send("http://b");
  EXPECT_THAT(receivedAfter(2), ElementsAre("http://a", "http://b"));
  EXPECT_THAT(linesOf(pids_), SizeIs(1));
}

TEST_F(WebViewProcessTest, StartsNothingBeforeFirstAddress) {
  EXPECT_FALSE(fs::exists(pids_));
  send("http://a");
  EXPECT_THAT(receivedAfter(1), ElementsAre("http://a"));
}

TEST_F(WebViewProcessTest, KilledProgramIsRestartedForNextAddress) {
  send("http://a");
  ASSERT_THAT(receivedAfter(1), ElementsAre("http://a"));
  killProgram();
  send("http://b");
  EXPECT_THAT(receivedAfter(2), ElementsAre("http://a", "http://b"));
  EXPECT_THAT(linesOf(pids_), SizeIs(2));
}

TEST_F(WebViewProcessTest, KilledProgramIsReapedWithoutAnotherAddress) {
  send("http://a");
  ASSERT_THAT(receivedAfter(1), ElementsAre("http://a"));
  killProgram();
  EXPECT_TRUE(web_view_test::hasZombie());
  EXPECT_TRUE(serveEventsUntil([] { return !web_view_test::hasZombie(); }));
  send("http://b");
  EXPECT_THAT(receivedAfter(2), ElementsAre("http://a", "http://b"));
}

TEST_F(WebViewProcessTest, DestructorClosesInputOfProgram) {
  helper_test::writeProgram(program_, "cat >'" + received_ + "'; echo end >>'" + received_ + "'");
  send("http://a");
  process_.reset();
  EXPECT_THAT(receivedAfter(2), ElementsAre("http://a", "end"));
}

TEST_F(WebViewProcessTest, MissingProgramIsIgnored) {
  fs::remove(program_);
  send("http://a");
  EXPECT_TRUE(serveEventsUntil([] { return !web_view_test::hasZombie(); }));
  helper_test::writeProgram(program_, "exec cat >>'" + received_ + "'");
  send("http://b");
  EXPECT_THAT(receivedAfter(1), ElementsAre("http://b"));
}

TEST_F(WebViewProcessTest, ProgramWithoutExecutePermissionIsIgnored) {
  helper_test::writeFile(program_, "");
  fs::permissions(program_, fs::perms::owner_read);
  send("http://a");
  EXPECT_TRUE(serveEventsUntil([] { return !web_view_test::hasZombie(); }));
}

TEST_F(WebViewProcessTest, ProgramThatReadsNothingDoesNotBlock) {
  helper_test::writeProgram(program_, "exec sleep 1000");
  const std::string address = "http://a/" + std::string(1000, 'a');
  const auto begin = Clock::now();
  for (int i = 0; i < 10000; ++i) send(address);
  EXPECT_LT(Clock::now() - begin, 10s);
  const auto running = [] { return web_view_test::processesNamed("sleep"); };
  ASSERT_TRUE(test_support::waitUntil([&] { return running().size() == 1; }));
  EXPECT_EQ(::kill(running().front(), SIGKILL), 0);
}

TEST_F(WebViewProcessTest, HangingProgramIsReplacedAndKilledWithItsChildren) {
  process_ = std::make_unique<WebViewProcess>(100ms);
  helper_test::writeProgram(program_, "sleep 1000 & exec sleep 1000");
  send("http://a");
  ASSERT_TRUE(test_support::waitUntil([] { return web_view_test::processesNamed("sleep").size() == 2; }));
  helper_test::writeProgram(program_ + " new", "exec cat >>'" + received_ + "'");
  ASSERT_TRUE(test_support::waitUntil([&] {
    process_->send(program_ + " new", "http://b");
    return fs::exists(received_);
  }));
  // The address may be sent more than once while the new program starts.
  EXPECT_THAT(receivedAfter(1), testing::AllOf(SizeIs(testing::Ge(1U)), testing::Each("http://b")));
  EXPECT_TRUE(test_support::waitUntil([] { return web_view_test::processesNamed("sleep").empty(); }));
}

// The timeout of the new program starts with its first address.
TEST_F(WebViewProcessTest, ReplacementOfHangingProgramGetsWholeTimeout) {
  constexpr auto patience = 3s;
  process_ = std::make_unique<WebViewProcess>(patience);
  const std::string gate = folder_ + "/gate";
  ASSERT_EQ(::mkfifo(gate.c_str(), S_IRUSR | S_IWUSR), 0);
  helper_test::writeProgram(program_, "exec sleep 1000");
  const auto begin = Clock::now();
  send("http://a");
  helper_test::writeProgram(program_ + " new", "echo $$ >>'" + pids_ + "'; read line <'" + gate +
                                                   "'; exec cat >>'" + received_ + "'");
  ASSERT_TRUE(test_support::waitUntil([&] { return Clock::now() - begin > patience + 100ms; }));
  const auto replaced = Clock::now();
  process_->send(program_ + " new", "http://b");
  process_->send(program_ + " new", "http://c");
  ASSERT_LT(Clock::now() - replaced, patience) << "the machine is too slow for this test";
  std::ofstream(gate) << "go\n";
  EXPECT_THAT(receivedAfter(2), ElementsAre("http://b", "http://c"));
  EXPECT_THAT(linesOf(pids_), SizeIs(1));
}

TEST_F(WebViewProcessTest, ReadingProgramIsNotReplaced) {
  process_ = std::make_unique<WebViewProcess>(0ms);
  for (std::size_t i = 1; i <= 3; ++i) {
    send("http://a");
    ASSERT_THAT(receivedAfter(i), SizeIs(i));
  }
  EXPECT_THAT(linesOf(pids_), SizeIs(1));
}

TEST_F(WebViewProcessTest, MultiLineOrOverlongAddressIsNotSent) {
  send("http://a\nhttp://b");
  send("http://" + std::string(70000, 'a'));
  EXPECT_FALSE(fs::exists(pids_));
  const std::string longestAddress(std::size_t{64} * 1024, 'a');
  send(longestAddress);
  EXPECT_THAT(receivedAfter(1), ElementsAre(longestAddress));
}

TEST_F(WebViewProcessTest, ProgramInheritsNoSignalStateOrDescriptors) {
  ::setenv("REPORT", (folder_ + "/report").c_str(), 1);
  process_->send(helper_test::testProgram("reporting_program"), "http://a");
  const auto report = helper_test::awaitReport(folder_ + "/report");
  ::unsetenv("REPORT");
  EXPECT_THAT(helper_test::fieldsAfter(report, "leads session="), ElementsAre("1"));
  EXPECT_THAT(helper_test::fieldsAfter(report, "ignores "), IsEmpty());
  EXPECT_THAT(helper_test::fieldsAfter(report, "blocks "), IsEmpty());
  EXPECT_THAT(helper_test::fieldsAfter(report, "fd0=socket:"), SizeIs(1));
  EXPECT_THAT(helper_test::fieldsAfter(report, "fd1=/dev/null"), SizeIs(1));
  EXPECT_THAT(helper_test::fieldsAfter(report, "fd2=/dev/null"), SizeIs(1));
}

// Simulates a system where pidfd_open() fails with ENOSYS or EPERM.
class WebViewProcessUnwatched : public WebViewProcessTest, public testing::WithParamInterface<int> {
 protected:
  // Reaps the last program, which is otherwise reaped at the next address.
  void TearDown() override {
    ASSERT_FALSE(linesOf(pids_).empty());
    process_.reset();
    EXPECT_EQ(::waitpid(std::stoi(linesOf(pids_).back()), nullptr, 0), std::stoi(linesOf(pids_).back()));
    WebViewProcessTest::TearDown();
  }
  [[nodiscard]] static bool isReaped(const std::string& pid) { return !fs::exists("/proc/" + pid); }
  void withoutHandles(const std::function<void()>& work) {
    ASSERT_TRUE(withRefusedCall(SYS_pidfd_open, GetParam(), work));
  }
};

TEST_P(WebViewProcessUnwatched, KilledProgramIsReapedAtNextAddress) {
  withoutHandles([this] {
    send("http://a");
    ASSERT_THAT(receivedAfter(1), ElementsAre("http://a"));
    killProgram();
    const std::string dead = linesOf(pids_).back();
    EXPECT_FALSE(isReaped(dead));
    send("http://b");
    EXPECT_TRUE(isReaped(dead));
    EXPECT_THAT(receivedAfter(2), ElementsAre("http://a", "http://b"));
  });
}

TEST_P(WebViewProcessUnwatched, HangingProgramIsReplaced) {
  process_ = std::make_unique<WebViewProcess>(100ms);
  withoutHandles([this] {
    helper_test::writeProgram(program_ + " stuck", "exec sleep 1000");
    process_->send(program_ + " stuck", "http://a");
    ASSERT_TRUE(test_support::waitUntil([] { return web_view_test::processesNamed("sleep").size() == 1; }));
    const std::string stuck = std::to_string(web_view_test::processesNamed("sleep").front());
    ASSERT_TRUE(test_support::waitUntil([&] {
      send("http://b");
      return fs::exists(received_) && isReaped(stuck);
    }));
    EXPECT_THAT(receivedAfter(1), testing::Each("http://b"));
  });
}

INSTANTIATE_TEST_SUITE_P(Refusals, WebViewProcessUnwatched, testing::Values(ENOSYS, EPERM));

TEST_F(WebViewProcessTest, AddressRefusedWithEmsgsizeIsDropped) {
  send("http://a");
  ASSERT_THAT(receivedAfter(1), ElementsAre("http://a"));
  ASSERT_TRUE(withRefusedCall(SYS_sendto, EMSGSIZE, [this] { send("http://b"); }));
  send("http://c");
  EXPECT_THAT(receivedAfter(2), ElementsAre("http://a", "http://c"));
  EXPECT_THAT(linesOf(pids_), SizeIs(1));
}

}  // namespace
