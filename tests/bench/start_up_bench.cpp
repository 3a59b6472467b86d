// The agent's start and memory, beside those of the least program with an icon and a menu in the panel.

#include <signal.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "tests/bench/pairs.h"
#include "tests/bench/process_tree.h"
#include "tests/platform/helpers/page_server.h"
#include "tests/platform/helpers/web_processes.h"
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
    endWebView();
  }

  // It would outlive the agent for a while and slow down the next start.
  static void endWebView() {
    for (const pid_t process : web_view_test::processesNamed("TovalinWebView")) ::kill(process, SIGTERM);
    if (!web_view_test::waitForNoWebProcess()) giveUp("the web view did not end");
  }

  Milliseconds startAndEnd(const std::string& program) {
    const Milliseconds took = start(program);
    end();
    return took;
  }

  bench::Memory memory(const std::string& program, std::chrono::seconds after = settled) {
    static_cast<void>(start(program));
    std::this_thread::sleep_for(after);
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
void measureMemory(Desktop& desktop, const std::string& contents) {
  std::filesystem::remove(contents + "/Helpers/TovalinWebView");
  const std::string program = contents + "/MacOS/TovalinTray";
  std::vector<double> ourOwn, referencesOwn;
  const auto measure = [&](const std::string& measured, std::vector<double>& own) {
    const bench::Memory memory = desktop.memory(measured);
    own.push_back(memory.own);
    return memory.proportional;
  };
  bench::print({.what = "memory 2 s after the start, no web view (Pss)",
                .unit = "KiB",
                .pairs = bench::runPairs(
                    pairsOfMemory, [&] { return measure(program, ourOwn); },
                    [&] { return measure(bareTray, referencesOwn); })});
  bench::Result own{.what = "... of it written by the program itself", .unit = "KiB"};
  for (std::size_t i = 0; i < ourOwn.size(); ++i) own.pairs.push_back({ourOwn[i], referencesOwn[i]});
  bench::print(own);
}

// A copy of the agent's bundle whose product server is `origin`.
std::string copyBundle(const std::string& origin) {
  namespace fs = std::filesystem;
  const fs::path contents = "/tmp/Bench.app/Contents/Resources/TovalinTray.app/Contents";
  fs::create_directories(contents);
  fs::copy(fs::path(agent).parent_path().parent_path(), contents, fs::copy_options::recursive);
  std::ifstream built(contents / "Info.plist");
  std::string list(std::istreambuf_iterator<char>(built), {});
  list.insert(list.rfind("</dict>"), "<key>TovalinProductServer</key><string>" + origin + "</string>");
  std::ofstream(contents / "Info.plist") << list;
  return contents;
}

// Each start sends beacons, for which the helper and its engine are there for a minute.
void measureMemoryWithBeacons(Desktop& desktop, const std::string& contents) {
  const std::string program = contents + "/MacOS/TovalinTray";
  const auto measure = [&](const std::string& what, int runs, std::chrono::seconds after) {
    bench::Result result{.what = what, .unit = "KiB", .hasReference = false};
    for (int i = 0; i < runs; ++i) result.pairs.push_back({desktop.memory(program, after).proportional, 0});
    bench::print(result);
  };
  measure("memory 2 s after a beacon, the web view there (Pss)", 3, settled);
  measure("... 65 s after it", 1, 65s);
}

}  // namespace

int main() {
  Desktop desktop;
  // The first start of each finds its files on the disk.
  for (const char* program : {agent, bareTray}) static_cast<void>(desktop.startAndEnd(program));
  measureStarts(desktop);
  const web_view_test::PageServer server;
  const std::string contents = copyBundle(server.address(""));
  measureMemoryWithBeacons(desktop, contents);
  measureMemory(desktop, contents);
}
