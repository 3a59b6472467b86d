#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "tests/harness/processes/log_socket.h"
#include "tests/harness/processes/message_fifo.h"
#include "tests/harness/processes/run_listener.h"
#include "tests/harness/processes/wait_until.h"
#include "tests/harness/processes/wake_event.h"

namespace test_support {

// One thing that the program under test did, as seen from outside.
struct TimelineEvent {
  std::chrono::steady_clock::time_point time = {};
  // "pipe: -ton", "run: launchctl unload -F ...", "log 3: text", or what the test added.
  std::string text = {};
  std::vector<std::string> arguments = {};  // of a run, one by one
  std::string searchPath = {};              // of a run: its PATH
};

// Where a timeline listens; an empty path leaves that source out.
struct TimelineSources {
  std::string pipe = "/tmp/KMPIPE";             // the main application's FIFO
  std::string log = "/dev/log";                 // the system log
  std::string commands = "/tmp/timeline.sock";  // programs that are copies of TOVALIN_RECORDER
};

// Records what the program under test does in the order in which it does it, on a thread of its own. Its
// methods may be called on any thread.
//
// What one thread of the program does stays in order: a command runs on only after all that was written
// before it has been recorded, and a message into the pipe, before which the program pauses for some
// milliseconds, is told from log entries before and after it by the kernel's time stamps. Messages that reach
// the pipe at once are one event.
class Timeline {
 public:
  using Predicate = std::function<bool(const TimelineEvent&)>;

  explicit Timeline(const TimelineSources& sources = {});
  Timeline(const Timeline&) = delete;
  Timeline& operator=(const Timeline&) = delete;
  ~Timeline();

  // False where a source that was asked for could not be made; nothing that exists already is taken over.
  [[nodiscard]] bool valid() const { return valid_; }

  void add(const std::string& text);
  void clear();

  // What has come so far, with certainty the messages and log entries that were written before this call.
  [[nodiscard]] std::vector<TimelineEvent> events();
  [[nodiscard]] std::vector<std::string> texts();

  // The first event, an earlier one or one to come, that fits, or whose text begins so.
  [[nodiscard]] std::optional<TimelineEvent> waitFor(const Predicate& fits,
                                                     std::chrono::milliseconds timeout = kPatience);
  [[nodiscard]] std::optional<TimelineEvent> waitFor(const std::string& beginning,
                                                     std::chrono::milliseconds timeout = kPatience);

  // The status with which runs of this program end from now on; 0 for those that are not named.
  void setStatus(const std::string& program, int status);
  // Runs of this program are recorded, but go on only once they are released.
  void hold(const std::string& program);
  void release(const std::string& program);

 private:
  void run();
  void collect();
  void takeInRuns();
  void answer(const CommandRun& run);
  [[nodiscard]] std::vector<int> watched() const;

  MessageFifo pipe_;
  LogSocket log_;
  RunListener commands_;
  bool valid_;
  WakeEvent stop_;
  std::mutex mutex_;
  std::condition_variable arrived_;
  std::vector<TimelineEvent> events_;
  std::map<std::string, int> statuses_;
  std::set<std::string> held_;
  std::vector<CommandRun> waiting_;
  std::thread thread_;
};

}  // namespace test_support
