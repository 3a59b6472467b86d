#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <functional>
#include <thread>
#include <vector>

#include "tests/end_to_end/ipc/hostile_pipes_fixture.h"
#include "tests/harness/collect_messages.h"
#include "tests/harness/processes/wait_until.h"
#include "tests/harness/sanitizer.h"

namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;
using test_support::FileDescriptor;
using test_support::waitUntil;

// In kilobytes. The address sanitizer retains up to 256 MiB of freed memory, and the thread sanitizer a
// history of each thread.
constexpr long maxGrowth(long usual) {
  if (test_support::isAddressSanitized) return 300L * 1024;
  return test_support::isThreadSanitized ? usual + 32L * 1024 : usual;
}
constexpr long kMaxGrowth = maxGrowth(1024);
constexpr long kMaxGrowthWithNotices = maxGrowth(4096);

// As long as a record can hold.
const std::string deviceName(63, 'x');
const std::string deviceMessage = test_support::deviceMessage(deviceName);

// Pads a message to the size of one read, so that the next message is read separately. Returns false if the
// pipe is full.
bool writeWholeRead(const FileDescriptor& pipe, std::string text) {
  text.resize(1024, '\0');
  return ::write(pipe.get(), text.data(), text.size()) == static_cast<ssize_t>(text.size());
}

FileDescriptor openPipe() {
  return FileDescriptor(::open(pipePath, O_WRONLY | O_NONBLOCK | O_CLOEXEC));
}

// Writes these messages in turn into the notification pipe, as fast as the agent reads.
class Flood {
 public:
  explicit Flood(std::vector<std::string> messages) : messages_(std::move(messages)) {}

  [[nodiscard]] int sent() const { return sent_; }
  [[nodiscard]] bool hasLasted(std::chrono::milliseconds time) const {
    return std::chrono::steady_clock::now() - begin_ >= time;
  }
  void end() {
    thread_.request_stop();
    thread_.join();
  }

 private:
  void run(const std::stop_token& stop) {
    // The reader may close the pipe during the flood.
    sigset_t broken;
    sigemptyset(&broken);
    sigaddset(&broken, SIGPIPE);
    ::pthread_sigmask(SIG_BLOCK, &broken, nullptr);
    const FileDescriptor pipe = openPipe();
    while (!stop.stop_requested()) {
      if (writeWholeRead(pipe, messages_[static_cast<std::size_t>(sent_) % messages_.size()])) {
        ++sent_;
        continue;
      }
      pollfd room{.fd = pipe.get(), .events = POLLOUT, .revents = 0};
      ::poll(&room, 1, 10);
    }
  }

  std::vector<std::string> messages_;
  std::atomic<int> sent_ = 0;
  std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
  std::jthread thread_{[this](const std::stop_token& stop) { run(stop); }};
};

// Writes one message during the flood; does not wait until it is read.
void writeInFlood(const std::string& text) {
  const FileDescriptor pipe = openPipe();
  EXPECT_TRUE(waitUntil([&] { return writeWholeRead(pipe, text); }));
}

// Another local user writes into the notification pipe without pause.
class PipeFlood : public HostilePipes {
 protected:
  void showAndHide(const std::string& on, const std::string& off,
                   bool (*notice)(const test_support::XWindow&)) {
    send(on);
    ASSERT_TRUE(shows(notice));
    send(off);
    ASSERT_TRUE(hides(notice));
  }
  // Starts the agent and shows both notices once, so that their pictures are loaded.
  void startWithPictures() {
    startAndListen();
    showAndHide("-non", "-noff", isAccessNotice);
    showAndHide("-neon", "-neoff", isLoadingNotice);
  }

  [[nodiscard]] bool isUp(bool (*notice)(const test_support::XWindow&)) const {
    return test_support::waitForWindow(display_.name(), notice, 0ms).has_value();
  }
  // Waits for the condition; reads and discards the log meanwhile.
  [[nodiscard]] bool comes(const std::function<bool()>& condition,
                           std::chrono::milliseconds limit = test_support::kPatience) {
    const auto becomesTrue = [&] {
      timeline_.clear();
      return condition();
    };
    return waitUntil(becomesTrue, limit);
  }

  // Floods the pipe for some seconds and expects the message `behind` to be handled in the usual time.
  // Returns the number of messages that the pipe accepted.
  int floodAndAsk(const std::vector<std::string>& messages, const std::string& behind,
                  bool (*notice)(const test_support::XWindow&)) {
    const long memory = ownMemoryInKilobytes(agent_.pid());
    long max = 0;
    Flood flood(messages);
    EXPECT_TRUE(comes([&] {
      max = std::max(max, ownMemoryInKilobytes(agent_.pid()));
      return flood.hasLasted(4s);
    }));
    flood.end();
    writeInFlood(behind);
    EXPECT_TRUE(comes([&] { return isUp(notice); })) << "after " << flood.sent() << " messages";
    EXPECT_LE(std::max(max, ownMemoryInKilobytes(agent_.pid())) - memory, kMaxGrowthWithNotices)
        << "after " << flood.sent() << " messages";
    RecordProperty("messages", flood.sent());
    return flood.sent();
  }
};

TEST_F(PipeFlood, UnknownCommandsKeepMemoryBoundedAndNoticesAndMenuWork) {
  // Each takes a hundred times as long under the thread sanitizer.
  constexpr int messages = test_support::isThreadSanitized ? 10'000 : 100'000;
  startAndListen();
  showAndHide("-non", "-noff", isAccessNotice);
  const long memory = ownMemoryInKilobytes(agent_.pid());

  Flood flood({"no such command"});
  ASSERT_TRUE(comes([&] { return flood.sent() > messages / 10; }));
  writeInFlood("-non");
  EXPECT_TRUE(comes([&] { return isUp(isAccessNotice); }));
  ASSERT_TRUE(host_.click("Automount Off"));
  EXPECT_TRUE(comes([&] { return host_.waitForEvent("clicked", 0ms).has_value(); }));
  writeInFlood("-noff");
  EXPECT_TRUE(comes([&] { return !isUp(isAccessNotice); }));
  EXPECT_TRUE(comes([&] { return flood.sent() >= messages; }, 60s));
  flood.end();

  writeInFlood("-non");
  EXPECT_TRUE(comes([&] { return isUp(isAccessNotice); }));
  EXPECT_LE(ownMemoryInKilobytes(agent_.pid()) - memory, kMaxGrowth);
  expectProperEnd();
}

TEST_F(PipeFlood, AccessNoticesKeepMemoryBoundedAndNextLoadingNoticeIsShown) {
  startWithPictures();
  floodAndAsk({"-non", "-noff"}, "-neon", isLoadingNotice);
  expectProperEnd();
}

TEST_F(PipeFlood, LoadingNoticesKeepMemoryBoundedAndNextAccessNoticeIsShown) {
  startWithPictures();
  floodAndAsk({"-neon", "-neoff"}, "-non", isAccessNotice);
  expectProperEnd();
}

TEST_F(PipeFlood, NoticesKeepMenuAndQuitWorking) {
  startWithPictures();
  Flood flood({"-non", "-noff"});
  ASSERT_TRUE(comes([&] { return flood.hasLasted(1s); }));
  ASSERT_TRUE(host_.click("Automount Off"));
  EXPECT_TRUE(comes([&] { return host_.waitForEvent("clicked", 0ms).has_value(); }));
  expectProperEnd();
  flood.end();
}

constexpr const char* mergingLogged =
    "log 3: -[nimbatrayAppDelegate notiThread] 64 notice calls wait for the main thread; merging";

// The main thread is blocked in the command that activates the front application.
class BlockedMainThread : public HostilePipes {
 protected:
  void SetUp() override {
    HostilePipes::SetUp();
    if (HasFatalFailure()) return;
    startAndListen();
    timeline_.hold("osascript");
    send("-neon");
    ASSERT_TRUE(shows(isLoadingNotice));
    send("-neoff");
    ASSERT_TRUE(waitForText("run: osascript"));
  }
  // Writes each message so that it is read separately.
  static void writeAll(const std::vector<std::string>& messages, int times) {
    for (int i = 0; i < times; ++i)
      for (const std::string& message : messages) writeInFlood(message);
  }
  // Expects that a record after the messages is written while the main thread is still blocked.
  void expectRecordBehindThem() {
    writeInFlood(deviceMessage);
    EXPECT_TRUE(waitUntil([] { return recordsLike("\x3f" + deviceName) == 1; }));
  }
};

TEST_F(BlockedMainThread, RecordBehindMoreThanMaximumNoticeCommandsIsWritten) {
  writeAll({"-non", "-noff"}, 40);
  expectRecordBehindThem();
  EXPECT_EQ(count(mergingLogged), 1);
  timeline_.release("osascript");
  expectProperEnd();
}

TEST_F(BlockedMainThread, NoticeRequestedLastIsShown) {
  writeAll({"-non", "-noff"}, 40);
  writeInFlood("-non");
  expectRecordBehindThem();
  timeline_.release("osascript");
  EXPECT_TRUE(shows(isAccessNotice));
  send("-noff");
  EXPECT_TRUE(hides(isAccessNotice));
  expectNoticesAndProperEnd();
}

TEST_F(BlockedMainThread, NoticeHiddenByLastRequestIsHidden) {
  writeInFlood("-non");
  writeAll({"-neon", "-neoff"}, 40);
  writeInFlood("-noff");
  expectRecordBehindThem();
  timeline_.release("osascript");
  send("-neon");
  EXPECT_TRUE(shows(isLoadingNotice));
  EXPECT_TRUE(hides(isAccessNotice));
  expectProperEnd();
}

TEST_F(PipeFlood, EachRecordIsWrittenAndNextNoticeIsShown) {
  startWithPictures();
  const int sent = floodAndAsk({deviceMessage}, "-non", isAccessNotice);
  EXPECT_EQ(recordsLike("\x3f" + deviceName), sent);
  expectProperEnd();
}

}  // namespace
