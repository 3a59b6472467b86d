#include "platform/linux/helpers/web_view/user_proxy.h"

#include <fcntl.h>
#include <gio/gio.h>

#include <chrono>
#include <memory>
#include <string>
#include <string_view>

#include "platform/linux/helpers/web_view/glib_handles.h"

namespace helpers {
namespace {

constexpr std::chrono::seconds timeout{20};

// The scheme selects the proxy variable: https_proxy or http_proxy.
std::string addressOf(const Endpoint& target) {
  const std::string scheme = target.port == 443 ? "https://" : "http://";
  const bool isAddress6 = target.host.find(':') != std::string::npos;
  return scheme + (isAddress6 ? "[" + target.host + "]" : target.host) + ":" + std::to_string(target.port);
}

bool isDirect(const std::string& address) {
  struct FreeStrings {
    void operator()(char** texts) const { g_strfreev(texts); }
  };
  const std::unique_ptr<char*, FreeStrings> proxies(
      g_proxy_resolver_lookup(g_proxy_resolver_get_default(), address.c_str(), nullptr, nullptr));
  return !proxies || *proxies == nullptr || std::string_view(*proxies) == "direct://";
}

}  // namespace

std::optional<platform::FileDescriptor> connectThroughUserProxy(const Endpoint& target) {
  const std::string address = addressOf(target);
  if (isDirect(address)) return std::nullopt;
  const ObjectPointer<GSocketClient> client(g_socket_client_new());
  g_socket_client_set_timeout(client.get(), timeout.count());
  const ObjectPointer<GSocketConnection> connection(
      g_socket_client_connect_to_uri(client.get(), address.c_str(), target.port, nullptr, nullptr));
  // A connection over TLS to the proxy has no descriptor for plaintext.
  if (!connection || G_IS_TCP_WRAPPER_CONNECTION(connection.get())) return platform::FileDescriptor();
  const int socket = g_socket_get_fd(g_socket_connection_get_socket(connection.get()));
  return platform::FileDescriptor(::fcntl(socket, F_DUPFD_CLOEXEC, 0));
}

}  // namespace helpers
