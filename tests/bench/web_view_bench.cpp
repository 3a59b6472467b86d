// Measures the time that a beacon and its load take for the caller, against a bare write to a socket or a
// bare start of a program, and the memory of a loaded page against bare_page.

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <string>
#include <string_view>
#include <thread>

#include <QCoreApplication>

#include "app/nimbatrayAppDelegate.h"
#include "platform/linux/web_view/web_view_process.h"
#include "platform/web_view.h"
#include "tests/bench/pairs.h"
#include "tests/bench/process_tree.h"
#include "tests/harness/desktop/event_loop.h"
#include "tests/harness/desktop/test_display.h"
#include "tests/harness/processes/child_process.h"
#include "tests/harness/processes/web_processes.h"
#include "tests/harness/servers/page_server.h"

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

// Sends a line of the length of a beacon through a socket like the helper's.
class BareLine {
 public:
  BareLine() {
    if (::socketpair(AF_UNIX, SOCK_SEQPACKET, 0, ends_.data()) != 0) std::abort();
  }
  ~BareLine() {
    for (const int end : ends_) ::close(end);
  }
  BareLine(const BareLine&) = delete;
  BareLine& operator=(const BareLine&) = delete;

  // Returns the time of one send() in microseconds.
  double send() {
    const double time = timeOf([&] { static_cast<void>(::send(ends_[0], line.data(), line.size(), 0)); });
    std::array<char, line.size()> room{};
    if (::recv(ends_[1], room.data(), room.size(), 0) != static_cast<ssize_t>(line.size())) std::abort();
    return time;
  }

 private:
  static constexpr std::string_view line =
      "https://www.tovalin.example/product/nimba/binary/"
      "GATovalin.html?category=clickaction&clickaction=turnon\n";
  std::array<int, 2> ends_{};
};

// Returns the time of posix_spawn() for a program that ends immediately: like the helper, in a new session,
// with a socket as standard input and /dev/null as output.
double bareStart() {
  std::array<int, 2> ends{};
  if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0) std::abort();
  posix_spawn_file_actions_t streams;
  posix_spawn_file_actions_init(&streams);
  posix_spawn_file_actions_adddup2(&streams, ends[1], STDIN_FILENO);
  posix_spawn_file_actions_addopen(&streams, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_adddup2(&streams, STDOUT_FILENO, STDERR_FILENO);
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID);
  std::array<char, 10> program{"/bin/true"};
  std::array<char*, 2> arguments{program.data(), nullptr};
  pid_t child = -1;
  const double time = timeOf([&] {
    if (::posix_spawn(&child, program.data(), &streams, &attributes, arguments.data(), environ) != 0)
      std::abort();
  });
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&streams);
  for (const int end : ends) ::close(end);
  ::waitpid(child, nullptr, 0);
  return time;
}

void measureLoads(web_view_test::PageServer& server) {
  platform::WebViewProcess process;
  loadAndAwait(process, server, 0);
  BareLine line;
  const auto ours = [&] { return timeOf([&] { process.send(helper, server.address("/page")); }); };
  bench::print({.what = "a load, the helper running",
                .unit = "us",
                .pairs = bench::runPairs(loads, ours, [&] { return line.send(); })});
}

// The delegate reads the product server from the bundle for each beacon.
double timeOfBeacon(nimbatrayAppDelegate& delegate) {
  return timeOf([&] { delegate.notificateGA("clickaction", "turnon"); });
}

void measureBeacons() {
  nimbatrayAppDelegate delegate;
  platform::WebView view({0, 0, 1, 1});
  delegate.gaWebView = &view;
  static_cast<void>(timeOfBeacon(delegate));
  if (!serveEventsUntil([] { return !web_view_test::processesNamed("WebKitWebProces").empty(); }, 90s))
    std::abort();
  BareLine line;
  bench::print({.what = "a beacon, the helper running",
                .unit = "us",
                .pairs = bench::runPairs(
                    loads, [&] { return timeOfBeacon(delegate); }, [&] { return line.send(); })});
}

void measureBeaconsThatStart() {
  const auto ours = [] {
    nimbatrayAppDelegate delegate;
    platform::WebView view({0, 0, 1, 1});
    delegate.gaWebView = &view;
    const double time = timeOfBeacon(delegate);
    endHelpers();
    return time;
  };
  bench::print({.what = "a beacon that starts the helper",
                .unit = "us",
                .pairs = bench::runPairs(starts, ours, bareStart)});
}

void measureStarts(web_view_test::PageServer& server) {
  const auto ours = [&] {
    platform::WebViewProcess process;
    const double time = timeOf([&] { process.send(helper, server.address("/page")); });
    endHelpers();
    return time;
  };
  bench::print({.what = "a load that starts the helper",
                .unit = "us",
                .pairs = bench::runPairs(starts, ours, bareStart)});
}

void measureMemory(web_view_test::PageServer& server) {
  int number = 1000;
  const auto ours = [&] {
    platform::WebViewProcess process;
    loadAndAwait(process, server, ++number);
    std::this_thread::sleep_for(settled);
    const double memory = bench::memoryOf(web_view_test::webProcesses()).proportional;
    endHelpers();
    return memory;
  };
  const auto bare = [&] {
    const std::string page = "/page?" + std::to_string(++number);
    test_support::ChildProcess program;
    if (!program.start({TOVALIN_BARE_PAGE, server.address(page)}) || !server.waitFor(page)) std::abort();
    std::this_thread::sleep_for(settled);
    const double memory = bench::memoryOf(bench::processTree(program.pid())).proportional;
    program.kill();
    awaitEnd();
    return memory;
  };
  bench::print({.what = "memory of the helper and its engine (Pss)",
                .unit = "KiB",
                .pairs = bench::runPairs(pages, ours, bare)});
}

// Measured last, because no process is left afterwards.
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
