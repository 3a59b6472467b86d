#include <gmock/gmock.h>

#include <future>
#include <optional>
#include <sstream>
#include <string>
#include <thread>

#include "tests/harness/processes/wait_until.h"
#include "tests/platform/linux/helpers/filter_proxy_fixture.h"

namespace helpers {
namespace {

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

}  // namespace
}  // namespace helpers
