// The agent's start, memory and rest, beside those of the least program that has fetched a page and has an
// icon and a menu in the panel.

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

constexpr const char* versionFile = "/product/nimba/binary/tovalin_recent_version_info.xml";
constexpr int pairsOfStarts = 21;
constexpr int pairsOfMemory = 7;
constexpr auto pauseBeforeFirstMessage = 10ms;
constexpr auto settled = 2s;
constexpr auto webViewGone = 120s;
constexpr auto timeOfRest = 30s;

// A program with its arguments.
using Command = std::vector<std::string>;

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
  Milliseconds start(const Command& program) {
    const auto begin = std::chrono::steady_clock::now();
    if (!program_.start(program, {.environment = {{"DISPLAY", display_.name()},
                                                  {"DBUS_SESSION_BUS_ADDRESS", bus_.address()}},
                                  .error = test_support::Redirection::null()}) ||
        !host_.waitForEvent("registered"))
      giveUp(program[0] + " showed no icon");
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

  Milliseconds startAndEnd(const Command& program) {
    const Milliseconds took = start(program);
    end();
    return took;
  }

  bench::Memory memory(const Command& program, std::chrono::seconds after = settled) {
    static_cast<void>(start(program));
    std::this_thread::sleep_for(after);
    const bench::Memory memory = bench::memoryOf(tree());
    end();
    return memory;
  }

  // Of the program that was started last.
  [[nodiscard]] std::vector<pid_t> tree() const { return bench::processTree(program_.pid()); }

 private:
  test_support::SessionBus bus_;
  test_support::TestDisplay display_;
  test_support::PortalDouble portal_;
  test_support::TrayHostDouble host_;
  test_support::MessageFifo pipe_{"/tmp/KMPIPE"};
  test_support::ChildProcess program_;
};

void measureStarts(Desktop& desktop, const Command& agent, const Command& bareTray) {
  const auto ours = [&] { return (desktop.startAndEnd(agent) - pauseBeforeFirstMessage).count(); };
  const auto reference = [&] { return desktop.startAndEnd(bareTray).count(); };
  bench::print({.what = "start to icon, less the 10 ms pause before -ton",
                .unit = "ms",
                .pairs = bench::runPairs(pairsOfStarts, ours, reference)});
}

// What is shared depends on which other programs run; what a program has written itself does not.
void measureMemory(Desktop& desktop, const Command& agent, const Command& bareTray) {
  std::vector<double> ourOwn, referencesOwn;
  const auto measure = [&](const Command& measured, std::vector<double>& own) {
    const bench::Memory memory = desktop.memory(measured);
    own.push_back(memory.own);
    return memory.proportional;
  };
  bench::print({.what = "memory 2 s after the start, no web view (Pss)",
                .unit = "KiB",
                .pairs = bench::runPairs(
                    pairsOfMemory, [&] { return measure(agent, ourOwn); },
                    [&] { return measure(bareTray, referencesOwn); })});
  bench::Result own{.what = "... of it written by the program itself", .unit = "KiB"};
  for (std::size_t i = 0; i < ourOwn.size(); ++i) own.pairs.push_back({ourOwn[i], referencesOwn[i]});
  bench::print(own);
}

void printOne(const std::string& what, const std::string& unit, double ours, double reference) {
  bench::print({.what = what, .unit = unit, .pairs = {{ours, reference}}});
}

struct Rest {
  bench::Memory memory;
  double wakeUps = 0;  // a second
  double load = 0;     // of a core, in per cent
};

Rest restOf(Desktop& desktop, const Command& program, std::chrono::seconds after) {
  static_cast<void>(desktop.start(program));
  std::this_thread::sleep_for(after);
  const auto tree = desktop.tree();
  const bench::Work before = bench::workOf(tree);
  std::this_thread::sleep_for(timeOfRest);
  const bench::Work work = bench::workOf(tree);
  const auto seconds = std::chrono::duration<double>(timeOfRest).count();
  const Rest rest{.memory = bench::memoryOf(tree),
                  .wakeUps = (work.wakeUps - before.wakeUps) / seconds,
                  .load = 100 * (work.processor - before.processor).count() / seconds};
  desktop.end();
  return rest;
}

// The reference has come to its rest within seconds.
void measureRest(Desktop& desktop, const Command& agent, const Command& bareTray) {
  const Rest ours = restOf(desktop, agent, webViewGone), reference = restOf(desktop, bareTray, settled);
  printOne("two minutes after the start: memory (Pss)", "KiB", ours.memory.proportional,
           reference.memory.proportional);
  printOne("... wake-ups a second", "", ours.wakeUps, reference.wakeUps);
  printOne("... per cent of a core", "%", ours.load, reference.load);
}

// A copy of the agent's bundle whose product server is `origin`.
std::string copyBundle(const std::string& origin) {
  namespace fs = std::filesystem;
  const fs::path contents = "/tmp/Bench.app/Contents/Resources/TovalinTray.app/Contents";
  fs::create_directories(contents);
  fs::copy(fs::path(TOVALIN_AGENT).parent_path().parent_path(), contents, fs::copy_options::recursive);
  std::ifstream built(contents / "Info.plist");
  std::string list(std::istreambuf_iterator<char>(built), {});
  list.insert(list.rfind("</dict>"), "<key>TovalinProductServer</key><string>" + origin + "</string>");
  std::ofstream(contents / "Info.plist") << list;
  return contents;
}

// Each start sends beacons, for which the helper and its engine are there for a minute.
void measureMemoryWithBeacons(Desktop& desktop, const Command& agent) {
  bench::Result result{
      .what = "memory 2 s after a beacon, the web view there (Pss)", .unit = "KiB", .hasReference = false};
  for (int i = 0; i < 3; ++i) result.pairs.push_back({desktop.memory(agent).proportional, 0});
  bench::print(result);
}

}  // namespace

int main() {
  web_view_test::PageServer server;
  server.put(versionFile,
             "<plist version=\"1.0\"><dict><key>version</key><string>1.0.0</string></dict></plist>");
  const std::string contents = copyBundle(server.address(""));
  const Command agent = {contents + "/MacOS/TovalinTray"};
  const Command bareTray = {TOVALIN_BARE_TRAY, server.address(versionFile)};
  Desktop desktop;
  // The first start of each finds its files on the disk.
  for (const auto& program : {agent, bareTray}) static_cast<void>(desktop.startAndEnd(program));
  measureStarts(desktop, agent, bareTray);
  measureMemoryWithBeacons(desktop, agent);
  measureRest(desktop, agent, bareTray);
  std::filesystem::remove(contents + "/Helpers/TovalinWebView");
  measureMemory(desktop, agent, bareTray);
}
