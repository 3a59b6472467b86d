#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <mutex>
#include <thread>

#include "tests/end_to_end/notice_fixture.h"

namespace {

using test_support::activeWindowOn;
using test_support::ExitStatus;
using test_support::waitForWindow;
using test_support::waitUntil;
using test_support::XWindow;
using testing::ElementsAre;

class Notice : public NoticeTest {};

TEST_F(Notice, NonShowsTheAccessNoticeAndNoffTakesItAway) {
  launch();
  send("-non");
  EXPECT_TRUE(shows(isAccessNotice));
  send("-noff");
  EXPECT_TRUE(hides(isAccessNotice));
  EXPECT_EQ(count("run: "), 0);
}

TEST_F(Notice, NeonShowsTheLoadingNoticeAndNeoffTakesItAwayAndBringsTheFrontApplicationForward) {
  launch();
  send("-neon");
  EXPECT_TRUE(shows(isLoadingNotice));
  send("-neoff");
  EXPECT_TRUE(hides(isLoadingNotice));
  const auto run = timeline_.waitFor("run: osascript");
  ASSERT_TRUE(run);
  EXPECT_THAT(
      run->arguments,
      ElementsAre("-e",
                  "tell application \"System Events\" \n set frontApp to name of first application whose "
                  "frontmost is true \n tell application frontApp \n activate \n end tell \n end tell"));
}

TEST_F(Notice, StandsInTheMiddleAndHasTheKeyboard) {
  launch();
  for (const auto& [message, notice] :
       {std::pair("-non", &isAccessNotice), std::pair("-neon", &isLoadingNotice)}) {
    send(message);
    const auto window = waitForWindow(display_.name(), notice);
    ASSERT_TRUE(window);
    EXPECT_EQ(window->height, 80);
    EXPECT_NEAR(window->x + window->width / 2.0, 640, 1);
    EXPECT_NEAR(window->y + window->height / 2.0, 400, 1);
    EXPECT_TRUE(waitUntil([&] { return activeWindowOn(display_.name()) == window->id; }));
  }
}

TEST_F(Notice, StaysAboveOtherWindows) {
  launch();
  send("-non");
  EXPECT_TRUE(waitForWindow(display_.name(), [](const XWindow& window) {
    return isAccessNotice(window) && std::ranges::count(window.states, "_NET_WM_STATE_ABOVE") == 1;
  }));
}

TEST_F(Notice, IsNotClosedByTheWindowManager) {
  launch();
  send("-non");
  const auto window = waitForWindow(display_.name(), isAccessNotice);
  ASSERT_TRUE(window);
  test_support::requestClose(display_.name(), window->id);
  runOnDisplay({"xdotool", "key", "Escape"});
  send("-neon");
  ASSERT_TRUE(shows(isLoadingNotice));
  EXPECT_TRUE(shows(isAccessNotice));
}

TEST_F(Notice, RepeatedCommandsAreDropped) {
  launch();
  for (const char* message : {"-non", "-non", "-noff", "-noff", "-non"}) send(message);
  EXPECT_TRUE(shows(isAccessNotice));
  EXPECT_EQ(count("log 3: "), 0);
}

TEST_F(Notice, AnOffWithoutAnOnDoesNothing) {
  launch();
  send("-noff");
  send("-neoff");
  send("-non");
  EXPECT_TRUE(shows(isAccessNotice));
  EXPECT_EQ(count("run: "), 0);
}

TEST_F(Notice, HidingTheOuterNoticeFirstEndsTheInnerRun) {
  launch();
  send("-neon");
  ASSERT_TRUE(shows(isLoadingNotice));
  send("-non");
  ASSERT_TRUE(shows(isAccessNotice));
  send("-neoff");
  EXPECT_TRUE(hides(isLoadingNotice));
  EXPECT_TRUE(shows(isAccessNotice));
  send("-noff");
  EXPECT_TRUE(hides(isAccessNotice));
  // Both runs are over: the main thread serves the next notice from its outermost loop, and a quit ends it.
  send("-non");
  EXPECT_TRUE(shows(isAccessNotice));
  terminateAgent();
}

TEST_F(Notice, ASecondShowingIsANewWindow) {
  launch();
  send("-non");
  const auto first = waitForWindow(display_.name(), isAccessNotice);
  send("-noff");
  ASSERT_TRUE(hides(isAccessNotice));
  send("-non");
  const auto second = waitForWindow(display_.name(), isAccessNotice);
  ASSERT_TRUE(first && second);
  EXPECT_NE(first->id, second->id);
}

TEST_F(Notice, TheMenuWorksWhileANoticeIsUp) {
  ASSERT_TRUE(host_.start(bus_));
  launch();
  ASSERT_TRUE(host_.waitForEvent("registered"));
  send("-non");
  ASSERT_TRUE(shows(isAccessNotice));
  ASSERT_TRUE(host_.click("Automount Off"));
  EXPECT_TRUE(waitForText("pipe: -u"));
}

TEST_F(Notice, QuitEndsTheAgentFromTwoNestedNotices) {
  ASSERT_TRUE(host_.start(bus_));
  launch();
  ASSERT_TRUE(host_.waitForEvent("registered"));
  send("-non");
  send("-neon");
  ASSERT_TRUE(shows(isAccessNotice) && shows(isLoadingNotice));
  timeline_.clear();
  ASSERT_TRUE(host_.click("Quit Tovalin"));
  EXPECT_EQ(endOfAgent(), ExitStatus{.code = 0});
  EXPECT_THAT(texts(), ElementsAre(killRun, "pipe: -toff", unloadRun, killRun));
  EXPECT_FALSE(std::filesystem::exists(pipePath));
  EXPECT_EQ(recordsLike(quitRecord), 2);
}

TEST_F(Notice, ASignalEndsTheAgentFromOneNoticeAndFromTwo) {
  for (const bool both : {false, true}) {
    launch();
    send("-non");
    if (both) send("-neon");
    ASSERT_TRUE(shows(isAccessNotice) && (!both || shows(isLoadingNotice)));
    terminateAgent();
    EXPECT_EQ(count(killRun), 1);
    EXPECT_EQ(recordsLike(quitRecord), both ? 2 : 1);
  }
}

TEST_F(Notice, WithoutThePictureTheNoticeIsShownAllTheSame) {
  install("/tmp/Applications/Tovalin.app");
  std::filesystem::remove(agentContents() + "/Resources/icon.png");
  launch();
  send("-non");
  EXPECT_TRUE(shows(isAccessNotice));
}

TEST_F(Notice, TwoCommandsInOneReadAreOneUnknownText) {
  launch();
  send("-non-noff");
  EXPECT_TRUE(waitForText("log 3: unknown command -non-noff"));
  EXPECT_TRUE(hides(isAccessNotice));
}

TEST_F(Notice, OfTwoCommandsWithANulBetweenOnlyTheFirstIsActedOn) {
  launch();
  send(std::string("-non\0-noff", 10));
  EXPECT_TRUE(shows(isAccessNotice));
  EXPECT_EQ(count("log 3: "), 0);
}

TEST_F(Notice, AThousandAndTwentyFourBytesWithoutANulAreOneUnknownText) {
  launch();
  send(std::string(1024, 'x'));
  const auto entry = timeline_.waitFor("log 3: unknown command xxx");
  ASSERT_TRUE(entry);
  EXPECT_LE(entry->text.size(), 1024 + std::string("log 3: unknown command ").size());
}

TEST_F(Notice, BytesThatAreNoTextAreAnUnknownCommand) {
  launch();
  send("\xff\xfe\x01\x80%s%n");
  EXPECT_TRUE(waitForText("log 3: unknown command "));
  send("-non");
  EXPECT_TRUE(shows(isAccessNotice));
}

TEST_F(Notice, AMegabyteOfNoiseIsSurvived) {
  launch();
  {
    const test_support::FileDescriptor pipe(::open(pipePath, O_WRONLY | O_CLOEXEC));
    const std::string noise(1 << 20, '\x7f');
    for (std::size_t sent = 0; sent < noise.size();) {
      const ssize_t count = ::write(pipe.get(), noise.data() + sent, noise.size() - sent);
      ASSERT_GT(count, 0);
      sent += static_cast<std::size_t>(count);
    }
  }
  ASSERT_TRUE(waitUntil([&] {
    return std::ranges::count(texts(), "log 6: read_pipe read pipe message : " + std::string(1024, '\x7f')) >
               0 ||
           count("log 3: unknown command") >= 1024;
  }));
  ASSERT_TRUE(waitUntil([&] { return count("log 3: unknown command") >= 1024; }));
  send("-non");
  EXPECT_TRUE(shows(isAccessNotice));
}

TEST_F(Notice, ThePipeCanBeWrittenByAllWhateverTheUmask) {
  const mode_t before = ::umask(0077);
  launch();
  ::umask(before);
  struct stat status {};
  ASSERT_EQ(::stat(pipePath, &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0666u);
}

TEST_F(Notice, AMessageThatWaitsWhenTheListenerOpensIsActedOnAtOnce) {
  ASSERT_EQ(::mkfifo(pipePath, 0600), 0);
  const test_support::FileDescriptor pipe(::open(pipePath, O_RDWR | O_CLOEXEC));
  ASSERT_EQ(::write(pipe.get(), "-non", 4), 4);
  launchAgent();
  EXPECT_TRUE(waitForText("log 6: -[nimbatrayAppDelegate notiThread] Exist pipe message!"));
  EXPECT_TRUE(shows(isAccessNotice));
}

TEST_F(Notice, ARegularFileIsReadAsCommands) {
  std::ofstream(pipePath) << "-non";
  launchAgent();
  EXPECT_TRUE(shows(isAccessNotice));
  EXPECT_TRUE(std::filesystem::is_regular_file(pipePath));
}

TEST_F(Notice, AFolderInItsPlaceIsToldAndFloodsNothing) {
  std::filesystem::create_directory(pipePath);
  launchAgent();
  ASSERT_TRUE(waitForText("log 3: read_pipe read error. errno : 21"));
  timeline_.clear();
  const auto start = std::chrono::steady_clock::now();
  ASSERT_TRUE(waitUntil([&] { return count("log 3: read_pipe read error") >= 10; }));
  // Ten reads take ten wait times of 30 ms.
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(250));
  EXPECT_TRUE(agent_.running());
}

TEST_F(Notice, ARegularFileThatWasReadToItsEndIsLeftInPeaceUntilItGrows) {
  std::ofstream(pipePath) << "-non";
  launchAgent();
  ASSERT_TRUE(shows(isAccessNotice));
  timeline_.clear();
  EXPECT_FALSE(timeline_.waitFor("log", std::chrono::milliseconds(300)));
  std::ofstream(pipePath, std::ios::app) << "-noff";
  EXPECT_TRUE(hides(isAccessNotice));
}

TEST_F(Notice, AConnectedWriterThatSaysNothingAtTheStartIsAnEmptyUnknownCommand) {
  ASSERT_EQ(::mkfifo(pipePath, 0600), 0);
  const test_support::FileDescriptor pipe(::open(pipePath, O_RDWR | O_CLOEXEC));
  launchAgent();
  EXPECT_TRUE(waitForText("log 3: unknown command "));
  EXPECT_LT(position("log 6: -[nimbatrayAppDelegate notiThread] Exist pipe message!"),
            position("log 3: unknown command "));
}

TEST_F(Notice, APipeThatMayNoLongerBeReadGoesOnServing) {
  launch();
  ASSERT_EQ(::chmod(pipePath, 0), 0);
  // This process may still write; the listener holds its end open.
  send("-non");
  EXPECT_TRUE(shows(isAccessNotice));
}

TEST_F(Notice, WhatWasAskedWhileTheMainThreadRestedIsAllServedAfterIt) {
  ASSERT_TRUE(host_.start(bus_));
  launch();
  ASSERT_TRUE(host_.waitForEvent("registered"));
  send("-non");
  ASSERT_TRUE(shows(isAccessNotice));
  ASSERT_TRUE(host_.click("Automount Off"));
  ASSERT_TRUE(waitForText("pipe: -u"));
  for (const char* message : {"-noff", "-non", "-neon", "-neoff", "-noff"}) send(message);
  EXPECT_TRUE(waitForText("run: osascript"));
  EXPECT_TRUE(hides(isLoadingNotice));
  EXPECT_TRUE(hides(isAccessNotice));
}

TEST_F(Notice, TheOuterNoticeTakesNoInputWhileTheInnerOneIsUp) {
  launch();
  send("-non");
  const auto outer = waitForWindow(display_.name(), isAccessNotice);
  ASSERT_TRUE(outer);
  send("-neon");
  const auto inner = waitForWindow(display_.name(), isLoadingNotice);
  ASSERT_TRUE(inner);
  // A press on what is to be seen of the outer one brings the inner one forward again.
  runOnDisplay(
      {"xdotool", "mousemove", std::to_string(outer->x + 20), std::to_string(outer->y + 70), "click", "1"});
  EXPECT_TRUE(waitUntil([&] { return activeWindowOn(display_.name()) == inner->id; }));
}

TEST_F(Notice, TheLossOfTheDisplayInsideTwoNoticesRunsTheProperEnd) {
  launch();
  send("-non");
  send("-neon");
  ASSERT_TRUE(shows(isAccessNotice) && shows(isLoadingNotice));
  display_.stop();
  EXPECT_EQ(endOfAgent(), ExitStatus{.code = 1});
  EXPECT_EQ(count(killRun), 1);
}

TEST_F(Notice, WritersThatDoNotWaitMergeTextsAndNothingWorse) {
  launch();
  {
    std::vector<std::jthread> writers;
    for (const char* message : {"-non", "-noff", "-neon", "-neoff"}) {
      writers.emplace_back([message] {
        const test_support::FileDescriptor pipe(::open(pipePath, O_WRONLY | O_CLOEXEC));
        for (int i = 0; i < 200; ++i) EXPECT_GT(::write(pipe.get(), message, std::strlen(message)), 0);
      });
    }
  }
  // Whatever came of it, the pipe serves on: at the end both notices can be had and taken away.
  for (const char* message : {"-noff", "-neoff", "-non", "-neon"}) send(message);
  EXPECT_TRUE(shows(isAccessNotice) && shows(isLoadingNotice));
  for (const char* message : {"-neoff", "-noff"}) send(message);
  EXPECT_TRUE(hides(isAccessNotice));
  EXPECT_TRUE(hides(isLoadingNotice));
}

TEST_F(Notice, APlaceWhereNothingCanBeMadeIsToldAndTheListenerEnds) {
  // A link whose end lies in a folder that isn't there: nothing to find, nothing to make.
  std::filesystem::create_symlink("/tmp/no such folder/pipe", pipePath);
  launchAgent();
  EXPECT_TRUE(waitForText("log 3: -[nimbatrayAppDelegate notiThread] make pipe failed. errno : 17"));
  EXPECT_TRUE(waitForText("log 3: -[nimbatrayAppDelegate notiThread] open pipe error. errno : 2"));
  EXPECT_TRUE(waitUntil([] { return !std::filesystem::is_symlink(pipePath); }));
  terminateAgent();
}

TEST_F(Notice, ARemovedPipeIsNotMadeAgainAndTheAgentGoesOn) {
  launch();
  std::filesystem::remove(pipePath);
  ASSERT_TRUE(host_.start(bus_));
  ASSERT_TRUE(host_.waitForEvent("registered"));
  ASSERT_TRUE(host_.click("Automount Off"));
  ASSERT_TRUE(host_.waitForEvent("clicked"));
  EXPECT_FALSE(std::filesystem::exists(pipePath));
}

TEST_F(Notice, AfterTheLastWriterHasLeftTheListenerOnlyWaits) {
  launch();
  send("hello");
  timeline_.clear();
  // How often each thread has waited so far.
  const auto waits = [&] {
    std::map<std::string, long> counts;
    const std::filesystem::directory_iterator threads("/proc/" + std::to_string(agent_.pid()) + "/task");
    for (const auto& thread : threads) {
      std::ifstream status(thread.path() / "status");
      for (std::string line; std::getline(status, line);) {
        if (line.starts_with("voluntary_ctxt_switches:")) counts[thread.path()] = std::stol(line.substr(24));
      }
    }
    return counts;
  };
  auto before = waits();
  const auto start = std::chrono::steady_clock::now();
  EXPECT_FALSE(timeline_.waitFor("log", std::chrono::milliseconds(1000)));
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
  // The listener is the busiest of the threads of an agent that has nothing to do.
  long most = 0;
  for (const auto& [thread, count] : waits()) most = std::max(most, count - before[thread]);
  const double aSecond = static_cast<double>(most) / seconds.count();
  EXPECT_LE(aSecond, 40);
  EXPECT_GE(aSecond, 5) << "the listener does not wait in steps of 30 ms";
}

// Each waits for its turn, and sends only when the message before it has been read.
TEST_F(Notice, A150MessagesOfThreeWritersAreEachActedOnOrDropped) {
  launch();
  const char* const messages[] = {"-non", "-noff", "-neon", "-neoff", "bad"};
  const auto messageNumber = [&](int i) { return messages[(i * 7 + i / 3) % 5]; };
  std::mutex turn;
  int next = 0;
  {
    std::vector<std::jthread> writers;
    for (int writer = 0; writer < 3; ++writer) {
      writers.emplace_back([&] {
        for (;;) {
          const std::lock_guard lock(turn);
          if (next == 150) return;
          send(messageNumber(next++));
        }
      });
    }
  }
  bool access = false, loading = false;
  int unknown = 0, loadingHidden = 0;
  for (int i = 0; i < 150; ++i) {
    const std::string message = messageNumber(i);
    if (message == "bad") ++unknown;
    if (message == "-neoff" && loading) ++loadingHidden;
    if (message == "-non" || message == "-noff") access = message == "-non";
    if (message == "-neon" || message == "-neoff") loading = message == "-neon";
  }
  EXPECT_TRUE(waitUntil([&] { return count("run: osascript") == loadingHidden; })) << count("run: osascript");
  EXPECT_TRUE(access ? shows(isAccessNotice) : hides(isAccessNotice));
  EXPECT_TRUE(loading ? shows(isLoadingNotice) : hides(isLoadingNotice));
  EXPECT_EQ(count("log 6: read_pipe read pipe message : "), 150);
  EXPECT_EQ(count("log 3: unknown command bad"), unknown);
  EXPECT_EQ(count("log 3: "), unknown);
}

}  // namespace
