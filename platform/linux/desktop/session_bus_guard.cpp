#include "platform/linux/desktop/session_bus_guard.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "platform/file_descriptor.h"
#include "platform/log.h"

namespace platform {
namespace {

constexpr int answerTimeoutMs = 1000;

std::string busAddress() {
  if (const char* address = std::getenv("DBUS_SESSION_BUS_ADDRESS")) return address;
  const char* runtime = std::getenv("XDG_RUNTIME_DIR");
  const std::string path = std::string(runtime == nullptr ? "" : runtime) + "/bus";
  std::error_code error;
  return runtime != nullptr && std::filesystem::is_socket(path, error) ? "unix:path=" + path : "";
}

// Returns the value of `key` in the first address of the list. Returns nullopt if that is not a unix socket
// or contains escaped bytes.
std::optional<std::string> unixSocket(std::string_view addresses, std::string_view key) {
  std::string_view first = addresses.substr(0, addresses.find(';'));
  if (!first.starts_with("unix:") || first.find('%') != std::string_view::npos) return std::nullopt;
  for (first.remove_prefix(5); !first.empty();) {
    const std::string_view pair = first.substr(0, first.find(','));
    if (pair.starts_with(key) && pair.substr(key.size()).starts_with('='))
      return std::string(pair.substr(key.size() + 1));
    first.remove_prefix(std::min(pair.size() + 1, first.size()));
  }
  return std::nullopt;
}

// Starts the D-Bus authentication: a NUL byte, then lines. Any reply shows that the bus answers.
bool answersAt(const sockaddr_un& address, socklen_t length) {
  const FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  // Any error but EAGAIN (backlog full) is harmless: the D-Bus library fails with it at once too.
  if (::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), length) != 0)
    return errno != EAGAIN;
  constexpr char hello[] = "\0AUTH\r\n";
  if (::send(socket.get(), hello, sizeof hello - 1, MSG_NOSIGNAL) < 0) return true;
  pollfd answer{socket.get(), POLLIN, 0};
  return ::poll(&answer, 1, answerTimeoutMs) != 0;
}

bool answers(const std::string& addresses) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  const auto path = unixSocket(addresses, "path"), abstract = unixSocket(addresses, "abstract");
  const std::string name = path ? *path : abstract ? '\0' + *abstract : "";
  if (name.empty() || name.size() >= sizeof address.sun_path) return true;
  std::memcpy(address.sun_path, name.data(), name.size());
  const std::size_t length = offsetof(sockaddr_un, sun_path) + name.size() + (path ? 1 : 0);
  return answersAt(address, static_cast<socklen_t>(length));
}

}  // namespace

void avoidUnusableSessionBus() {
  const std::string address = busAddress();
  if (!address.empty() && answers(address)) return;
  if (!address.empty())
    systemLog(LogPriority::Error, "the session bus does not answer; continuing without it");
  ::setenv("DBUS_SESSION_BUS_ADDRESS", "disabled:", 1);
}

}  // namespace platform
