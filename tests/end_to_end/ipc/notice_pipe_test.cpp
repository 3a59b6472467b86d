#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <mutex>
#include <thread>

#include "tests/end_to_end/notices/notice_fixture.h"

namespace {

using test_support::waitUntil;

// The contents of the pipe, its writers, and other kinds of file at its path.
using Notice = NoticeTest;

TEST_F(Notice, TwoCommandsInOneReadAreUnknown) {
  launch();
  send("-non-noff");
  EXPECT_TRUE(waitForText("log 3: unknown command -non-noff"));
  EXPECT_TRUE(hides(isAccessNotice));
}

TEST_F(Notice, TextAfterNulIsIgnored) {
  launch();
  send(std::string("-non\0-noff", 10));
  EXPECT_TRUE(shows(isAccessNotice));
  EXPECT_EQ(count("log 3: "), 0);
}

TEST_F(Notice, FullBufferWithoutNulIsUnknown) {
  launch();
  send(std::string(1024, 'x'));
  const auto entry = timeline_.waitFor("log 3: unknown command xxx");
  ASSERT_TRUE(entry);
  EXPECT_LE(entry->text.size(), 1024 + std::string("log 3: unknown command ").size());
}

TEST_F(Notice, BinaryDataIsUnknown) {
  launch();
  send("\xff\xfe\x01\x80%s%n");
  EXPECT_TRUE(waitForText("log 3: unknown command "));
  send("-non");
  EXPECT_TRUE(shows(isAccessNotice));
}

TEST_F(Notice, SurvivesMegabyteOfNoise) {
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

TEST_F(Notice, PipeIsWorldWritableRegardlessOfUmask) {
  const mode_t before = ::umask(0077);
  launch();
  ::umask(before);
  struct stat status {};
  ASSERT_EQ(::stat(pipePath, &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0666u);
}

TEST_F(Notice, MessagePendingAtOpenIsHandledAtOnce) {
  ASSERT_EQ(::mkfifo(pipePath, 0600), 0);
  const test_support::FileDescriptor pipe(::open(pipePath, O_RDWR | O_CLOEXEC));
  ASSERT_EQ(::write(pipe.get(), "-non", 4), 4);
  launchAgent();
  EXPECT_TRUE(waitForText("log 6: -[nimbatrayAppDelegate notiThread] Exist pipe message!"));
  EXPECT_TRUE(shows(isAccessNotice));
}

TEST_F(Notice, RegularFileIsReadAsCommands) {
  std::ofstream(pipePath) << "-non";
  launchAgent();
  EXPECT_TRUE(shows(isAccessNotice));
  EXPECT_TRUE(std::filesystem::is_regular_file(pipePath));
}

TEST_F(Notice, FolderIsLoggedAndReadAtLimitedRate) {
  std::filesystem::create_directory(pipePath);
  launchAgent();
  ASSERT_TRUE(waitForText("log 3: read_pipe read error. errno : 21"));
  timeline_.clear();
  const auto start = std::chrono::steady_clock::now();
  ASSERT_TRUE(waitUntil([&] { return count("log 3: read_pipe read error") >= 10; }));
  // Ten reads take ten timeouts of 30 ms.
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(250));
  EXPECT_TRUE(agent_.running());
}

TEST_F(Notice, RegularFileAtItsEndIsReadAgainWhenItGrows) {
  std::ofstream(pipePath) << "-non";
  launchAgent();
  ASSERT_TRUE(shows(isAccessNotice));
  timeline_.clear();
  EXPECT_FALSE(timeline_.waitFor("log", std::chrono::milliseconds(300)));
  std::ofstream(pipePath, std::ios::app) << "-noff";
  EXPECT_TRUE(hides(isAccessNotice));
}

TEST_F(Notice, SilentWriterAtStartIsUnknownEmptyCommand) {
  ASSERT_EQ(::mkfifo(pipePath, 0600), 0);
  const test_support::FileDescriptor pipe(::open(pipePath, O_RDWR | O_CLOEXEC));
  launchAgent();
  EXPECT_TRUE(waitForText("log 3: unknown command "));
  EXPECT_LT(position("log 6: -[nimbatrayAppDelegate notiThread] Exist pipe message!"),
            position("log 3: unknown command "));
}

TEST_F(Notice, PipeWithoutReadPermissionKeepsWorking) {
  launch();
  ASSERT_EQ(::chmod(pipePath, 0), 0);
  // The permissions still allow writing, and the listener has the pipe open.
  send("-non");
  EXPECT_TRUE(shows(isAccessNotice));
}

TEST_F(Notice, ConcurrentWritersOnlyMergeTexts) {
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
  // The pipe still works: both notices can be shown and hidden.
  for (const char* message : {"-noff", "-neoff", "-non", "-neon"}) send(message);
  EXPECT_TRUE(shows(isAccessNotice) && shows(isLoadingNotice));
  for (const char* message : {"-neoff", "-noff"}) send(message);
  EXPECT_TRUE(hides(isAccessNotice));
  EXPECT_TRUE(hides(isLoadingNotice));
}

TEST_F(Notice, PathWherePipeCannotBeCreatedIsLoggedAndEndsListener) {
  // The link's target is in a missing folder: the path neither exists nor can be created.
  std::filesystem::create_symlink("/tmp/no such folder/pipe", pipePath);
  launchAgent();
  EXPECT_TRUE(waitForText("log 3: -[nimbatrayAppDelegate notiThread] make pipe failed. errno : 17"));
  EXPECT_TRUE(waitForText("log 3: -[nimbatrayAppDelegate notiThread] open pipe error. errno : 2"));
  EXPECT_TRUE(waitUntil([] { return !std::filesystem::is_symlink(pipePath); }));
  terminateAgent();
}

TEST_F(Notice, RemovedPipeIsNotRecreatedAndAgentRunsOn) {
  launch();
  std::filesystem::remove(pipePath);
  ASSERT_TRUE(host_.start(bus_));
  ASSERT_TRUE(host_.waitForEvent("registered"));
  ASSERT_TRUE(host_.click("Automount Off"));
  ASSERT_TRUE(host_.waitForEvent("clicked"));
  EXPECT_FALSE(std::filesystem::exists(pipePath));
}

TEST_F(Notice, ListenerIsIdleAfterLastWriterCloses) {
  launch();
  send("hello");
  timeline_.clear();
  // Returns the number of voluntary context switches of each thread.
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
  // The listener has more of them than the other threads of an idle agent.
  long max = 0;
  for (const auto& [thread, count] : waits()) max = std::max(max, count - before[thread]);
  const double perSecond = static_cast<double>(max) / seconds.count();
  EXPECT_LE(perSecond, 40);
  EXPECT_GE(perSecond, 5) << "the listener did not wait for 30 ms at a time";
}

// Each writer takes turns and sends only after the previous message was read.
TEST_F(Notice, MessagesOfThreeWritersAreHandledOrDropped) {
  launch();
  const char* const messages[] = {"-non", "-noff", "-neon", "-neoff", "bad"};
  const auto messageNumber = [&](int i) { return messages[(i * 7 + i / 3) % 5]; };
  std::mutex turn;
  int next = 0;
  {
    std::vector<std::jthread> writers;
    writers.reserve(3);
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
