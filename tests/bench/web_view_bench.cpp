// A load for its caller, beside a bare write to a socket, and what a page takes as long as it is there.

#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include <QCoreApplication>

#include "app/nimbatrayAppDelegate.h"
#include "platform/linux/web_view_process.h"
#include "platform/web_view.h"
#include "tests/bench/pairs.h"
#include "tests/bench/process_tree.h"
#include "tests/platform/event_loop.h"
#include "tests/platform/helpers/page_server.h"
#include "tests/platform/helpers/web_processes.h"
#include "tests/support/test_display.h"

namespace {

using namespace std::chrono_literals;
using Microseconds = std::chrono::duration<double, std::micro>;

constexpr const char* helper = TOVALIN_WEB_VIEW;
constexpr int starts = 15;
constexpr int loads = 101;
constexpr int pages = 3;
constexpr auto settled = 2s;

double timeOf(const std::function<void()>& work) {
  const auto begin = std::chrono::steady_clock::now();
  work();
  return Microseconds(std::chrono::steady_clock::now() - begin).count();
}

void awaitEnd() {
  if (!serveEventsUntil([] { return web_view_test::webProcesses().empty(); }, 90s)) std::abort();
}

void endHelpers() {
  for (const pid_t started : web_view_test::processesNamed("TovalinWebView")) ::kill(started, SIGTERM);
  awaitEnd();
}

void loadAndAwait(platform::WebViewProcess& process, web_view_test::PageServer& server, int number) {
  const std::string page = "/page?" + std::to_string(number);
  process.send(helper, server.address(page));
  if (!server.waitFor(page)) std::abort();
}

void measureLoads(web_view_test::PageServer& server) {
  platform::WebViewProcess process;
  loadAndAwait(process, server, 0);
  std::array<int, 2> ends{};
  if (::socketpair(AF_UNIX, SOCK_SEQPACKET, 0, ends.data()) != 0) std::abort();
  const std::string line = server.address("/page") + "\n";
  std::vector<char> room(line.size());
  const auto bare = [&] {
    const double time = timeOf([&] { static_cast<void>(::send(ends[0], line.data(), line.size(), 0)); });
    static_cast<void>(::recv(ends[1], room.data(), room.size(), 0));
    return time;
  };
  const auto ours = [&] { return timeOf([&] { process.send(helper, server.address("/page")); }); };
  bench::print(
      {.what = "a load, the helper running", .unit = "us", .pairs = bench::runPairs(loads, ours, bare)});
  for (const int end : ends) ::close(end);
}

// As the delegate sends it, which reads the product server from the bundle each time.
void measureBeacons() {
  nimbatrayAppDelegate delegate;
  platform::WebView view({0, 0, 1, 1});
  delegate.gaWebView = &view;
  const auto send = [&] { return timeOf([&] { delegate.notificateGA("clickaction", "turnon"); }); };
  static_cast<void>(send());
  if (!serveEventsUntil([] { return !web_view_test::processesNamed("WebKitWebProces").empty(); }, 90s))
    std::abort();
  bench::Result result{.what = "a beacon, the helper running", .unit = "us", .hasReference = false};
  for (int i = 0; i < loads; ++i) result.pairs.push_back({send(), 0});
  bench::print(result);
}

void measureBeaconsThatStart() {
  bench::Result result{.what = "a beacon that starts the helper", .unit = "us", .hasReference = false};
  for (int i = 0; i < starts; ++i) {
    nimbatrayAppDelegate delegate;
    platform::WebView view({0, 0, 1, 1});
    delegate.gaWebView = &view;
    result.pairs.push_back({timeOf([&] { delegate.notificateGA("clickaction", "turnon"); }), 0});
    endHelpers();
  }
  bench::print(result);
}

void measureStarts(web_view_test::PageServer& server) {
  bench::Result result{.what = "a load that starts the helper", .unit = "us", .hasReference = false};
  for (int i = 0; i < starts; ++i) {
    platform::WebViewProcess process;
    result.pairs.push_back({timeOf([&] { process.send(helper, server.address("/page")); }), 0});
    endHelpers();
  }
  bench::print(result);
}

void measureMemory(web_view_test::PageServer& server) {
  bench::Result result{
      .what = "memory of the helper and its engine (Pss)", .unit = "KiB", .hasReference = false};
  for (int i = 0; i < pages; ++i) {
    platform::WebViewProcess process;
    loadAndAwait(process, server, 1000 + i);
    std::this_thread::sleep_for(settled);
    result.pairs.push_back({bench::memoryOf(web_view_test::webProcesses()).proportional, 0});
    endHelpers();
  }
  bench::print(result);
}

// After that there is nothing left whose memory could be measured.
void measureIdleTime(web_view_test::PageServer& server) {
  platform::WebViewProcess process;
  loadAndAwait(process, server, 2000);
  const double time = timeOf(awaitEnd);
  bench::print({.what = "from a load to the end of the last process",
                .unit = "s",
                .pairs = {{time / 1e6, 0}},
                .hasReference = false});
}

}  // namespace

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  test_support::TestDisplay display;
  if (!display.start()) return 1;
  qputenv("DISPLAY", QByteArray::fromStdString(display.name()));
  web_view_test::PageServer server;
  server.put("/page", "<script>fetch('/script')</script>");
  measureLoads(server);
  awaitEnd();
  measureStarts(server);
  measureBeacons();
  endHelpers();
  measureBeaconsThatStart();
  measureMemory(server);
  measureIdleTime(server);
}
