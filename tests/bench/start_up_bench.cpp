// Measures start-up time, memory and idle load of the agent against bare_tray.

#include <chrono>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "tests/bench/pairs.h"
#include "tests/bench/process_tree.h"
#include "tests/bench/start_up_desktop.h"
#include "tests/harness/processes/child_process.h"

namespace {

using namespace std::chrono_literals;
using bench::Command;
using Desktop = bench::StartUpDesktop;

constexpr int pairsOfStarts = 21;
constexpr int pairsOfMemory = 7;
constexpr int pairsWithBeacons = 3;
constexpr auto pauseBeforeFirstMessage = 10ms;
constexpr auto settled = 2s;
constexpr auto webViewGone = 120s;
constexpr auto timeOfRest = 30s;

void measureStarts(Desktop& desktop) {
  const auto ours = [&] { return (desktop.startAndEnd(desktop.agent()) - pauseBeforeFirstMessage).count(); };
  const auto reference = [&] { return desktop.startAndEnd(desktop.bareTray()).count(); };
  bench::print({.what = "start to icon, less the 10 ms pause before -ton",
                .unit = "ms",
                .pairs = bench::runPairs(pairsOfStarts, ours, reference)});
}

bench::Memory settledMemory(Desktop& desktop, const Command& program) {
  static_cast<void>(desktop.start(program));
  std::this_thread::sleep_for(settled);
  const bench::Memory memory = bench::memoryOf(desktop.tree());
  desktop.end();
  return memory;
}

// Pss depends on which other programs run; Private_Dirty does not.
void measureMemory(Desktop& desktop) {
  std::vector<double> ourOwn, referencesOwn;
  const auto measure = [&](const Command& measured, std::vector<double>& own) {
    const bench::Memory memory = settledMemory(desktop, measured);
    own.push_back(memory.own);
    return memory.proportional;
  };
  bench::print({.what = "memory 2 s after the start, no web view (Pss)",
                .unit = "KiB",
                .pairs = bench::runPairs(
                    pairsOfMemory, [&] { return measure(desktop.agent(), ourOwn); },
                    [&] { return measure(desktop.bareTray(), referencesOwn); })});
  bench::Result own{.what = "... of it written by the program itself", .unit = "KiB"};
  for (std::size_t i = 0; i < ourOwn.size(); ++i) own.pairs.push_back({ourOwn[i], referencesOwn[i]});
  bench::print(own);
}

struct Rest {
  double wakeUps = 0;  // per second
  double load = 0;     // per cent of a core
};

Rest restOf(const std::vector<pid_t>& tree) {
  const bench::Work before = bench::workOf(tree);
  std::this_thread::sleep_for(timeOfRest);
  const bench::Work work = bench::workOf(tree);
  const auto seconds = std::chrono::duration<double>(timeOfRest).count();
  return {.wakeUps = (work.wakeUps - before.wakeUps) / seconds,
          .load = 100 * (work.processor - before.processor).count() / seconds};
}

Rest restOfBareWait() {
  test_support::ChildProcess program;
  if (!program.start({TOVALIN_BARE_WAIT})) bench::giveUp("bare_wait can't be run");
  std::this_thread::sleep_for(settled);
  const Rest rest = restOf({program.pid()});
  if (!program.running()) bench::giveUp("bare_wait did not wait");
  return rest;
}

void printOne(const std::string& what, const std::string& unit, double ours, double reference) {
  bench::print({.what = what, .unit = unit, .pairs = {{ours, reference}}});
}

// The reference programs are idle within seconds.
void measureRest(Desktop& desktop) {
  static_cast<void>(desktop.start(desktop.agent()));
  std::this_thread::sleep_for(webViewGone);
  const Rest ours = restOf(desktop.tree());
  const bench::Memory memory = bench::memoryOf(desktop.tree());
  desktop.end();
  const Rest reference = restOfBareWait();
  printOne("two minutes after the start: memory (Pss)", "KiB", memory.proportional,
           settledMemory(desktop, desktop.bareTray()).proportional);
  printOne("... wake-ups a second", "", ours.wakeUps, reference.wakeUps);
  printOne("... per cent of a core", "%", ours.load, reference.load);
}

// The reference for icon and page consists of two programs.
bench::Memory settledMemoryOfBareTrayAndPage(Desktop& desktop) {
  static_cast<void>(desktop.start(desktop.bareTray()));
  test_support::ChildProcess page;
  if (!page.start(desktop.barePage(), desktop.options())) bench::giveUp("bare_page can't be run");
  std::this_thread::sleep_for(settled);
  std::vector<pid_t> tree = desktop.tree();
  const std::vector<pid_t> engine = bench::processTree(page.pid());
  if (!page.running() || engine.size() < 2) bench::giveUp("bare_page has no engine");
  tree.insert(tree.end(), engine.begin(), engine.end());
  const bench::Memory memory = bench::memoryOf(tree);
  page.kill();
  desktop.end();
  return memory;
}

// Each start sends beacons, for which the helper and the web engine run for 15 s.
void measureMemoryWithBeacons(Desktop& desktop) {
  bench::print({.what = "memory 2 s after a beacon, the web view there (Pss)",
                .unit = "KiB",
                .pairs = bench::runPairs(
                    pairsWithBeacons, [&] { return settledMemory(desktop, desktop.agent()).proportional; },
                    [&] { return settledMemoryOfBareTrayAndPage(desktop).proportional; })});
}

}  // namespace

int main() {
  Desktop desktop;
  measureStarts(desktop);
  measureMemoryWithBeacons(desktop);
  measureRest(desktop);
  std::filesystem::remove(Desktop::contents() + "/Helpers/TovalinWebView");
  measureMemory(desktop);
}
