#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "tests/end_to_end/installed_bundle.h"
#include "tests/end_to_end/test_desktop.h"
#include "tests/harness/processes/child_process.h"
#include "tests/harness/processes/timeline.h"

// From the loss of the bundle to the end of the agent, including the watch's latency of 0.5 s.
inline constexpr std::chrono::milliseconds maxTimeToEnd{2000};

// Runs the installed agent on a desktop and records its messages, log entries and commands on one timeline.
class RunningAgent {
 public:
  RunningAgent(TestDesktop& desktop, InstalledBundle& bundle) : desktop_(desktop), installed_(bundle) {}
  RunningAgent(const RunningAgent&) = delete;
  RunningAgent& operator=(const RunningAgent&) = delete;

  // Starts the desktop, without user files. Installs no bundle.
  void setUpAgent();
  // Waits for the web view's end, so that no beacon arrives during the next test.
  void tearDownAgent();

  // Starts the installed agent; installs it first if necessary.
  void startAgent(const std::vector<std::string>& arguments = {});
  // Starts the agent and waits for its "-ton".
  void launchAgent();
  // Starts the tray host and the agent, and waits until the agent's icon is registered.
  void launchAgentInPanel();
  [[nodiscard]] test_support::ExitStatus endOfAgent();
  // Returns the time from the removal of the bundle to the end of an agent that `prepare` starts: the minimum
  // of up to five runs, because a busy machine may delay one. Each run uses a copy of the current bundle.
  [[nodiscard]] std::chrono::milliseconds timeToEnd(const std::function<void()>& prepare,
                                                    const std::function<void()>& removal);
  // Sends SIGTERM and expects a proper end.
  void terminateAgent();
  // Calls `act` while the agent is stopped by SIGSTOP, so that its watch reads all events at once.
  void whileAgentIsStopped(const std::function<void()>& act);
  // Removes the folder while the agent is stopped. Otherwise the watch would treat a removal that exceeds its
  // latency as a change of the bundle, and end.
  void removeAtOnce(const std::string& folder);

  // Return the timeline without beacons, and the beacons alone, because the agent does not wait for them and
  // their position varies.
  [[nodiscard]] std::vector<std::string> texts();
  [[nodiscard]] std::vector<std::string> beacons();
  // Waits for a beacon, given without server and path: "?category=C&C=V".
  [[nodiscard]] bool waitForBeacon(const std::string& query);
  // Returns how many events have this prefix.
  [[nodiscard]] int count(const std::string& beginning);
  // Returns the index of the first event with this prefix; fails the test if there is none.
  [[nodiscard]] std::size_t position(const std::string& beginning);
  [[nodiscard]] bool waitForText(const std::string& beginning) {
    return timeline_.waitFor(beginning).has_value();
  }

  // Returns all standard error output so far.
  [[nodiscard]] std::string console();
  [[nodiscard]] int linesInConsole(const std::string& line);
  [[nodiscard]] std::vector<std::string> runs();
  [[nodiscard]] int beaconsOf(const std::string& value);
  [[nodiscard]] bool waitForClickBeacon(const std::string& value) {
    return waitForBeacon("?category=clickaction&clickaction=" + value);
  }

  // Returns the memory that a running program has written, including its proportional share of shared pages.
  [[nodiscard]] static long ownMemoryInKilobytes(pid_t process);
  // Returns the agent's memory while all pictures are loaded, which `showAll` achieves. Qt evicts a cached
  // picture every 30 s, which would look like a reduction, and the next window loads it again.
  [[nodiscard]] long memoryWithAllPictures(const std::function<void()>& showAll) const;
  // Returns the number of open descriptors.
  [[nodiscard]] long descriptors() const;

  test_support::Timeline timeline_;
  test_support::ChildProcess agent_;

 private:
  [[nodiscard]] long settledMemory() const;

  TestDesktop& desktop_;
  InstalledBundle& installed_;
  std::string console_;
};

inline constexpr const char* unloadRun =
    "run: launchctl unload -F /Library/LaunchAgents/com.kesmoor.tovalintrayagent.plist";
inline constexpr const char* killRun = "run: killall tovalinnotification";
