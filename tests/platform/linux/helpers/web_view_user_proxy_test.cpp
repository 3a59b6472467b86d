// Tests connections through the proxy of the environment, with a real proxy.
#include <gmock/gmock.h>
#include <sys/socket.h>

#include <cstdlib>
#include <string>

#include "platform/linux/helpers/web_view/user_proxy.h"
#include "tests/harness/servers/page_server.h"
#include "tests/platform/linux/helpers/loopback_proxy.h"

namespace web_view_test {
namespace {

using helpers::connectThroughUserProxy;
using platform::FileDescriptor;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

class UserProxyTest : public testing::Test {
 protected:
  void TearDown() override {
    for (const char* name : {"http_proxy", "https_proxy", "no_proxy"}) ::unsetenv(name);
  }
  static void name(const char* variable, const std::string& address) {
    ::setenv(variable, address.c_str(), 1);
  }
  [[nodiscard]] std::uint16_t serversPort() const {
    const std::string address = server_.address("");
    return static_cast<std::uint16_t>(std::stoi(address.substr(address.rfind(':') + 1)));
  }
  // Sends a GET over `socket`. Returns whether the page server receives it.
  [[nodiscard]] bool reachesServer(const FileDescriptor& socket, const std::string& path) const {
    const std::string request = "GET " + path + " HTTP/1.0\r\n\r\n";
    return ::send(socket.get(), request.data(), request.size(), MSG_NOSIGNAL) ==
               static_cast<ssize_t>(request.size()) &&
           server_.waitFor(path);
  }

  PageServer server_;
};

TEST_F(UserProxyTest, ReturnsNulloptWithoutProxyInEnvironment) {
  EXPECT_FALSE(connectThroughUserProxy({"www.example", 443}));
  EXPECT_FALSE(connectThroughUserProxy({"www.example", 80}));
}

TEST_F(UserProxyTest, ProxyOfSchemeConnectsToEndpoint) {
  const LoopbackProxy plain(serversPort());
  const LoopbackProxy secure(serversPort());
  name("http_proxy", plain.address());
  name("https_proxy", secure.address());
  const auto toHttp = connectThroughUserProxy({"www.example", 80});
  const auto toHttps = connectThroughUserProxy({"www.example", 443});
  const auto toAddress6 = connectThroughUserProxy({"2a00::1", 443});
  ASSERT_TRUE(toHttp && toHttps && toAddress6);
  EXPECT_TRUE(reachesServer(*toHttp, "/http"));
  EXPECT_TRUE(reachesServer(*toHttps, "/https"));
  EXPECT_THAT(plain.asked(), ElementsAre(StartsWith("CONNECT www.example:80 ")));
  EXPECT_THAT(secure.asked(), ElementsAre(StartsWith("CONNECT www.example:443 "), StartsWith("CONNECT ")));
}

TEST_F(UserProxyTest, RefusalReturnsInvalidDescriptor) {
  const LoopbackProxy proxy(serversPort(), LoopbackProxy::Answer::Refuses);
  name("https_proxy", proxy.address());
  const auto socket = connectThroughUserProxy({"www.example", 443});
  ASSERT_TRUE(socket);
  EXPECT_FALSE(socket->valid());
  EXPECT_THAT(proxy.asked(), ElementsAre(StartsWith("CONNECT www.example:443 ")));
}

TEST_F(UserProxyTest, UnreachableProxyReturnsInvalidDescriptor) {
  name("https_proxy", "http://127.0.0.1:1");
  const auto socket = connectThroughUserProxy({"www.example", 443});
  ASSERT_TRUE(socket);
  EXPECT_FALSE(socket->valid());
}

TEST_F(UserProxyTest, ProxyWithoutTlsReturnsInvalidDescriptor) {
  const LoopbackProxy proxy(serversPort(), LoopbackProxy::Answer::Refuses);
  name("https_proxy", "https://127.0.0.1:1");
  const auto socket = connectThroughUserProxy({"www.example", 443});
  ASSERT_TRUE(socket);
  EXPECT_FALSE(socket->valid());
}

TEST_F(UserProxyTest, HostOfNoProxyReturnsNullopt) {
  const LoopbackProxy proxy(serversPort());
  name("https_proxy", proxy.address());
  name("no_proxy", "direct.example");
  EXPECT_FALSE(connectThroughUserProxy({"direct.example", 443}));
  EXPECT_THAT(proxy.asked(), IsEmpty());
}

}  // namespace
}  // namespace web_view_test
