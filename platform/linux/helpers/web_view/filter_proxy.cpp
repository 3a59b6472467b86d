#include "platform/linux/helpers/web_view/filter_proxy.h"

#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/random.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstring>
#include <mutex>
#include <vector>

#include "platform/linux/helpers/web_view/own_networks.h"
#include "platform/linux/helpers/web_view/peer_user.h"
#include "platform/linux/helpers/web_view/relay.h"
#include "platform/linux/helpers/web_view/socks_request.h"
#include "platform/linux/helpers/web_view/thread_start.h"

namespace helpers {
namespace {

using platform::FileDescriptor;

constexpr std::chrono::seconds connectTimeout{20};
constexpr std::chrono::milliseconds acceptRetryDelay{100};
constexpr int maxConnections = 64;

// An address in the form that connect(2) takes.
struct SocketAddress {
  sockaddr_storage storage{};
  socklen_t size = 0;

  [[nodiscard]] const sockaddr* get() const { return reinterpret_cast<const sockaddr*>(&storage); }
  bool operator==(const SocketAddress& other) const {
    return size == other.size && std::memcmp(&storage, &other.storage, size) == 0;
  }
};

std::vector<SocketAddress> resolve(const Endpoint& target) {
  addrinfo hints{};
  hints.ai_family = AF_UNSPEC;
  hints.ai_socktype = SOCK_STREAM;
  hints.ai_flags = AI_NUMERICSERV;
  addrinfo* list = nullptr;
  if (::getaddrinfo(target.host.c_str(), std::to_string(target.port).c_str(), &hints, &list) != 0) return {};
  const std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> owner(list, ::freeaddrinfo);
  std::vector<SocketAddress> found;
  for (const addrinfo* entry = list; entry != nullptr; entry = entry->ai_next) {
    SocketAddress address;
    std::memcpy(&address.storage, entry->ai_addr, entry->ai_addrlen);
    address.size = entry->ai_addrlen;
    found.push_back(address);
  }
  return found;
}

bool isConnected(const FileDescriptor& socket) {
  pollfd ready{socket.get(), POLLOUT, 0};
  const auto timeout = std::chrono::milliseconds(connectTimeout).count();
  int error = 0;
  socklen_t size = sizeof error;
  return ::poll(&ready, 1, static_cast<int>(timeout)) == 1 &&
         ::getsockopt(socket.get(), SOL_SOCKET, SO_ERROR, &error, &size) == 0 && error == 0;
}

// Also excludes the public addresses of this machine and of its own networks.
bool isOnPublicNetwork(const SocketAddress& address) {
  const auto networks = ownNetworks();
  return networks && isPublic(*address.get()) && !hold(*networks, *address.get());
}

FileDescriptor connectTo(const SocketAddress& address) {
  FileDescriptor socket(
      ::socket(address.get()->sa_family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, IPPROTO_TCP));
  const bool reached = socket.valid() &&
                       (::connect(socket.get(), address.get(), address.size) == 0 || errno == EINPROGRESS) &&
                       isConnected(socket);
  if (!reached) socket.reset();
  return socket;
}

std::string randomPassword() {
  std::array<unsigned char, 16> bytes{};
  if (::getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size())) return {};
  std::string text;
  for (const unsigned char byte : bytes) {
    text += "0123456789abcdef"[byte >> 4U];
    text += "0123456789abcdef"[byte & 0xFU];
  }
  return text;
}

// The first byte of a TLS connection is the record type "handshake".
bool beginsWithTls(const FileDescriptor& client) {
  constexpr unsigned char handshake = 0x16;
  unsigned char first = 0;
  return ::recv(client.get(), &first, 1, MSG_PEEK) == 1 && first == handshake;
}

}  // namespace

// State that connection threads share with the proxy and that outlives it.
struct FilterProxy::Shared {
  struct Outcome {
    SocksReply reply = SocksReply::Refused;
    FileDescriptor server;
  };

  // Closes the connection if there are too many or no thread can be started.
  static void serveOnThread(const std::shared_ptr<Shared>& shared, FileDescriptor client);
  void serve(const FileDescriptor& client);
  [[nodiscard]] Outcome connect(const Endpoint& target, Access access);
  [[nodiscard]] Outcome connectDirectly(const Endpoint& target, Access access);
  [[nodiscard]] std::vector<SocketAddress> addressesOf(const Endpoint& target, Access access);
  [[nodiscard]] std::optional<Endpoint> currentOrigin();
  // Returns the addresses to which connections to the origin may go. The first answer of the resolver,
  // `found`, sets them. Returns an empty list if `target` is no longer the origin.
  [[nodiscard]] std::vector<SocketAddress> originAddresses(const Endpoint& target,
                                                           std::vector<SocketAddress> found);
  // The first established connection sets the only allowed address. Returns false for other addresses.
  [[nodiscard]] bool pin(const Endpoint& target, const SocketAddress& address);
  // Clears the addresses if none is pinned, so that the next connection resolves the name again.
  void forgetUnreachable(const Endpoint& target);

  UserProxy userProxy;
  std::string password;
  std::atomic<int> connections = 0;
  std::mutex mutex;
  std::optional<Endpoint> origin;
  std::vector<SocketAddress> knownAddresses;
  bool isPinned = false;
};

void FilterProxy::Shared::serveOnThread(const std::shared_ptr<Shared>& shared, FileDescriptor client) {
  if (shared->connections >= maxConnections) return;
  ++shared->connections;
  std::thread thread = startThread([shared, client = std::move(client)] {
    shared->serve(client);
    --shared->connections;
  });
  if (thread.joinable()) {
    thread.detach();
  } else {
    --shared->connections;
  }
}

void FilterProxy::Shared::serve(const FileDescriptor& client) {
  const auto target = readSocksRequest(client, password);
  if (!target) return;
  const Access access = accessTo(*target, currentOrigin());
  const Outcome outcome = access == Access::None ? Outcome{} : connect(*target, access);
  if (!sendSocksReply(client, outcome.reply) || !outcome.server.valid()) return;
  if (access == Access::PublicTls && !beginsWithTls(client)) return;
  relay(client, outcome.server);
}

FilterProxy::Shared::Outcome FilterProxy::Shared::connect(const Endpoint& target, Access access) {
  auto server = userProxy ? userProxy(target) : std::nullopt;
  if (!server) return connectDirectly(target, access);
  if (!server->valid()) return {.reply = SocksReply::Unreachable, .server = {}};
  return {.reply = SocksReply::Connected, .server = std::move(*server)};
}

FilterProxy::Shared::Outcome FilterProxy::Shared::connectDirectly(const Endpoint& target, Access access) {
  bool tried = false;
  for (const SocketAddress& address : addressesOf(target, access)) {
    if (access == Access::PublicTls && !isOnPublicNetwork(address)) continue;
    tried = true;
    FileDescriptor server = connectTo(address);
    if (!server.valid()) continue;
    if (access == Access::Any && !pin(target, address)) return {};
    return {.reply = SocksReply::Connected, .server = std::move(server)};
  }
  if (access == Access::Any) forgetUnreachable(target);
  return {.reply = tried ? SocksReply::Unreachable : SocksReply::Refused, .server = {}};
}

std::vector<SocketAddress> FilterProxy::Shared::addressesOf(const Endpoint& target, Access access) {
  if (access != Access::Any) return resolve(target);
  auto known = originAddresses(target, {});
  return known.empty() ? originAddresses(target, resolve(target)) : known;
}

std::optional<Endpoint> FilterProxy::Shared::currentOrigin() {
  const std::lock_guard lock(mutex);
  return origin;
}

std::vector<SocketAddress> FilterProxy::Shared::originAddresses(const Endpoint& target,
                                                                std::vector<SocketAddress> found) {
  const std::lock_guard lock(mutex);
  if (target != origin) return {};
  if (knownAddresses.empty()) knownAddresses = std::move(found);
  return knownAddresses;
}

bool FilterProxy::Shared::pin(const Endpoint& target, const SocketAddress& address) {
  const std::lock_guard lock(mutex);
  if (target != origin || std::ranges::count(knownAddresses, address) == 0) return false;
  knownAddresses = {address};
  isPinned = true;
  return true;
}

void FilterProxy::Shared::forgetUnreachable(const Endpoint& target) {
  const std::lock_guard lock(mutex);
  if (target == origin && !isPinned) knownAddresses.clear();
}

FilterProxy::FilterProxy(UserProxy userProxy)
    : shared_(std::make_shared<Shared>()),
      listener_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, IPPROTO_TCP)),
      stop_(::eventfd(0, EFD_CLOEXEC)) {
  shared_->userProxy = std::move(userProxy);
  shared_->password = randomPassword();
  if (stop_.valid() && !shared_->password.empty()) listen();
}

void FilterProxy::listen() {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  auto* generic = reinterpret_cast<sockaddr*>(&address);
  const bool listens = ::bind(listener_.get(), generic, size) == 0 &&
                       ::listen(listener_.get(), SOMAXCONN) == 0 &&
                       ::getsockname(listener_.get(), generic, &size) == 0;
  if (!listens) return;
  address_ = "socks5://" + std::string(socksUser) + ":" + shared_->password +
             "@127.0.0.1:" + std::to_string(ntohs(address.sin_port));
  thread_ = startThread([this] { acceptUntilStopped(); });
  if (!thread_.joinable()) address_.clear();
}

void FilterProxy::acceptUntilStopped() {
  for (;;) {
    std::array<pollfd, 2> events{{{listener_.get(), POLLIN, 0}, {stop_.get(), POLLIN, 0}}};
    if (::poll(events.data(), events.size(), -1) < 0 && errno != EINTR) return;
    if (events[1].revents != 0) return;
    if (events[0].revents == 0) continue;
    FileDescriptor client(::accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC));
    if (!client.valid()) {
      // After EMFILE the connection stays pending and poll would return at once, so wait before the next
      // accept.
      static_cast<void>(::poll(&events[1], 1, static_cast<int>(acceptRetryDelay.count())));
    } else if (comesFromThisUser(client)) {
      Shared::serveOnThread(shared_, std::move(client));
    }
  }
}

FilterProxy::~FilterProxy() {
  if (!thread_.joinable()) return;
  ::eventfd_write(stop_.get(), 1);
  thread_.join();
}

void FilterProxy::setOrigin(std::optional<Endpoint> origin) {
  const std::lock_guard lock(shared_->mutex);
  if (origin == shared_->origin) return;
  shared_->origin = std::move(origin);
  shared_->knownAddresses.clear();
  shared_->isPinned = false;
}

}  // namespace helpers
