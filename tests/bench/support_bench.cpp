// Measures the time from the menu click to the mapped support window, with a product server on loopback,
// against its four fetches with libcurl's easy interface.

#include <curl/curl.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <thread>

#include "tests/bench/map_watch.h"
#include "tests/bench/pairs.h"
#include "tests/harness/desktop/session_bus.h"
#include "tests/harness/desktop/test_display.h"
#include "tests/harness/desktop/tray_host_double.h"
#include "tests/harness/desktop/x_windows.h"
#include "tests/harness/processes/child_process.h"
#include "tests/harness/processes/file_contents.h"
#include "tests/harness/processes/message_fifo.h"
#include "tests/harness/processes/syslog_socket.h"
#include "tests/harness/servers/product_server_double.h"

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using bench::giveUp;
using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr int openings = 50;
constexpr int width = 420, height = 240;
constexpr const char* line = "Support Tovalin";
constexpr const char* bundle = "/tmp/Tovalin.app";
// Time for the program and the window manager to finish hiding a window.
constexpr auto settled = 20ms;

constexpr const char* noticeFile = "/product/nimba/binary/tovalinnotice.xml";
constexpr const char* bannerListFile = "/product/nimba/banner/tovalinbanner.xml";
constexpr const char* bannerFile = "/product/nimba/banner/first_steps.png";
constexpr const char* versionFile = "/product/nimba/binary/tovalin_recent_version_info.xml";

std::string wholeFile(const std::string& path) {
  std::string contents = test_support::contentsOf(path);
  if (contents.empty()) giveUp("nothing in the file " + path);
  return contents;
}

// Fills the fake server. All openings fetch the same single banner.
void fill(test_support::ProductServerDouble& server) {
  const std::string root = TOVALIN_PRODUCTSERVER_ROOT;
  server.putVersion("9.0.0");
  server.put(noticeFile, wholeFile(root + noticeFile));
  server.put(bannerListFile,
             "<plist version=\"1.0\"><array><dict><key>file_name</key><string>first_steps.png</string>"
             "<key>link</key><string>http://banner.example/</string></dict></array></plist>");
  server.put(bannerFile, wholeFile(root + bannerFile));
}

// Copies the bundle, sets its product server and removes the web view helper, so that no beacon is sent.
void install(const std::string& origin) {
  fs::copy(TOVALIN_BUNDLE, bundle, fs::copy_options::recursive);
  const std::string contents = bundle + std::string("/Contents/Resources/TovalinTray.app/Contents/");
  fs::remove(contents + "Helpers/TovalinWebView");
  std::string list = wholeFile(contents + "Info.plist");
  list.insert(list.rfind("</dict>"), "<key>TovalinProductServer</key><string>" + origin + "</string>");
  std::ofstream(contents + "Info.plist") << list;
}

class Agent {
 public:
  explicit Agent(const std::string& origin) {
    fs::create_directories("/tmp/home/.local/share/Tovalin");
    install(origin);
    if (!bus_.start() || !display_.start() || !log_.valid() || !pipe_.valid() || !host_.start(bus_))
      giveUp("the desktop did not come up");
    const test_support::ChildOptions options{
        .environment = {{"DISPLAY", display_.name()}, {"DBUS_SESSION_BUS_ADDRESS", bus_.address()}},
        .error = test_support::Redirection::null()};
    const std::string program =
        bundle + std::string("/Contents/Resources/TovalinTray.app/Contents/MacOS/TovalinTray");
    if (!program_.start({program}, options) || !host_.waitForEvent("registered")) giveUp("no agent");
    watch_ = std::make_unique<bench::MapWatch>(display_.name(), width, height);
    // Fetches the menu layout for clickKnown().
    if (host_.menu().empty()) giveUp("no menu");
  }

  // Opens and closes the window once. Returns the time until it was shown.
  double open() {
    watch_->forget();
    const auto begin = std::chrono::steady_clock::now();
    if (!host_.clickKnown(line) || !watch_->waitUntilShown()) giveUp("the window did not come");
    const Milliseconds took = std::chrono::steady_clock::now() - begin;
    close();
    return took.count();
  }

 private:
  void close() {
    const auto window = test_support::waitForWindow(
        display_.name(), [](const test_support::XWindow& each) { return each.name == line; });
    if (!window) giveUp("the window has no name");
    test_support::requestClose(display_.name(), window->id);
    if (!watch_->waitUntilHidden()) giveUp("the window did not go");
    std::this_thread::sleep_for(settled);
  }

  test_support::SessionBus bus_;
  test_support::TestDisplay display_;
  test_support::TrayHostDouble host_;
  test_support::SyslogSocket log_;
  test_support::MessageFifo pipe_{"/tmp/KMPIPE"};
  std::unique_ptr<bench::MapWatch> watch_;
  test_support::ChildProcess program_;
};

std::size_t append(char* data, std::size_t one, std::size_t size, void* text) {
  static_cast<std::string*>(text)->append(data, one * size);
  return one * size;
}

void fetch(const std::string& address) {
  CURL* curl = curl_easy_init();
  std::string body;
  curl_easy_setopt(curl, CURLOPT_URL, address.c_str());
  curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, append);
  curl_easy_setopt(curl, CURLOPT_WRITEDATA, &body);
  const CURLcode result = curl_easy_perform(curl);
  curl_easy_cleanup(curl);
  if (result != CURLE_OK || body.empty()) giveUp("nothing at " + address);
}

double fetchAll(const std::string& origin) {
  const auto begin = std::chrono::steady_clock::now();
  for (const char* path : {versionFile, bannerListFile, noticeFile, bannerFile}) fetch(origin + path);
  return Milliseconds(std::chrono::steady_clock::now() - begin).count();
}

}  // namespace

int main() {
  test_support::ProductServerDouble server;
  fill(server);
  Agent agent(server.origin());
  agent.open();
  const auto pairs = bench::runPairs(
      openings, [&] { return agent.open(); }, [&] { return fetchAll(server.origin()); });
  bench::print(
      {.what = "menu click to support window, beside its fetches alone", .unit = "ms", .pairs = pairs});
  bench::Result added{.what = "what the agent adds to them", .unit = "ms", .hasReference = false};
  for (const auto& pair : pairs) added.pairs.push_back({.ours = pair.ours - pair.reference});
  bench::print(added);
}
