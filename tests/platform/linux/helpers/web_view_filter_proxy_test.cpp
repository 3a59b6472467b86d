// Tests the web view's proxy with a SOCKS 5 client, real servers, and names from the sandbox's /etc/hosts.
#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <pthread.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <future>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "platform/linux/helpers/web_view/filter_proxy.h"
#include "tests/harness/processes/wait_until.h"

namespace helpers {
namespace {

using platform::FileDescriptor;

// An address of the public Internet, routed to loopback within the sandbox. No interface has it.
constexpr const char* kPublicAddress = "8.8.8.8";
constexpr const char* kHosts = "/tmp/hosts";

sockaddr_in addressOf(const std::string& address, int port) {
  sockaddr_in result{};
  result.sin_family = AF_INET;
  result.sin_port = htons(static_cast<std::uint16_t>(port));
  EXPECT_EQ(::inet_pton(AF_INET, address.c_str(), &result.sin_addr), 1);
  return result;
}

FileDescriptor connectedTo(const std::string& address, int port) {
  FileDescriptor socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  const sockaddr_in target = addressOf(address, port);
  if (::connect(socket.get(), reinterpret_cast<const sockaddr*>(&target), sizeof target) != 0) socket.reset();
  return socket;
}

std::string readSome(const FileDescriptor& socket, std::size_t count) {
  std::string bytes(count, '\0');
  const ssize_t got = ::recv(socket.get(), bytes.data(), count, MSG_WAITALL);
  bytes.resize(got < 0 ? 0 : static_cast<std::size_t>(got));
  return bytes;
}

bool sendAll(const FileDescriptor& socket, const std::string& bytes) {
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

std::string inBytes(std::uint16_t port) {
  return {static_cast<char>(port >> 8U), static_cast<char>(port & 0xFFU)};
}

std::string counted(const std::string& text) {
  return static_cast<char>(text.size()) + text;
}

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

TEST_F(FilterProxyTest, ConnectsToOriginOnLoopback) {
  const EchoServer server("127.0.0.1", 0, "origin");
  proxy_->setOrigin(Endpoint{"127.0.0.1", server.port()});
  const Client client = toAddress("127.0.0.1", server.port());
  ASSERT_EQ(client.reply, kConnected);
  EXPECT_EQ(readSome(client.socket, 6), "origin");
  ASSERT_TRUE(sendAll(client.socket, "echo"));
  EXPECT_EQ(readSome(client.socket, 4), "echo");
}

TEST_F(FilterProxyTest, OtherPortOfOriginIsRefused) {
  const EchoServer server("127.0.0.1", 0, "other");
  proxy_->setOrigin(Endpoint{"127.0.0.1", static_cast<std::uint16_t>(server.port() + 1)});
  EXPECT_EQ(toAddress("127.0.0.1", server.port()).reply, kRefused);
  EXPECT_EQ(server.clients(), 0);
}

TEST_F(FilterProxyTest, FormerOriginIsRefused) {
  const EchoServer server("127.0.0.1", 0, "origin");
  proxy_->setOrigin(Endpoint{"127.0.0.1", server.port()});
  EXPECT_EQ(toAddress("127.0.0.1", server.port()).reply, kConnected);
  proxy_->setOrigin(std::nullopt);
  EXPECT_EQ(toAddress("127.0.0.1", server.port()).reply, kRefused);
}

TEST_F(FilterProxyTest, NameResolvingToLoopbackIsRefused) {
  const EchoServer server("127.0.0.1", 443, "local");
  ASSERT_TRUE(server.listens());
  nameIs("127.0.0.1 rebound.example\n::1 rebound6.example\n::ffff:127.0.0.1 mapped.example\n");
  EXPECT_EQ(toName("rebound.example", 443).reply, kRefused);
  EXPECT_EQ(toName("rebound6.example", 443).reply, kRefused);
  EXPECT_EQ(toName("mapped.example", 443).reply, kRefused);
  EXPECT_EQ(toName("127.1", 443).reply, kRefused);
  EXPECT_EQ(server.clients(), 0);
}

TEST_F(FilterProxyTest, ConnectsToPublicAddressForTls) {
  const EchoServer server(kPublicAddress, 443, "public");
  ASSERT_TRUE(server.listens());
  nameIs(std::string(kPublicAddress) + " analytics.example\n");
  const Client client = toName("Analytics.Example", 443);
  ASSERT_EQ(client.reply, kConnected);
  ASSERT_TRUE(sendAll(client.socket, "\x16\x03\x01"));
  EXPECT_EQ(readSome(client.socket, 9), "public\x16\x03\x01");
}

TEST_F(FilterProxyTest, NameOfPublicAndLocalAddressConnectsToPublicOne) {
  const EchoServer local("127.0.0.1", 443, "local");
  const EchoServer server(kPublicAddress, 443, "public");
  nameIs("127.0.0.1 both.example\n" + std::string(kPublicAddress) + " both.example\n");
  const Client client = toName("both.example", 443);
  ASSERT_EQ(client.reply, kConnected);
  ASSERT_TRUE(sendAll(client.socket, "\x16"));
  EXPECT_EQ(readSome(client.socket, 6), "public");
  EXPECT_EQ(local.clients(), 0);
}

TEST_F(FilterProxyTest, PlainTextToPublicAddressIsClosed) {
  const EchoServer server(kPublicAddress, 443, "public");
  const Client client = toAddress(kPublicAddress, 443);
  ASSERT_EQ(client.reply, kConnected);
  ASSERT_TRUE(sendAll(client.socket, "GET / HTTP/1.1\r\n\r\n"));
  EXPECT_EQ(readSome(client.socket, 1), "");
}

TEST_F(FilterProxyTest, OtherPortOfPublicAddressIsRefused) {
  const EchoServer server(kPublicAddress, 80, "public");
  ASSERT_TRUE(server.listens());
  EXPECT_EQ(toAddress(kPublicAddress, 80).reply, kRefused);
  EXPECT_EQ(server.clients(), 0);
}

TEST_F(FilterProxyTest, UnusedPortIsUnreachable) {
  EXPECT_EQ(toAddress(kPublicAddress, 443).reply, kUnreachable);
}

TEST_F(FilterProxyTest, UnknownNameIsNotConnected) {
  EXPECT_EQ(toName("unknown.example", 443).reply, kRefused);
}

// DNS rebinding of the origin's name.
TEST_F(FilterProxyTest, OriginKeepsAddressOfFirstConnection) {
  const EchoServer server(kPublicAddress, 8090, "public");
  const EchoServer local("127.0.0.1", 8090, "local");
  ASSERT_TRUE(server.listens() && local.listens());
  proxy_->setOrigin(Endpoint{"page.example", 8090});
  nameIs(std::string(kPublicAddress) + " page.example\n");
  ASSERT_EQ(readSome(toName("page.example", 8090).socket, 6), "public");
  nameIs("127.0.0.1 page.example\n");
  proxy_->setOrigin(Endpoint{"page.example", 8090});
  EXPECT_EQ(readSome(toName("page.example", 8090).socket, 6), "public");
  EXPECT_EQ(local.clients(), 0);
}

// Returns the number of connections to `port` in state SYN_SENT.
int connectsTo(std::uint16_t port) {
  constexpr const char* synSent = "02";
  std::ifstream table("/proc/self/net/tcp");
  int found = 0;
  for (std::string line; std::getline(table, line);) {
    std::istringstream fields(line);
    std::string slot, local, remote, state;
    fields >> slot >> local >> remote >> state;
    if (state == synSent && std::stoi(remote.substr(remote.find(':') + 1), nullptr, 16) == port) ++found;
  }
  return found;
}

// DNS rebinding between concurrent connections.
TEST_F(FilterProxyTest, ConcurrentFirstConnectionsUseOneAddress) {
  EchoServer first("127.0.0.2", 8090, "first", EchoServer::Start::Later);
  const EchoServer other("127.0.0.1", 8090, "other");
  ASSERT_TRUE(first.listens() && other.listens());
  FileDescriptor filler = connectedTo("127.0.0.2", 8090);
  proxy_->setOrigin(Endpoint{"page.example", 8090});
  nameIs("127.0.0.2 page.example\n");
  const auto nameOfServer = [&] { return readSome(toName("page.example", 8090).socket, 5); };
  auto one = std::async(std::launch::async, nameOfServer);
  ASSERT_TRUE(test_support::waitUntil([] { return connectsTo(8090) == 1; }));
  nameIs("127.0.0.1 page.example\n");
  auto two = std::async(std::launch::async, nameOfServer);
  ASSERT_TRUE(test_support::waitUntil([&] { return connectsTo(8090) == 2 || other.clients() == 1; }));
  filler.reset();
  first.run();
  EXPECT_EQ(one.get(), "first");
  EXPECT_EQ(two.get(), "first");
  EXPECT_EQ(other.clients(), 0);
}

TEST_F(FilterProxyTest, UnreachableOriginIsResolvedAgain) {
  const EchoServer server("127.0.0.1", 8090, "later");
  proxy_->setOrigin(Endpoint{"page.example", 8090});
  nameIs("127.0.0.2 page.example\n");
  ASSERT_EQ(toName("page.example", 8090).reply, kUnreachable);
  nameIs("127.0.0.1 page.example\n");
  EXPECT_EQ(readSome(toName("page.example", 8090).socket, 5), "later");
}

// Public address ranges that are assigned to an interface of this machine.
TEST_F(FilterProxyTest, AddressOnOwnNetworkIsRefused) {
  ASSERT_EQ(std::system("ip address add 9.9.9.1/24 dev lo && ip address add 2a00:1::1/64 dev lo nodad"), 0);
  const EchoServer own("9.9.9.1", 443, "own");
  const EchoServer neighbour("9.9.9.77", 443, "neighbour");
  EXPECT_TRUE(own.listens() && neighbour.listens());
  nameIs("9.9.9.77 neighbour.example\n2a00:1::5 neighbour6.example\n::ffff:9.9.9.77 mapped.example\n");
  EXPECT_EQ(toAddress("9.9.9.1", 443).reply, kRefused);
  EXPECT_EQ(toAddress("9.9.9.77", 443).reply, kRefused);
  for (const char* name : {"neighbour.example", "neighbour6.example", "mapped.example"})
    EXPECT_EQ(toName(name, 443).reply, kRefused) << name;
  EXPECT_EQ(own.clients() + neighbour.clients(), 0);
  EXPECT_EQ(std::system("ip address del 9.9.9.1/24 dev lo && ip address del 2a00:1::1/64 dev lo"), 0);
}

TEST_F(FilterProxyTest, NewOriginIsResolvedAgain) {
  const EchoServer server(kPublicAddress, 8090, "first");
  const EchoServer local("127.0.0.1", 8090, "other");
  nameIs(std::string(kPublicAddress) + " first.example\n127.0.0.1 second.example\n");
  proxy_->setOrigin(Endpoint{"first.example", 8090});
  ASSERT_EQ(readSome(toName("first.example", 8090).socket, 5), "first");
  proxy_->setOrigin(Endpoint{"second.example", 8090});
  EXPECT_EQ(readSome(toName("second.example", 8090).socket, 5), "other");
}

TEST_F(FilterProxyTest, WrongPasswordClosesConnection) {
  const EchoServer server("127.0.0.1", 0, "origin");
  proxy_->setOrigin(Endpoint{"127.0.0.1", server.port()});
  const std::string target =
      std::string("\x05\x01\x00\x03", 4) + counted("127.0.0.1") + inBytes(server.port());
  EXPECT_EQ(request(target, "").reply, kHungUp);
  EXPECT_EQ(request(target, password() + "x").reply, kHungUp);
  EXPECT_EQ(request(target, password()).reply, kConnected);
  EXPECT_THAT(FilterProxy().address(), testing::Not(testing::HasSubstr(password())));
}

TEST_F(FilterProxyTest, ClientWithoutPasswordIsRejected) {
  const FileDescriptor client = connectedTo("127.0.0.1", port());
  ASSERT_TRUE(sendAll(client, {"\x05\x01\x00", 3}));
  EXPECT_EQ(readSome(client, 3), "\x05\xff");
}

TEST_F(FilterProxyTest, OtherRequestThanConnectClosesConnection) {
  const std::string listen = std::string("\x05\x02\x00\x01\x7f\x00\x00\x01", 8) + inBytes(80);
  EXPECT_EQ(request(listen, password()).reply, kHungUp);
  const std::string nul = std::string("\x05\x01\x00\x03", 4) + counted(std::string("a\0b", 3)) + inBytes(443);
  EXPECT_EQ(request(nul, password()).reply, kHungUp);
}

TEST_F(FilterProxyTest, LargeTransferArrivesInBothDirections) {
  const EchoServer server("127.0.0.1", 0, "");
  proxy_->setOrigin(Endpoint{"127.0.0.1", server.port()});
  const Client client = toAddress("127.0.0.1", server.port());
  ASSERT_EQ(client.reply, kConnected);
  const std::string bytes(300000, 'x');
  std::thread writer([&] { EXPECT_TRUE(sendAll(client.socket, bytes)); });
  EXPECT_EQ(readSome(client.socket, bytes.size()), bytes);
  writer.join();
}

// More than both socket buffers hold, so that the proxy's writes are partial.
TEST_F(FilterProxyTest, ReplyReadLateArrivesWhole) {
  std::string reply;
  while (reply.size() < std::size_t{16} * 1024 * 1024) reply += std::to_string(reply.size()) + ' ';
  const EchoServer server("127.0.0.1", 0, reply);
  proxy_->setOrigin(Endpoint{"127.0.0.1", server.port()});
  const Client client = toAddress("127.0.0.1", server.port());
  ASSERT_EQ(client.reply, kConnected);
  EXPECT_TRUE(readSome(client.socket, reply.size()) == reply);
}

TEST_F(FilterProxyTest, ConnectionsBeyondLimitAreClosed) {
  const EchoServer server("127.0.0.1", 0, "origin");
  proxy_->setOrigin(Endpoint{"127.0.0.1", server.port()});
  std::vector<FileDescriptor> silent;
  for (int i = 0; i < 64; ++i) silent.push_back(connectedTo("127.0.0.1", port()));
  const FileDescriptor extra = connectedTo("127.0.0.1", port());
  EXPECT_EQ(readSome(extra, 1), "");
  silent.clear();
  EXPECT_TRUE(
      test_support::waitUntil([&] { return toAddress("127.0.0.1", server.port()).reply == kConnected; }));
}

// Connections of another user, for the lifetime of the object.
class OtherUser {
 public:
  OtherUser(int port, int count) {
    std::thread([&] {
      // The raw system call changes the user of this thread only; the C library's setresuid() changes all
      // threads.
      isAnother_ = ::syscall(SYS_setresuid, kOtherUser, kOtherUser, kOtherUser) == 0;
      for (int i = 0; i < count; ++i) sockets_.push_back(connectedTo("127.0.0.1", port));
    }).join();
  }
  [[nodiscard]] bool isAnother() const {
    struct stat status {};
    return isAnother_ && ::fstat(sockets_.front().get(), &status) == 0 && status.st_uid == kOtherUser;
  }
  [[nodiscard]] const FileDescriptor& last() const { return sockets_.back(); }

 private:
  static constexpr uid_t kOtherUser = 65534;
  bool isAnother_ = false;
  std::vector<FileDescriptor> sockets_;
};

TEST_F(FilterProxyTest, ConnectionsOfAnotherUserDoNotCount) {
  const EchoServer server("127.0.0.1", 0, "origin");
  proxy_->setOrigin(Endpoint{"127.0.0.1", server.port()});
  const OtherUser otherUser(port(), 100);
  if (!otherUser.isAnother()) GTEST_SKIP() << "this user can't become another";
  EXPECT_EQ(toAddress("127.0.0.1", server.port()).reply, kConnected);
  EXPECT_EQ(readSome(otherUser.last(), 1), "");
}

std::chrono::microseconds processorTime() {
  rusage usage{};
  ::getrusage(RUSAGE_SELF, &usage);
  return std::chrono::seconds(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
         std::chrono::microseconds(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec);
}

// accept4() fails with EMFILE, and poll() reports the pending connection again immediately.
TEST_F(FilterProxyTest, OutOfDescriptorsDelaysClientWithoutSpinning) {
  const EchoServer server("127.0.0.1", 0, "origin");
  proxy_->setOrigin(Endpoint{"127.0.0.1", server.port()});
  const FileDescriptor late(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  constexpr timeval second{1, 0};
  ::setsockopt(late.get(), SOL_SOCKET, SO_RCVTIMEO, &second, sizeof second);
  rlimit before{};
  ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
  const rlimit none{3, before.rlim_max};
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
  const sockaddr_in target = addressOf("127.0.0.1", port());
  EXPECT_EQ(::connect(late.get(), reinterpret_cast<const sockaddr*>(&target), sizeof target), 0);
  EXPECT_TRUE(sendAll(late, {"\x05\x01\x02", 3}));
  const auto start = processorTime();
  char byte = 0;
  EXPECT_EQ(::recv(late.get(), &byte, 1, 0), -1);
  EXPECT_LT(processorTime() - start, std::chrono::milliseconds(300));
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &before), 0);
  constexpr timeval patience{60, 0};
  ::setsockopt(late.get(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
  EXPECT_EQ(readSome(late, 2), "\x05\x02");
}

TEST_F(FilterProxyTest, FailedThreadCreationClosesConnection) {
  const EchoServer server("127.0.0.1", 0, "origin");
  proxy_->setOrigin(Endpoint{"127.0.0.1", server.port()});
  pthread_attr_t before;
  pthread_attr_t endless;
  ASSERT_EQ(::pthread_getattr_default_np(&before), 0);
  ASSERT_EQ(::pthread_getattr_default_np(&endless), 0);
  ASSERT_EQ(::pthread_attr_setstacksize(&endless, std::size_t{1} << 50U), 0);
  ASSERT_EQ(::pthread_setattr_default_np(&endless), 0);
  EXPECT_THROW(std::thread([] {}).join(), std::system_error);
  const FileDescriptor client = connectedTo("127.0.0.1", port());
  EXPECT_EQ(readSome(client, 1), "");
  EXPECT_EQ(FilterProxy().address(), "");
  ASSERT_EQ(::pthread_setattr_default_np(&before), 0);
  EXPECT_EQ(toAddress("127.0.0.1", server.port()).reply, kConnected);
}

// Such characters would change the request to the user's proxy.
TEST_F(FilterProxyTest, NameWithInvalidCharactersClosesConnection) {
  std::atomic<int> asked = 0;
  proxy_ = std::make_unique<FilterProxy>([&](const Endpoint&) -> std::optional<FileDescriptor> {
    ++asked;
    return FileDescriptor();
  });
  for (const char* name :
       {"a.example@localhost", "localhost:80/a.example", "localhost#a.example", "a.example/",
        "a.example\r\nX: y", "a.example ", "%6c.example", "[::1", "\xc3\xa9.example"})
    EXPECT_EQ(toName(name, 443).reply, kHungUp) << name;
  EXPECT_EQ(asked, 0);
}

TEST_F(FilterProxyTest, UserProxyIsNotUsedForLocalHosts) {
  std::atomic<int> asked = 0;
  proxy_ = std::make_unique<FilterProxy>([&](const Endpoint&) -> std::optional<FileDescriptor> {
    ++asked;
    return FileDescriptor();
  });
  for (const char* name :
       {"localhost", "localhost.", "a.localhost.", "127.1", "0x7f.1", "0x7f000001", "2130706433",
        "0177.0.0.1", "127.0.0.1.", "::1", "fe80::1", "router", "printer.local"})
    EXPECT_EQ(toName(name, 443).reply, kRefused) << name;
  EXPECT_EQ(asked, 0);
}

TEST_F(FilterProxyTest, UserProxyIsUsedForAllowedRequests) {
  const EchoServer server("127.0.0.1", 0, "through");
  std::atomic<int> asked = 0;
  proxy_ = std::make_unique<FilterProxy>([&](const Endpoint& target) -> std::optional<FileDescriptor> {
    ++asked;
    if (target.host == "direct.example") return std::nullopt;
    if (target.host == "failing.example") return FileDescriptor();
    return connectedTo("127.0.0.1", server.port());
  });
  EXPECT_EQ(toName("localhost", 443).reply, kRefused);
  EXPECT_EQ(toName("www.example", 80).reply, kRefused);
  EXPECT_EQ(asked, 0);
  const Client client = toName("www.example", 443);
  ASSERT_EQ(client.reply, kConnected);
  ASSERT_TRUE(sendAll(client.socket, "\x16"));
  EXPECT_EQ(readSome(client.socket, 8), "through\x16");
  EXPECT_EQ(toName("failing.example", 443).reply, kUnreachable);
  nameIs("127.0.0.1 direct.example\n");
  EXPECT_EQ(toName("direct.example", 443).reply, kRefused);
}

}  // namespace
}  // namespace helpers
