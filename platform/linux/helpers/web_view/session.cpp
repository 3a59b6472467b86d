#include "platform/linux/helpers/web_view/session.h"

#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <glib-unix.h>
#include <string>
#include <utility>
#include <vector>

namespace helpers {
namespace {

using Clock = Lifetime::Clock;

}  // namespace

Session::Session(platform::FileDescriptor input, FilterProxy& network, Clock::duration idle)
    : input_(std::move(input)),
      lifetime_(Clock::now(), idle),
      loop_(g_main_loop_new(nullptr, FALSE)),
      page_(network, [this] { followPage(); }) {}

void Session::run() {
  constexpr auto arrived = [](int, GIOCondition, gpointer self) -> gboolean {
    static_cast<Session*>(self)->readInput();
    return G_SOURCE_CONTINUE;
  };
  constexpr auto quit = [](gpointer self) -> gboolean {
    g_main_loop_quit(static_cast<Session*>(self)->loop_.get());
    return G_SOURCE_CONTINUE;
  };
  inputSource_.reset(
      g_unix_fd_add(input_.get(), static_cast<GIOCondition>(G_IO_IN | G_IO_HUP | G_IO_ERR), +arrived, this));
  const EventSource terminate(g_unix_signal_add(SIGTERM, +quit, this));
  const EventSource interrupt(g_unix_signal_add(SIGINT, +quit, this));
  const EventSource hangUp(g_unix_signal_add(SIGHUP, +quit, this));
  scheduleEnd();
  g_main_loop_run(loop_.get());
}

// One read per event, so that it never blocks. The buffer holds the longest address, which the agent sends as
// one packet.
void Session::readInput() {
  std::vector<char> buffer(AddressLines::maxLineLength + 1);
  const ssize_t count = ::read(input_.get(), buffer.data(), buffer.size());
  if (count < 0 && (errno == EINTR || errno == EAGAIN)) return;
  if (count <= 0) return inputEnded();
  for (const std::string& address : lines_.take({buffer.data(), static_cast<std::size_t>(count)})) {
    lifetime_.addressReceived(Clock::now());
    page_.load(address);
  }
  scheduleEnd();
}

void Session::inputEnded() {
  inputSource_.reset();
  lifetime_.inputEnded(Clock::now());
  inputShutDown_ = true;
  scheduleEnd();
}

void Session::followPage() {
  lifetime_.loadingIs(page_.loading(), Clock::now());
  scheduleEnd();
}

void Session::scheduleEnd() {
  constexpr auto expired = [](gpointer self) -> gboolean {
    static_cast<Session*>(self)->shutDownOrQuit();
    return G_SOURCE_CONTINUE;
  };
  const auto remaining = std::chrono::ceil<std::chrono::milliseconds>(lifetime_.end() - Clock::now()).count();
  endTimer_.reset(g_timeout_add(static_cast<guint>(std::max<std::int64_t>(remaining, 0)), +expired, this));
}

// No address is lost between the decision to end and the end of the process. After shutdown(SHUT_RD) the
// agent's writes fail, so that it starts a new helper; addresses sent before are read up to end-of-file.
void Session::shutDownOrQuit() {
  if (!inputShutDown_ && ::shutdown(input_.get(), SHUT_RD) == 0) {
    inputShutDown_ = true;
    endTimer_.reset();
  } else {
    g_main_loop_quit(loop_.get());
  }
}

}  // namespace helpers
