// Measures the time from "-non" in the notification pipe to the mapped notice against bare_notice.

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "tests/bench/map_watch.h"
#include "tests/bench/pairs.h"
#include "tests/harness/desktop/session_bus.h"
#include "tests/harness/desktop/test_display.h"
#include "tests/harness/processes/child_process.h"
#include "tests/harness/processes/message_fifo.h"
#include "tests/harness/processes/syslog_socket.h"

namespace {

using namespace std::chrono_literals;
using bench::giveUp;
using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr int pairsOfNotices = 200;
constexpr int width = 420, height = 80;
// Time for the program and the window manager to finish hiding a window.
constexpr auto settled = 20ms;

// Display, session bus, syslog socket and reader of the command pipe for the measured programs.
class Desktop {
 public:
  Desktop() {
    std::filesystem::create_directories("/tmp/home/.local/share/Tovalin");
    if (!bus_.start() || !display_.start() || !log_.valid() || !pipe_.valid())
      giveUp("the desktop did not come up");
  }
  [[nodiscard]] const std::string& display() const { return display_.name(); }
  [[nodiscard]] test_support::ChildOptions options() const {
    return {.environment = {{"DISPLAY", display_.name()}, {"DBUS_SESSION_BUS_ADDRESS", bus_.address()}},
            .error = test_support::Redirection::null()};
  }

 private:
  test_support::SessionBus bus_;
  test_support::TestDisplay display_;
  test_support::SyslogSocket log_;
  test_support::MessageFifo pipe_{"/tmp/KMPIPE"};
};

// A program that shows a notice for "-non" and hides it for "-noff".
class NoticeProgram {
 public:
  NoticeProgram(const Desktop& desktop, const std::vector<std::string>& command, const std::string& fifo)
      : name_(command.front()), watch_(desktop.display(), width, height) {
    const auto listens = [&] {
      pipe_.reset(::open(fifo.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC));
      return pipe_.valid();
    };
    if (!program_.start(command, desktop.options()) || !test_support::waitUntil(listens))
      giveUp(name_ + " does not listen");
  }

  // Shows and hides the notice once. Returns the time until it was shown.
  Milliseconds showAndHide() {
    watch_.forget();
    const auto begin = std::chrono::steady_clock::now();
    send("-non");
    if (!watch_.waitUntilShown()) giveUp(name_ + " showed no notice");
    const auto took = std::chrono::steady_clock::now() - begin;
    send("-noff");
    if (!watch_.waitUntilHidden()) giveUp(name_ + " did not hide its notice");
    std::this_thread::sleep_for(settled);
    return took;
  }

 private:
  void send(const std::string& message) {
    if (::write(pipe_.get(), message.data(), message.size()) != static_cast<ssize_t>(message.size()))
      giveUp(name_ + " no longer listens");
  }

  std::string name_;
  bench::MapWatch watch_;
  test_support::FileDescriptor pipe_;
  test_support::ChildProcess program_;
};

}  // namespace

int main() {
  const Desktop desktop;
  NoticeProgram agent(desktop, {TOVALIN_AGENT}, "/tmp/KMNOTIPIPE");
  NoticeProgram bare(desktop, {TOVALIN_BARE_NOTICE, "/tmp/bare_notice", TOVALIN_PICTURE}, "/tmp/bare_notice");
  const auto ours = [&] { return agent.showAndHide().count(); };
  const auto reference = [&] { return bare.showAndHide().count(); };
  bench::print(
      {.what = "-non to notice, the first", .unit = "ms", .pairs = bench::runPairs(1, ours, reference)});
  bench::print({.what = "-non to notice, those after it",
                .unit = "ms",
                .pairs = bench::runPairs(pairsOfNotices, ours, reference)});
}
