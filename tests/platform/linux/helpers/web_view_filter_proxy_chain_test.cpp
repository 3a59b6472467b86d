#include <atomic>
#include <optional>

#include "tests/platform/linux/helpers/filter_proxy_fixture.h"

namespace helpers {
namespace {

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
