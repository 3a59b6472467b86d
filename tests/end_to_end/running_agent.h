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

// From the end of the bundle to that of the agent, half a second of it the watch's.
inline constexpr std::chrono::milliseconds longestEnd{2000};

// Runs the installed agent on a desktop and records its messages, log entries and commands on one time line.
class RunningAgent {
 public:
  RunningAgent(TestDesktop& desktop, InstalledBundle& bundle) : desktop_(desktop), installed_(bundle) {}
  RunningAgent(const RunningAgent&) = delete;
  RunningAgent& operator=(const RunningAgent&) = delete;

  // Starts the desktop, with no files of a user. Nothing is installed yet.
  void setUpAgent();
  // Waits for the web view's end, so that no beacon reaches the next test.
  void tearDownAgent();

  // Starts the installed agent; installs one first if there is none.
  void startAgent(const std::vector<std::string>& arguments = {});
  // Starts the agent and waits for its "-ton".
  void launchAgent();
  // Starts the tray host and the agent, and waits until the agent's icon is registered.
  void launchAgentInPanel();
  [[nodiscard]] test_support::ExitStatus endOfAgent();
  // How long the agent that `prepare` brings up takes from the removal of its bundle to its end: the shortest
  // of up to five tries, as a busy machine may hold up one or another. Each try has the bundle as it is now.
  [[nodiscard]] std::chrono::milliseconds timeToEnd(const std::function<void()>& prepare,
                                                    const std::function<void()>& removal);
  // Sends SIGTERM and expects a proper end.
  void terminateAgent();
  // Calls `act` while the agent is stopped by SIGSTOP, so that its watch reads all events at once.
  void whileAgentStandsStill(const std::function<void()>& act);
  // Removes the folder while the agent is stopped. The watch would treat a removal that exceeds its latency
  // as a change of the bundle, and end.
  void removeAtOnce(const std::string& folder);

  // The time line without the beacons, and the beacons alone: the agent does not wait for them, so that their
  // position varies.
  [[nodiscard]] std::vector<std::string> texts();
  [[nodiscard]] std::vector<std::string> beacons();
  // The address of a beacon of the installed agent without its server and path: "?category=C&C=V".
  [[nodiscard]] bool waitForBeacon(const std::string& query);
  // How many events begin so.
  [[nodiscard]] int count(const std::string& beginning);
  // The index of the first such event in the time line; fails the test if there is none.
  [[nodiscard]] std::size_t position(const std::string& beginning);
  [[nodiscard]] bool waitForText(const std::string& beginning) {
    return timeline_.waitFor(beginning).has_value();
  }

  // What it has written on standard error so far.
  [[nodiscard]] std::string console();
  [[nodiscard]] int linesInConsole(const std::string& line);
  [[nodiscard]] std::vector<std::string> runs();
  [[nodiscard]] int beaconsOf(const std::string& value);
  [[nodiscard]] bool waitForClickBeacon(const std::string& value) {
    return waitForBeacon("?category=clickaction&clickaction=" + value);
  }

  // What a running program has written in memory, its share of what others map too.
  [[nodiscard]] static long ownMemoryInKilobytes(pid_t process);
  // The agent's, with all the pictures that `showAll` takes. The toolkit drops one of the pictures that it
  // keeps every half a minute, which would pass for a gain, and the next window reads it again.
  [[nodiscard]] long memoryWithAllPictures(const std::function<void()>& showAll) const;
  // How many descriptors it has open.
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
