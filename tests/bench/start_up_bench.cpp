// The agent's start and memory, beside those of the least program with an icon and a menu in the panel.

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <string>
#include <thread>
#include <vector>

#include "tests/bench/pairs.h"
#include "tests/bench/process_tree.h"
#include "tests/support/child_process.h"
#include "tests/support/message_fifo.h"
#include "tests/support/portal_double.h"
#include "tests/support/session_bus.h"
#include "tests/support/test_display.h"
#include "tests/support/tray_host_double.h"

namespace {

using namespace std::chrono_literals;
using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr const char* agent = TOVALIN_AGENT;
constexpr const char* bareTray = TOVALIN_BARE_TRAY;
constexpr int pairsOfStarts = 21;
constexpr int pairsOfMemory = 7;
constexpr auto pauseBeforeFirstMessage = 10ms;
constexpr auto settled = 2s;

[[noreturn]] void giveUp(const std::string& what) {
  std::cerr << what << '\n';
  std::exit(1);
}

// A desktop with a panel, a portal and a main application that reads the agent's messages.
class Desktop {
 public:
  Desktop() {
    std::filesystem::create_directories("/tmp/home/.local/share/Tovalin");
    if (!bus_.start() || !display_.start() || !portal_.start(bus_, "2") || !host_.start(bus_) ||
        !pipe_.valid())
      giveUp("the desktop did not come up");
  }

  // Starts a program and waits until its icon is in the panel.
  Milliseconds start(const std::string& program) {
    const auto begin = std::chrono::steady_clock::now();
    if (!program_.start({program}, {.environment = {{"DISPLAY", display_.name()},
                                                    {"DBUS_SESSION_BUS_ADDRESS", bus_.address()}},
                                    .error = test_support::Redirection::null()}) ||
        !host_.waitForEvent("registered"))
      giveUp(program + " showed no icon");
    return std::chrono::steady_clock::now() - begin;
  }

  void end() {
    // The answer comes once the host follows the item; before that it could miss the item's end.
    if (host_.properties().empty()) giveUp("a program's icon does not answer");
    program_.terminate();
    if (!program_.wait()) giveUp("a program did not end");
    if (!host_.waitForEvent("unregistered")) giveUp("an icon did not go");
    static_cast<void>(pipe_.receive());
  }

  Milliseconds startAndEnd(const std::string& program) {
    const Milliseconds took = start(program);
    end();
    return took;
  }

  bench::Memory memory(const std::string& program) {
    static_cast<void>(start(program));
    std::this_thread::sleep_for(settled);
    const bench::Memory memory = bench::memoryOf(bench::processTree(program_.pid()));
    end();
    return memory;
  }

 private:
  test_support::SessionBus bus_;
  test_support::TestDisplay display_;
  test_support::PortalDouble portal_;
  test_support::TrayHostDouble host_;
  test_support::MessageFifo pipe_{"/tmp/KMPIPE"};
  test_support::ChildProcess program_;
};

void measureStarts(Desktop& desktop) {
  const auto ours = [&] { return (desktop.startAndEnd(agent) - pauseBeforeFirstMessage).count(); };
  const auto reference = [&] { return desktop.startAndEnd(bareTray).count(); };
  bench::print({.what = "start to icon, less the 10 ms pause before -ton",
                .unit = "ms",
                .pairs = bench::runPairs(pairsOfStarts, ours, reference)});
}

// What is shared depends on which other programs run; what a program has written itself does not.
void measureMemory(Desktop& desktop) {
  std::vector<double> ourOwn, referencesOwn;
  const auto measure = [&](const char* program, std::vector<double>& own) {
    const bench::Memory memory = desktop.memory(program);
    own.push_back(memory.own);
    return memory.proportional;
  };
  bench::print({.what = "memory 2 s after the start (Pss)",
                .unit = "KiB",
                .pairs = bench::runPairs(
                    pairsOfMemory, [&] { return measure(agent, ourOwn); },
                    [&] { return measure(bareTray, referencesOwn); })});
  bench::Result own{.what = "... of it written by the program itself", .unit = "KiB"};
  for (std::size_t i = 0; i < ourOwn.size(); ++i) own.pairs.push_back({ourOwn[i], referencesOwn[i]});
  bench::print(own);
}

}  // namespace

int main() {
  Desktop desktop;
  // The first start of each finds its files on the disk.
  for (const char* program : {agent, bareTray}) static_cast<void>(desktop.startAndEnd(program));
  measureStarts(desktop);
  measureMemory(desktop);
}
