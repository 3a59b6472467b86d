// Breaks down the start-up time: spans between calls that both the agent and bare_tray make, and the agent's
// own steps within them. A step ends with the first system call of the next step, whose time strace(1)
// prints. Only a few calls are traced, to keep the overhead small.

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "tests/bench/pairs.h"
#include "tests/bench/start_up_desktop.h"
#include "tests/harness/processes/wait_until.h"

namespace {

using bench::Command;
using Desktop = bench::StartUpDesktop;

constexpr int pairsOfStarts = 11;
constexpr const char* traceFile = "/tmp/start.trace";

// A step and the text that identifies the following call in the trace.
struct Step {
  const char* what;
  const char* end;
  bool endsSpan = false;  // the call ends a span too
};

const std::vector<Step> stepsOfAgent = {
    {"agent: its libraries loaded", "connect("},
    {"agent: bus and other instances checked, Qt started", "plugins/platforms"},
    {"agent: platform plugin of Qt loaded", ".X11-unix", true},
    {"agent: display and theme ready, session bus connected", "TovalinTray/helpers"},
    {"agent: helpers copied, appearance asked", "TovalinPorperty.plist"},
    {"agent: request for the newest version made", "GET /", true},
    {"agent: ... answered", "mount off.png"},
    {"agent: pictures read, menu built", "KMPIPE"},
    {"agent: -ton sent, with its 10 ms, bundle watched", "TovalinWebView"},
    {"agent: beacon's helper and threads started, icon made", "StatusNotifierItem-", true},
    {"agent: icon registered", "RegisterStatusNotifierItem", true},
};

const std::vector<Step> stepsOfBareTray = {
    {"plugin loaded", ".X11-unix", true},
    {"request made", "GET /", true},
    {"session bus connected", "/tmp/dbus"},
    {"icon made", "/tmp/dbus", true},
    {"icon registered", "RegisterStatusNotifierItem", true},
};

// Several steps, from the end of the previous span to a call that both programs make.
struct Span {
  const char* what;
  double pause = 0;  // pause of the agent within the span, in milliseconds
};

const std::vector<Span> spans = {
    {"both: exec to the connection to X"},
    {"both: ... to the request for a page"},
    {"both: ... to the icon on the bus, less the 10 ms", 10},
    {"both: ... to the icon's registration"},
};

// Returns the duration of each step in milliseconds, or nullopt if the trace does not contain all steps yet.
// Format of a line: PID SECONDS.MICROSECONDS call(...) = result
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
  // -D makes the program, not the tracer, the child process, so that it receives the signals.
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
  // strace writes its last lines after the program has ended.
  const bool complete = test_support::waitUntil([&] {
    std::ifstream trace(traceFile);
    return (times = timesIn(trace, steps)).has_value();
  });
  if (!complete) bench::giveUp("a step is missing in the trace of " + program[0]);
  return *times;
}

std::vector<double> spansOf(const std::vector<double>& times, const std::vector<Step>& steps) {
  std::vector<double> sums{0};
  for (std::size_t i = 0; i < steps.size(); ++i) {
    sums.back() += times[i];
    if (steps[i].endsSpan) sums.push_back(0);
  }
  sums.pop_back();
  return sums;
}

}  // namespace

int main() {
  Desktop desktop;
  std::vector<bench::Result> pairs, alone;
  for (const Span& span : spans) pairs.push_back({.what = span.what, .unit = "ms"});
  for (const Step& step : stepsOfAgent)
    alone.push_back({.what = step.what, .unit = "ms", .hasReference = false});
  for (int i = 0; i < pairsOfStarts; ++i) {
    std::vector<double> ours, bare;
    if (i % 2 == 0) ours = timesOf(desktop, desktop.agent(), stepsOfAgent);
    bare = timesOf(desktop, desktop.bareTray(), stepsOfBareTray);
    if (i % 2 != 0) ours = timesOf(desktop, desktop.agent(), stepsOfAgent);
    const std::vector<double> ourSpans = spansOf(ours, stepsOfAgent),
                              bareSpans = spansOf(bare, stepsOfBareTray);
    for (std::size_t span = 0; span < spans.size(); ++span)
      pairs[span].pairs.push_back({ourSpans[span] - spans[span].pause, bareSpans[span]});
    for (std::size_t step = 0; step < ours.size(); ++step) alone[step].pairs.push_back({ours[step], 0});
  }
  for (const auto& rows : {pairs, alone})
    for (const bench::Result& row : rows) bench::print(row);
}
