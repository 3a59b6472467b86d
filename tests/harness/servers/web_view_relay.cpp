// web_view_relay: replaces the hidden web view in the scripted session of ./run and runs the real one. Logs
// each address that it receives to the system log as "beacon", forwards it, and ends after the real one.

#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <syslog.h>
#include <unistd.h>

#include <array>
#include <string>

#include "tests/harness/processes/file_descriptor.h"

namespace {

using test_support::FileDescriptor;

constexpr const char* realWebView = "/tmp/outside_commands/TovalinWebView";

struct WebView {
  FileDescriptor line;
  pid_t process = -1;

  [[nodiscard]] bool start(std::string program);
  void end();
};

bool WebView::start(std::string program) {
  std::array<int, 2> ends{-1, -1};
  if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0) return false;
  line.reset(ends[0]);
  const FileDescriptor input(ends[1]);
  posix_spawn_file_actions_t streams;
  posix_spawn_file_actions_init(&streams);
  posix_spawn_file_actions_adddup2(&streams, input.get(), STDIN_FILENO);
  char* arguments[] = {program.data(), nullptr};
  const int error = posix_spawn(&process, program.c_str(), &streams, nullptr, arguments, environ);
  posix_spawn_file_actions_destroy(&streams);
  return error == 0;
}

void WebView::end() {
  line.reset();
  ::waitpid(process, nullptr, 0);
}

void tell(std::string packet) {
  if (packet.ends_with('\n')) packet.pop_back();
  ::syslog(LOG_INFO, "%s", packet.c_str());
}

// Returns when either side closes. The agent must see the real one end when idle, so that it starts another
// for the next address.
void relay(const FileDescriptor& line) {
  std::array<char, 65536> packet;
  for (;;) {
    std::array<pollfd, 2> ends{{{STDIN_FILENO, POLLIN, 0}, {line.get(), 0, 0}}};
    if (::poll(ends.data(), ends.size(), -1) < 0 || ends[1].revents != 0) return;
    const ssize_t size = ::read(STDIN_FILENO, packet.data(), packet.size());
    if (size <= 0) return;
    const std::string address(packet.data(), static_cast<std::size_t>(size));
    tell(address);
    if (::send(line.get(), address.data(), address.size(), MSG_NOSIGNAL) < 0) return;
  }
}

}  // namespace

int main() {
  ::openlog("beacon", 0, LOG_USER);
  WebView webView;
  if (!webView.start(realWebView)) return 1;
  relay(webView.line);
  webView.end();
}
