#pragma once

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <string>
#include <thread>
#include <utility>

#include "platform/linux/helpers/web_view/filter_proxy.h"

// Tests the web view's proxy with a SOCKS 5 client, real servers, and names from the sandbox's /etc/hosts.
namespace helpers {

using platform::FileDescriptor;

// An address of the public Internet, routed to loopback within the sandbox. No interface has it.
inline constexpr const char* kPublicAddress = "8.8.8.8";
inline constexpr const char* kHosts = "/tmp/hosts";

inline sockaddr_in addressOf(const std::string& address, int port) {
  sockaddr_in result{};
  result.sin_family = AF_INET;
  result.sin_port = htons(static_cast<std::uint16_t>(port));
  EXPECT_EQ(::inet_pton(AF_INET, address.c_str(), &result.sin_addr), 1);
  return result;
}

inline FileDescriptor connectedTo(const std::string& address, int port) {
  FileDescriptor socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  const sockaddr_in target = addressOf(address, port);
  if (::connect(socket.get(), reinterpret_cast<const sockaddr*>(&target), sizeof target) != 0) socket.reset();
  return socket;
}

inline std::string readSome(const FileDescriptor& socket, std::size_t count) {
  std::string bytes(count, '\0');
  const ssize_t got = ::recv(socket.get(), bytes.data(), count, MSG_WAITALL);
  bytes.resize(got < 0 ? 0 : static_cast<std::size_t>(got));
  return bytes;
}

inline bool sendAll(const FileDescriptor& socket, const std::string& bytes) {
  return ::send(socket.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(bytes.size());
}

// Sends `name` to each client, echoes what it receives and counts clients. With Start::Later and a backlog of
// 0, a second client's connect() blocks until run().
class EchoServer {
 public:
  enum class Start { Now, Later };
  EchoServer(const std::string& address, int port, std::string name, Start start = Start::Now)
      : name_(std::move(name)) {
    const int yes = 1;
    ::setsockopt(socket_.get(), SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    sockaddr_in own = addressOf(address, port);
    socklen_t size = sizeof own;
    listens_ = ::bind(socket_.get(), reinterpret_cast<const sockaddr*>(&own), size) == 0 &&
               ::listen(socket_.get(), start == Start::Now ? 10 : 0) == 0;
    ::getsockname(socket_.get(), reinterpret_cast<sockaddr*>(&own), &size);
    port_ = ntohs(own.sin_port);
    if (start == Start::Now) run();
  }
  ~EchoServer() {
    ::shutdown(socket_.get(), SHUT_RDWR);
    if (thread_.joinable()) thread_.join();
  }
  EchoServer(const EchoServer&) = delete;
  EchoServer& operator=(const EchoServer&) = delete;

  void run() {
    if (listens_) thread_ = std::thread([this] { serve(); });
  }
  [[nodiscard]] bool listens() const { return listens_; }
  [[nodiscard]] std::uint16_t port() const { return port_; }
  [[nodiscard]] int clients() const { return clients_; }

 private:
  void serve() {
    for (;;) {
      const FileDescriptor client(::accept4(socket_.get(), nullptr, nullptr, SOCK_CLOEXEC));
      if (!client.valid()) return;
      ++clients_;
      static_cast<void>(sendAll(client, name_));
      for (std::string bytes = readSome(client, 1); !bytes.empty(); bytes = readSome(client, 1))
        static_cast<void>(sendAll(client, bytes));
    }
  }

  std::string name_;
  FileDescriptor socket_{::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)};
  bool listens_ = false;
  std::uint16_t port_ = 0;
  std::atomic<int> clients_ = 0;
  std::thread thread_;
};

inline std::string inBytes(std::uint16_t port) {
  return {static_cast<char>(port >> 8U), static_cast<char>(port & 0xFFU)};
}

inline std::string counted(const std::string& text) {
  return static_cast<char>(text.size()) + text;
}

// Runs the proxy with names from a file that is bind-mounted over the /etc/hosts of the sandbox.
class FilterProxyTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    ASSERT_EQ(std::system(("ip route add local " + std::string(kPublicAddress) + "/32 dev lo").c_str()), 0);
    std::ofstream(kHosts) << "";
    ASSERT_EQ(::mount(kHosts, "/etc/hosts", nullptr, MS_BIND, nullptr), 0);
  }
  static void TearDownTestSuite() {
    ::umount2("/etc/hosts", MNT_DETACH);
    EXPECT_EQ(std::system(("ip route del local " + std::string(kPublicAddress) + "/32 dev lo").c_str()), 0);
  }
  void SetUp() override { ASSERT_NE(proxy_->address(), ""); }
  void TearDown() override { nameIs(""); }

  // Truncates the file instead of replacing it, because it is bind-mounted.
  static void nameIs(const std::string& lines) { std::ofstream(kHosts, std::ios::trunc) << lines; }

  [[nodiscard]] std::string password() const {
    const std::string text = proxy_->address();
    const std::size_t begin = text.find("view:") + 5;
    return text.substr(begin, text.find('@') - begin);
  }
  [[nodiscard]] int port() const {
    return std::stoi(proxy_->address().substr(proxy_->address().rfind(':') + 1));
  }

  // A client after its request. `reply` is the SOCKS reply code, or kHungUp if the proxy closed the
  // connection.
  struct Client {
    FileDescriptor socket;
    int reply = -1;
  };
  [[nodiscard]] Client request(const std::string& target, const std::string& given) const {
    Client client{connectedTo("127.0.0.1", port())};
    const timeval patience{60, 0};
    ::setsockopt(client.socket.get(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    if (!sendAll(client.socket, {"\x05\x02\x00\x02", 4}) || readSome(client.socket, 2) != "\x05\x02")
      return client;
    if (!sendAll(client.socket, "\x01" + counted("view") + counted(given))) return client;
    if (readSome(client.socket, 2) != std::string("\x01\x00", 2) || !sendAll(client.socket, target))
      return client;
    const std::string reply = readSome(client.socket, 10);
    if (reply.size() == 10) client.reply = reply[1];
    return client;
  }
  [[nodiscard]] Client toName(const std::string& name, std::uint16_t port) const {
    return request(std::string("\x05\x01\x00\x03", 4) + counted(name) + inBytes(port), password());
  }
  [[nodiscard]] Client toAddress(const std::string& address, std::uint16_t port) const {
    const sockaddr_in target = addressOf(address, port);
    return request(std::string("\x05\x01\x00\x01", 4) +
                       std::string(reinterpret_cast<const char*>(&target.sin_addr), 4) + inBytes(port),
                   password());
  }

  static constexpr int kConnected = 0;
  static constexpr int kRefused = 2;
  static constexpr int kUnreachable = 4;
  static constexpr int kHungUp = -1;
  std::unique_ptr<FilterProxy> proxy_ = std::make_unique<FilterProxy>();
};

}  // namespace helpers
