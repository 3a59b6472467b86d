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

// One observable action of the program under test.
struct TimelineEvent {
  std::chrono::steady_clock::time_point time = {};
  // "pipe: -ton", "run: launchctl unload -F ...", "log 3: text", or text that the test added.
  std::string text = {};
  std::vector<std::string> arguments = {};  // of a run
  std::string searchPath = {};              // of a run: its PATH
};

// The event sources of a timeline; an empty path disables a source.
struct TimelineSources {
  std::string pipe = "/tmp/KMPIPE";             // the main application's FIFO
  std::string log = "/dev/log";                 // the system log
  std::string commands = "/tmp/timeline.sock";  // programs that are copies of TOVALIN_RECORDER
};

// Records the actions of the program under test in their order, on a thread of its own. Thread-safe.
//
// Actions of one thread stay in order: a command blocks until all earlier actions are recorded, and pipe
// messages, before which the program pauses for some milliseconds, are ordered among log entries by the
// kernel's time stamps. Messages that are in the pipe at the same time are one event.
class Timeline {
 public:
  using Predicate = std::function<bool(const TimelineEvent&)>;

  explicit Timeline(const TimelineSources& sources = {});
  Timeline(const Timeline&) = delete;
  Timeline& operator=(const Timeline&) = delete;
  ~Timeline();

  // Returns false if a requested source could not be created. Existing files are never replaced.
  [[nodiscard]] bool valid() const { return valid_; }

  void add(const std::string& text);
  void clear();

  // Returns the events so far, at least all messages and log entries written before this call.
  [[nodiscard]] std::vector<TimelineEvent> events();
  [[nodiscard]] std::vector<std::string> texts();
  // Returns the same events and removes them in one step, so that no event is lost between.
  [[nodiscard]] std::vector<TimelineEvent> take();

  // Waits for an event that matches or whose text has this prefix; returns at once if it has already
  // happened.
  [[nodiscard]] std::optional<TimelineEvent> waitFor(const Predicate& fits,
                                                     std::chrono::milliseconds timeout = kPatience);
  [[nodiscard]] std::optional<TimelineEvent> waitFor(const std::string& beginning,
                                                     std::chrono::milliseconds timeout = kPatience);

  // Sets the exit status of subsequent runs of this program; the default is 0.
  void setStatus(const std::string& program, int status);
  // Blocks subsequent runs of this program, after they are recorded, until they are released.
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
