// Tests that the helper loads the given addresses and ends in time.
#include <gmock/gmock.h>
#include <signal.h>
#include <sys/mount.h>

#include <algorithm>
#include <filesystem>

#include "tests/harness/desktop/x_windows.h"
#include "tests/harness/processes/file_contents.h"
#include "tests/platform/linux/helpers/web_view_helper.h"

namespace web_view_test {
namespace {

using namespace std::chrono_literals;
using test_support::ExitStatus;
using testing::IsEmpty;
using testing::SizeIs;
using Clock = std::chrono::steady_clock;

using WebViewLoad = WebViewHelper;

constexpr const char* kPrivateFolder = "/tmp/runtime/TovalinTray";

std::vector<std::string> runtimeFolders() {
  if (!std::filesystem::exists(kPrivateFolder)) return {};
  std::vector<std::string> found;
  for (const auto& entry : std::filesystem::directory_iterator(kPrivateFolder)) {
    const std::string name = entry.path().filename();
    if (name.starts_with("TovalinWebView.")) found.push_back(name);
  }
  return found;
}

// Checks the requests of a load that began at `begin` after `before` earlier requests. An engine that does
// not respond between two heartbeats of 3 s is restarted and requests the page again, which may happen on a
// busy machine.
void expectOneRequest(const std::vector<Clock::time_point>& requests, std::size_t before,
                      Clock::time_point begin) {
  EXPECT_GT(requests.size(), before);
  for (std::size_t again = before + 1; again < requests.size(); ++again)
    EXPECT_GE(requests[again] - begin, 6s);
}

TEST_F(WebViewLoad, RunsScriptsOfPage) {
  startWithScript("new Image().src = '/image'; setTimeout(() => fetch('/later?a=' + (1 + 1)), 100);");
  EXPECT_TRUE(server_.waitFor("/image"));
  EXPECT_TRUE(server_.waitFor("/later?a=2"));
}

TEST_F(WebViewLoad, LastOfManyQuickLoadsIsRequested) {
  start();
  for (int i = 0; i < 20; ++i) load("/quick?" + std::to_string(i));
  EXPECT_TRUE(server_.waitFor("/quick?19"));
}

// The engine drops both loads in about one of forty starts; hundreds of runs (--gtest_repeat) reproduce it.
TEST_F(WebViewLoad, SecondOfTwoLoadsIsRequestedAtEachStart) {
  for (int i = 0; i < 20; ++i) {
    const std::string number = std::to_string(i);
    start();
    const auto begin = Clock::now();
    load("/first?" + number);
    load("/second?" + number);
    EXPECT_TRUE(server_.waitFor("/second?" + number));
    helper_.terminate();
    ASSERT_EQ(helper_.wait(), ExitStatus{.code = 0});
    helper_ = {};
    expectOneRequest(server_.timesOf("/second?" + number), 0, begin);
  }
}

// A reply without a page is an answer too: it is neither requested again nor waited for.
class WebViewAnswer : public WebViewHelper, public testing::WithParamInterface<const char*> {
 protected:
  // Returns the time from the end of the input to the end of the helper.
  [[nodiscard]] Clock::duration timeToTheEnd() {
    const std::size_t before = server_.timesOf(GetParam()).size();
    start();
    const auto begin = Clock::now();
    load(GetParam());
    EXPECT_TRUE(test_support::waitUntil([&] { return server_.timesOf(GetParam()).size() > before; },
                                        PageServer::enginesPatience));
    const auto closed = Clock::now();
    helper_.closeInput();
    EXPECT_EQ(helper_.wait(), ExitStatus{.code = 0});
    const auto time = Clock::now() - closed;
    helper_ = {};
    expectOneRequest(server_.timesOf(GetParam()), before, begin);
    EXPECT_THAT(server_.asked(), testing::Each(GetParam()));
    return time;
  }
};

TEST_P(WebViewAnswer, EndsLoad) {
  server_.answerNothing("/nothing");
  server_.askForPassword("/password");
  server_.putDownload("/download");
  server_.redirect("/refused", "http://127.0.0.1:9/nobody-listens");
  server_.redirect("/elsewhere", "mailto:a@b");
  // The time limit of a load that does not complete. The shortest of five attempts discounts delays of a busy
  // machine.
  constexpr auto leave = 10s;
  auto shortest = Clock::duration::max();
  for (int i = 0; i < 5 && shortest >= leave; ++i) shortest = std::min(shortest, timeToTheEnd());
  EXPECT_LT(shortest, leave);
}

INSTANTIATE_TEST_SUITE_P(Each, WebViewAnswer,
                         testing::Values("/nothing", "/password", "/download", "/refused", "/elsewhere"),
                         [](const auto& which) { return std::string(which.param + 1); });

TEST_F(WebViewLoad, InvalidAndOverlongLinesAreSkipped) {
  start();
  const std::string garbage("\0\x01\xff\xfe http://", 12);
  ASSERT_TRUE(helper_.writeLine(garbage));
  ASSERT_TRUE(helper_.writeLine("file:///etc/passwd"));
  ASSERT_TRUE(helper_.writeLine("http://["));
  ASSERT_TRUE(helper_.writeLine("http://%"));
  ASSERT_TRUE(helper_.writeLine(server_.address("/long?" + std::string(70000, 'a'))));
  ASSERT_TRUE(stillLoads());
  EXPECT_EQ(server_.asked().front(), "/next");
}

TEST_F(WebViewLoad, HangingServerDoesNotBlockNextLoad) {
  server_.hang("/hangs");
  start();
  load("/hangs");
  ASSERT_TRUE(server_.waitFor("/hangs"));
  EXPECT_TRUE(stillLoads());
}

TEST_F(WebViewLoad, EndlessScriptDoesNotBlockNextLoad) {
  startWithScript("setTimeout(() => { while (true); }, 50);");
  EXPECT_TRUE(stillLoads());
}

TEST_F(WebViewLoad, KilledWebProcessIsReplacedAtNextLoad) {
  startWithScript("");
  const auto dead = processesNamed("WebKitWebProces");
  ASSERT_THAT(dead, SizeIs(1));
  ASSERT_EQ(::kill(dead.front(), SIGKILL), 0);
  // If the load has not been reported yet, the helper starts another web process immediately.
  ASSERT_TRUE(test_support::waitUntil(
      [&] { return std::ranges::count(processesNamed("WebKitWebProces"), dead.front()) == 0; }));
  EXPECT_TRUE(stillLoads());
}

TEST_F(WebViewLoad, EndOfInputWaitsForLoadAndScripts) {
  server_.put("/page", "<script>fetch('/a').then(() => setTimeout(() => fetch('/b'), 500))</script>");
  start();
  load("/page");
  helper_.closeInput();
  EXPECT_EQ(helper_.wait(), ExitStatus{.code = 0});
  EXPECT_TRUE(server_.wasAsked("/b"));
  EXPECT_THAT(webProcesses(), IsEmpty());
}

TEST_F(WebViewLoad, EndOfInputWithoutLoadEndsHelper) {
  start();
  const auto begin = Clock::now();
  helper_.closeInput();
  EXPECT_EQ(helper_.wait(), ExitStatus{.code = 0});
  EXPECT_LT(Clock::now() - begin, 5s);
}

TEST_F(WebViewLoad, EndlessLoadEndsTenSecondsAfterInput) {
  server_.hang("/hangs");
  start();
  load("/hangs");
  ASSERT_TRUE(server_.waitFor("/hangs"));
  const auto begin = Clock::now();
  helper_.closeInput();
  EXPECT_EQ(helper_.wait(), ExitStatus{.code = 0});
  EXPECT_GE(Clock::now() - begin, 9900ms);
  EXPECT_LT(Clock::now() - begin, 13s);
  EXPECT_THAT(webProcesses(), IsEmpty());
}

class WebViewIdle : public WebViewHelper {
 protected:
  // Loads the page with a short idle time until `target` is requested. The idle time includes the start of
  // the engine, so it is doubled until it suffices.
  void loadUntilAskedFor(const std::string& target) {
    for (; idle_ < beforeAMinute; idle_ *= 2) {
      start({"--idle-seconds", std::to_string(idle_.count())});
      begin_ = Clock::now();
      load("/page");
      const auto asked = [&] { return server_.wasAsked(target); };
      ASSERT_TRUE(test_support::waitUntil([&] { return asked() || !helper_.running(); }, beforeAMinute));
      if (asked()) return;
    }
    FAIL() << target << " was not requested";
  }

  // Less than the patience for a load that does not finish.
  static constexpr auto beforeAMinute = 50s;
  std::chrono::seconds idle_{2};
  Clock::time_point begin_;
};

TEST_F(WebViewIdle, EndsAfterIdleTime) {
  ASSERT_NO_FATAL_FAILURE(loadUntilAskedFor("/page"));
  EXPECT_EQ(helper_.wait(beforeAMinute), ExitStatus{.code = 0});
  EXPECT_GE(Clock::now() - begin_, idle_);
  EXPECT_THAT(webProcesses(), IsEmpty());
}

// Shorter than the default. The shortest of five attempts discounts delays of a busy machine.
TEST_F(WebViewIdle, IdleTimeIsConfigurable) {
  constexpr auto unlessGiven = 15s;
  auto shortest = Clock::duration::max();
  for (int i = 0; i < 5 && shortest >= unlessGiven; ++i) {
    const std::string page = "/page?" + std::to_string(i);
    start({"--idle-seconds", "2"});
    load(page);
    ASSERT_TRUE(server_.waitFor(page));
    const auto asked = Clock::now();
    EXPECT_EQ(helper_.wait(beforeAMinute), ExitStatus{.code = 0});
    shortest = std::min(shortest, Clock::now() - asked);
    helper_ = {};
  }
  EXPECT_LT(shortest, unlessGiven);
}

TEST_F(WebViewIdle, RequestsOfPageDoNotRestartIdleTime) {
  server_.put("/page", "<script>setInterval(() => fetch('/again'), 200)</script>");
  ASSERT_NO_FATAL_FAILURE(loadUntilAskedFor("/again"));
  EXPECT_EQ(helper_.wait(beforeAMinute), ExitStatus{.code = 0});
}

TEST_F(WebViewLoad, SigtermEndsEveryProcess) {
  startWithScript("setTimeout(() => { while (true); }, 50);");
  helper_.terminate();
  EXPECT_EQ(helper_.wait(), ExitStatus{.code = 0});
  EXPECT_THAT(webProcesses(), IsEmpty());
}

TEST_F(WebViewLoad, KilledHelperEndsEveryProcess) {
  startWithScript("");
  helper_.kill();
  EXPECT_TRUE(helper_.wait());
  EXPECT_TRUE(waitForNoWebProcess());
}

TEST_F(WebViewLoad, FolderOfKilledHelperIsRemovedAtNextStart) {
  startWithScript("");
  const auto left = runtimeFolders();
  ASSERT_THAT(left, SizeIs(1));
  helper_.kill();
  ASSERT_TRUE(helper_.wait());
  ASSERT_EQ(runtimeFolders(), left);
  start();
  ASSERT_TRUE(stillLoads());
  EXPECT_THAT(runtimeFolders(), SizeIs(1));
  EXPECT_NE(runtimeFolders(), left);
}

TEST_F(WebViewLoad, FolderOfRunningHelperIsKeptByNextOne) {
  startWithScript("");
  const auto own = runtimeFolders();
  ASSERT_THAT(own, SizeIs(1));
  test_support::ChildProcess running = std::move(helper_);
  helper_ = {};
  start();
  ASSERT_TRUE(stillLoads());
  EXPECT_THAT(runtimeFolders(), testing::AllOf(SizeIs(2), testing::Contains(own.front())));
  running.terminate();
  EXPECT_EQ(running.wait(), ExitStatus{.code = 0});
  EXPECT_THAT(runtimeFolders(), testing::AllOf(SizeIs(1), testing::Not(testing::Contains(own.front()))));
}

TEST_F(WebViewLoad, ShowsNoWindow) {
  startWithScript("setTimeout(() => { document.title = 'Title'; window.focus(); fetch('/shown'); }, 100);");
  ASSERT_TRUE(server_.waitFor("/shown"));
  EXPECT_TRUE(stillLoads());
  EXPECT_THAT(test_support::windowsOn(display_->name()), IsEmpty());
}

TEST_F(WebViewLoad, LeavesNoFileAndKeepsUsersFiles) {
  // Removes the folders of killed helpers, which the next helper would remove during the comparison.
  for (const auto& folder : runtimeFolders()) std::filesystem::remove_all(kPrivateFolder + ("/" + folder));
  // The agent creates the folder and keeps it while it runs.
  std::filesystem::create_directory(kPrivateFolder);
  std::filesystem::permissions(kPrivateFolder, std::filesystem::perms::owner_all);
  const auto before = filesBelow("/tmp");
  const auto homeBefore = filesBelow("/tmp/home");
  startWithScript(
      "document.cookie = 'a=b; max-age=9999'; localStorage.setItem('a', 'b');"
      "indexedDB.open('a').onsuccess = () => fetch('/stored');");
  EXPECT_TRUE(server_.waitFor("/stored"));
  EXPECT_EQ(filesBelow("/tmp/home"), homeBefore);
  helper_.closeInput();
  EXPECT_EQ(helper_.wait(), ExitStatus{.code = 0});
  EXPECT_EQ(filesBelow("/tmp"), before);
}

std::string pidNamespaceOf(pid_t process) {
  return std::filesystem::read_symlink("/proc/" + std::to_string(process) + "/ns/pid");
}

TEST_F(WebViewLoad, WebProcessRunsInPidNamespace) {
  startWithScript("");
  const auto processes = processesNamed("WebKitWebProces");
  ASSERT_THAT(processes, SizeIs(1));
  EXPECT_NE(pidNamespaceOf(processes.front()), pidNamespaceOf(helper_.pid()));
}

// The delay exceeds the time after which an unresponsive web process is restarted.
TEST_F(WebViewLoad, SlowlyStartingWebProcessIsNotRestarted) {
  std::filesystem::copy_file("/usr/bin/bwrap", "/tmp/bwrap",
                             std::filesystem::copy_options::overwrite_existing);
  helper_test::writeProgram("/tmp/slow bwrap",
                            "case \"$*\" in *WebKitWebProcess*) echo >>/tmp/starts; sleep 8;; esac\n"
                            "exec /tmp/bwrap \"$@\"\n");
  std::filesystem::remove("/tmp/starts");
  ASSERT_EQ(::mount("/tmp/slow bwrap", "/usr/bin/bwrap", nullptr, MS_BIND, nullptr), 0);
  startWithScript("");
  EXPECT_EQ(::umount2("/usr/bin/bwrap", MNT_DETACH), 0);
  EXPECT_EQ(test_support::contentsOf("/tmp/starts"), "\n");
  EXPECT_EQ(server_.timesOf("/page").size(), 1U);
}

TEST_F(WebViewLoad, HelpIsPrintedAndUnknownArgumentRefused) {
  const auto usage = helper_test::run({helper_test::helper("TovalinWebView"), "--help"});
  EXPECT_EQ(usage.code, 0);
  EXPECT_THAT(usage.output, testing::HasSubstr("--idle-seconds"));
  EXPECT_EQ(helper_test::run({helper_test::helper("TovalinWebView"), "http://a"}).code, 2);
}

}  // namespace
}  // namespace web_view_test
