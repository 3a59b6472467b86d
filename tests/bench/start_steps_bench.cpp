// Where the time of a start goes, step by step: each step ends with the first system call of the next one,
// which strace(1) tells the time of. Only a few calls are traced, so the start takes little longer than by
// itself.

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "tests/bench/pairs.h"
#include "tests/bench/start_up_desktop.h"
#include "tests/support/wait_until.h"

namespace {

using bench::Command;
using Desktop = bench::StartUpDesktop;

constexpr int pairsOfStarts = 11;
constexpr const char* traceFile = "/tmp/start.trace";

// A step, and what stands in the trace's line of the call that follows it.
struct Step {
  const char* what;
  const char* end;
};

const std::vector<Step> stepsOfAgent = {
    {"start: libraries loaded", "connect("},
    {"... another agent looked for", ".X11-unix"},
    {"... toolkit and display ready", "TovalinTray/helpers"},
    {"... helpers copied, appearance asked", "Info.plist"},
    {"... request for the newest version made", "GET /"},
    {"... answered", "mount off.png"},
    {"... pictures read, menu built", "KMPIPE"},
    {"... -ton sent, with its 10 ms", "Info.plist"},
    {"... beacon's helper and threads started", "/tmp/dbus"},
    {"... icon registered", "RegisterStatusNotifierItem"},
};

const std::vector<Step> stepsOfBareTray = {
    {"", ".X11-unix"},
    {"", "GET /"},
    {"", "/tmp/dbus"},
    {"", "RegisterStatusNotifierItem"},
};

// Which of our steps each of the reference's stands beside.
constexpr std::size_t referencesPlaces[] = {0, 2, 6, 9};

// How long each step took, in milliseconds; nothing when the trace doesn't hold them all yet. A line of it:
// PID SECONDS.MICROSECONDS call(...) = result
std::optional<std::vector<double>> timesIn(std::istream& trace, const std::vector<Step>& steps) {
  std::vector<double> times;
  double last = 0;
  for (std::string line; times.size() < steps.size() && std::getline(trace, line);) {
    std::istringstream words(line);
    int process = 0;
    double seconds = 0;
    if (!(words >> process >> seconds)) continue;
    if (last == 0) last = seconds;
    if (line.find(steps[times.size()].end) == std::string::npos) continue;
    times.push_back((seconds - last) * 1000);
    last = seconds;
  }
  return times.size() == steps.size() ? std::optional(times) : std::nullopt;
}

std::vector<double> timesOf(Desktop& desktop, const Command& program, const std::vector<Step>& steps) {
  // -D makes the program the child and not the tracer, so that signals find it.
  Command traced = {"strace",
                    "-D",
                    "-f",
                    "--seccomp-bpf",
                    "-ttt",
                    "-s",
                    "512",
                    "-o",
                    traceFile,
                    "-e",
                    "trace=execve,connect,openat,mkdir,sendto,sendmsg"};
  traced.insert(traced.end(), program.begin(), program.end());
  static_cast<void>(desktop.startAndEnd(traced));
  std::optional<std::vector<double>> times;
  // The tracer writes its last lines after the program's end.
  const bool complete = test_support::waitUntil([&] {
    std::ifstream trace(traceFile);
    return (times = timesIn(trace, steps)).has_value();
  });
  if (!complete) bench::giveUp("a step is missing in the trace of " + program[0]);
  return *times;
}

}  // namespace

int main() {
  Desktop desktop;
  std::vector<bench::Result> rows;
  for (const Step& step : stepsOfAgent)
    rows.push_back({.what = step.what, .unit = "ms", .hasReference = false});
  for (const std::size_t place : referencesPlaces) rows[place].hasReference = true;
  for (int i = 0; i < pairsOfStarts; ++i) {
    const std::vector<double> ours = timesOf(desktop, desktop.agent(), stepsOfAgent);
    const std::vector<double> references = timesOf(desktop, desktop.bareTray(), stepsOfBareTray);
    for (std::size_t step = 0; step < ours.size(); ++step) rows[step].pairs.push_back({ours[step], 0});
    for (std::size_t step = 0; step < references.size(); ++step)
      rows[referencesPlaces[step]].pairs.back().reference = references[step];
  }
  for (const bench::Result& row : rows) bench::print(row);
}
