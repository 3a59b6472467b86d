#include "tests/bench/start_up_desktop.h"

#include <signal.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "tests/bench/pairs.h"
#include "tests/harness/processes/file_contents.h"
#include "tests/harness/processes/web_processes.h"

namespace bench {
namespace {

constexpr const char* versionFile = "/product/nimba/binary/tovalin_recent_version_info.xml";

void copyBundle(const std::string& contents, const std::string& origin) {
  namespace fs = std::filesystem;
  fs::create_directories(contents);
  fs::copy(fs::path(TOVALIN_AGENT).parent_path().parent_path(), contents, fs::copy_options::recursive);
  std::string list = test_support::contentsOf(contents + "/Info.plist");
  list.insert(list.rfind("</dict>"), "<key>TovalinProductServer</key><string>" + origin + "</string>");
  std::ofstream(contents + "/Info.plist") << list;
  std::ofstream("/tmp/Bench.app/Contents/TovalinPorperty.plist")
      << "<plist version=\"1.0\"><dict><key>Autorun</key><true/><key>Active</key><true/></dict></plist>";
}

void endWebView() {
  for (const pid_t process : web_view_test::processesNamed("TovalinWebView")) ::kill(process, SIGTERM);
  if (!web_view_test::waitForNoWebProcess()) giveUp("the web view did not end");
}

}  // namespace

StartUpDesktop::StartUpDesktop() {
  std::filesystem::create_directories("/tmp/home/.local/share/Tovalin");
  server_.put(versionFile,
              "<plist version=\"1.0\"><dict><key>version</key><string>1.0.0</string></dict></plist>");
  copyBundle(contents(), server_.address(""));
  if (!bus_.start() || !display_.start() || !portal_.start(bus_, "2") || !host_.start(bus_) || !pipe_.valid())
    giveUp("the desktop did not come up");
  // The first start of each program loads its files from disk into the page cache.
  for (const auto& program : {agent(), bareTray()}) static_cast<void>(startAndEnd(program));
}

std::string StartUpDesktop::contents() {
  return "/tmp/Bench.app/Contents/Resources/TovalinTray.app/Contents";
}

Command StartUpDesktop::bareTray() const {
  return {TOVALIN_BARE_TRAY, server_.address(versionFile)};
}

Command StartUpDesktop::barePage() const {
  return {TOVALIN_BARE_PAGE, server_.address("/page")};
}

test_support::ChildOptions StartUpDesktop::options() const {
  return {.environment = {{"DISPLAY", display_.name()}, {"DBUS_SESSION_BUS_ADDRESS", bus_.address()}},
          .error = test_support::Redirection::null()};
}

Milliseconds StartUpDesktop::start(const Command& program) {
  const auto begin = std::chrono::steady_clock::now();
  if (!program_.start(program, options()) || !host_.waitForEvent("registered"))
    giveUp(program[0] + " showed no icon");
  return std::chrono::steady_clock::now() - begin;
}

void StartUpDesktop::end() {
  // The host answers once it watches the item; before that it could miss the item's removal.
  if (host_.properties().empty()) giveUp("a program's icon does not answer");
  program_.terminate();
  if (!program_.wait()) giveUp("a program did not end");
  if (!host_.waitForEvent("unregistered")) giveUp("an icon did not go");
  static_cast<void>(pipe_.receive());
  endWebView();
}

Milliseconds StartUpDesktop::startAndEnd(const Command& program) {
  const Milliseconds took = start(program);
  end();
  return took;
}

}  // namespace bench
