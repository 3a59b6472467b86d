// Tests which servers a page can reach.
#include <gmock/gmock.h>
#include <netinet/in.h>
#include <sys/mount.h>
#include <sys/socket.h>

#include <array>
#include <fstream>
#include <mutex>
#include <regex>
#include <thread>

#include "tests/harness/processes/file_descriptor.h"
#include "tests/platform/linux/helpers/loopback_proxy.h"
#include "tests/platform/linux/helpers/web_view_helper.h"

namespace web_view_test {
namespace {

using testing::IsEmpty;

// A name server on port 53 of loopback, which /etc/resolv.conf names for the lifetime of the object. Replies
// NXDOMAIN to every query and records the names.
class NameServer {
 public:
  NameServer() {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(53);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    std::ofstream(kConfiguration) << "nameserver 127.0.0.1\n";
    listens_ = ::bind(socket_.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
               ::mount(kConfiguration, "/etc/resolv.conf", nullptr, MS_BIND, nullptr) == 0;
    if (listens_) thread_ = std::thread([this] { serve(); });
  }
  ~NameServer() {
    ::shutdown(socket_.get(), SHUT_RDWR);
    if (!thread_.joinable()) return;
    thread_.join();
    ::umount2("/etc/resolv.conf", MNT_DETACH);
  }
  NameServer(const NameServer&) = delete;
  NameServer& operator=(const NameServer&) = delete;

  [[nodiscard]] bool listens() const { return listens_; }
  [[nodiscard]] std::vector<std::string> asked() const {
    const std::lock_guard lock(mutex_);
    return asked_;
  }

 private:
  void serve() {
    std::array<char, 512> message{};
    sockaddr_in client{};
    for (;;) {
      socklen_t size = sizeof client;
      auto* generic = reinterpret_cast<sockaddr*>(&client);
      const ssize_t count = ::recvfrom(socket_.get(), message.data(), message.size(), 0, generic, &size);
      if (count <= 12) return;
      remember({message.data() + 12, static_cast<std::size_t>(count) - 12});
      message[2] = static_cast<char>(0x81);  // a reply with RCODE 3 (NXDOMAIN)
      message[3] = static_cast<char>(0x83);
      ::sendto(socket_.get(), message.data(), static_cast<std::size_t>(count), 0, generic, size);
    }
  }
  void remember(std::string_view question) {
    std::string name;
    for (std::size_t at = 0; at < question.size() && question[at] != 0;) {
      const auto length = static_cast<std::size_t>(static_cast<unsigned char>(question[at]));
      name += (name.empty() ? "" : ".") + std::string(question.substr(at + 1, length));
      at += length + 1;
    }
    const std::lock_guard lock(mutex_);
    asked_.push_back(name);
  }

  static constexpr const char* kConfiguration = "/tmp/resolv.conf";
  test_support::FileDescriptor socket_{::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0)};
  bool listens_ = false;
  mutable std::mutex mutex_;
  std::vector<std::string> asked_;
  std::thread thread_;
};

// Requests of a page to another server; PORT stands for its port. A navigation starts after the reply to
// "/running", because it would cancel that request.
class WebViewOtherServer : public WebViewHelper, public testing::WithParamInterface<const char*> {
 protected:
  [[nodiscard]] std::string script() const {
    const std::string address = other_.address("");
    return std::regex_replace(std::string(GetParam()), std::regex(":PORT"),
                              address.substr(address.rfind(':')));
  }

  PageServer other_;
};

TEST_P(WebViewOtherServer, OnLoopbackIsNotReached) {
  server_.redirect("/redirect", other_.address("/page"));
  startWithScript(script());
  helper_.closeInput();
  EXPECT_TRUE(helper_.wait());
  EXPECT_THAT(other_.asked(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Ways, WebViewOtherServer,
    testing::Values(
        "fetch('http://127.0.0.1:PORT/page', {mode: 'no-cors'});",
        "fetch('http://localhost:PORT/page', {mode: 'no-cors'});",
        "new Image().src = 'http://127.0.0.1:PORT/page';",
        "navigator.sendBeacon('http://127.0.0.1:PORT/page', 'x');",
        "fetch('http://2130706433:PORT/page', {mode: 'no-cors'});",
        "fetch('http://0:PORT/page', {mode: 'no-cors'});",
        "fetch('http://[::ffff:127.0.0.1]:PORT/page', {mode: 'no-cors'});",
        "new EventSource('http://127.0.0.1:PORT/page');",
        "new Worker(URL.createObjectURL(new Blob([\"importScripts('http://127.0.0.1:PORT/page')\"])));",
        "document.documentElement.innerHTML = '<form action=http://127.0.0.1:PORT/page method=post></form>';"
        "fetch('/running').finally(() => document.forms[0].submit());",
        "document.documentElement.innerHTML = '<link rel=stylesheet href=http://127.0.0.1:PORT/page>"
        "<object data=http://127.0.0.1:PORT/page></object><a href=/ ping=http://127.0.0.1:PORT/page>a</a>';"
        "document.links[0].click();",
        "new WebSocket('ws://127.0.0.1:PORT/page');",
        "fetch('/running').finally(() => { location.href = 'http://127.0.0.1:PORT/page'; });",
        "fetch('/redirect', {mode: 'no-cors'});",
        "const f = document.createElement('iframe'); f.src = 'http://127.0.0.1:PORT/page';"
        "document.documentElement.append(f);",
        "const l = document.createElement('link'); l.rel = 'preconnect'; l.href = 'http://127.0.0.1:PORT/';"
        "document.head.append(l); fetch('/redirect', {mode: 'no-cors'});"));

TEST_F(WebViewHelper, RedirectToOtherServerIsNotFollowed) {
  PageServer other;
  server_.redirect("/page", other.address("/page"));
  start();
  load("/page");
  ASSERT_TRUE(server_.waitFor("/page"));
  EXPECT_TRUE(stillLoads());
  EXPECT_THAT(other.asked(), IsEmpty());
}

TEST_F(WebViewHelper, PageIsLoadedThroughUserProxy) {
  const std::string address = server_.address("");
  const LoopbackProxy proxy(static_cast<std::uint16_t>(std::stoi(address.substr(address.rfind(':') + 1))));
  server_.put("/page", "<script>fetch('/script?' + location.hostname)</script>");
  start({}, {{"http_proxy", proxy.address()}});
  ASSERT_TRUE(helper_.writeLine("http://page.example/page"));
  EXPECT_TRUE(server_.waitFor("/script?page.example"));
  EXPECT_THAT(proxy.asked(), testing::Each(testing::StartsWith("CONNECT page.example:80 ")));
}

// A name that the engine resolves itself would bypass the proxy and could carry data of the page.
TEST_F(WebViewHelper, PrefetchedNamesAreNotResolved) {
  NameServer names;
  ASSERT_TRUE(names.listens());
  startWithScript(
      "const d = document.createElement('link'); d.rel = 'dns-prefetch'; d.href = '//prefetched.example';"
      "document.head.append(d);"
      "const a = document.createElement('a'); a.href = 'https://linked.example/'; a.text = 'a';"
      "document.documentElement.append(a);"
      "fetch('https://asked.example/').catch(() => fetch('/failed'));");
  EXPECT_TRUE(server_.waitFor("/failed"));
  EXPECT_THAT(names.asked(), testing::Contains("asked.example"));
  EXPECT_THAT(names.asked(), testing::Each("asked.example"));
}

// Both would use UDP, which bypasses the proxy.
TEST_F(WebViewHelper, WebRtcAndWebTransportAreDisabled) {
  startWithScript(
      "fetch('/types?' + [typeof RTCPeerConnection, typeof webkitRTCPeerConnection, typeof "
      "WebTransport].join());");
  EXPECT_TRUE(server_.waitFor("/types?undefined,undefined,undefined"))
      << testing::PrintToString(server_.asked());
}

TEST_F(WebViewHelper, PageCannotReadFiles) {
  startWithScript(
      "const f = document.createElement('iframe'); f.src = 'file:///etc/hostname';"
      "document.documentElement.append(f);"
      "const x = new XMLHttpRequest(); x.open('GET', 'file:///etc/hostname');"
      "x.onerror = () => fetch('/failed'); x.onload = () => fetch('/read?' + x.responseText.length);"
      "try { x.send(); } catch (e) { fetch('/failed'); }");
  EXPECT_TRUE(server_.waitFor("/failed"));
}

TEST_F(WebViewHelper, OwnServerIsReachedUnderEachGivenName) {
  const std::string port = server_.address("").substr(server_.address("").rfind(':'));
  server_.put("/page", "<script>fetch('/script?' + location.hostname)</script>");
  start();
  ASSERT_TRUE(helper_.writeLine("http://127.0.0.1" + port + "/page"));
  EXPECT_TRUE(server_.waitFor("/script?127.0.0.1"));
  ASSERT_TRUE(helper_.writeLine("HTTP://LocalHost" + port + "/page"));
  EXPECT_TRUE(server_.waitFor("/script?localhost"));
}

}  // namespace
}  // namespace web_view_test
