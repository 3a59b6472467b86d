#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/mount.h>
#include <sys/socket.h>

#include <array>
#include <atomic>
#include <fstream>
#include <tuple>
#include <vector>

#include "tests/platform/url_request_support.h"
#include "tests/support/wait_until.h"

namespace {

using namespace std::chrono_literals;
using platform::UrlRequest;
using test_support::FileDescriptor;
using test_support::httpReply;
using test_support::Outcome;
using test_support::outcomeOf;
using test_support::postOf;
using test_support::RawConnection;
using test_support::RawHttpServer;
using test_support::requestFor;
using testing::Optional;

constexpr std::chrono::milliseconds kInterval = 300ms;

MATCHER(EndedByTheInterval, "") {
  return !arg.reply && arg.time >= kInterval - 100ms && arg.time < kInterval + 3s;
}

Outcome outcomeWithin(std::chrono::milliseconds interval, UrlRequest request) {
  request.timeoutInterval = interval;
  return outcomeOf(request);
}

// What comes of a request to a server that sends `bytes` and then falls silent.
Outcome silenceAfter(const std::string& bytes) {
  const RawHttpServer server([&](RawConnection& connection) {
    connection.readHead();
    connection.send(bytes);
    connection.waitForEnd();
  });
  return outcomeWithin(kInterval, requestFor(server.url()));
}

sockaddr_in loopback(in_port_t port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(port);
  return address;
}

FileDescriptor boundTo(int type, in_port_t port) {
  FileDescriptor socket(::socket(AF_INET, type | SOCK_CLOEXEC, 0));
  const sockaddr_in address = loopback(port);
  if (::bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) socket.reset();
  return socket;
}

// A name server that is there and never answers: the sandbox's loopback has a port 53 to give.
class SilentNameServer {
 public:
  SilentNameServer() : socket_(boundTo(SOCK_DGRAM, 53)) {
    std::ofstream("/tmp/resolv.conf") << "nameserver 127.0.0.1\noptions timeout:5 attempts:2\n";
    mounted_ = ::mount("/tmp/resolv.conf", "/etc/resolv.conf", nullptr, MS_BIND, nullptr) == 0;
  }
  SilentNameServer(const SilentNameServer&) = delete;
  SilentNameServer& operator=(const SilentNameServer&) = delete;
  ~SilentNameServer() {
    if (mounted_) ::umount2("/etc/resolv.conf", MNT_DETACH);
  }
  [[nodiscard]] bool valid() const { return socket_.valid() && mounted_; }
  [[nodiscard]] bool wasAsked() const {
    std::array<char, 512> question{};
    return ::recv(socket_.get(), question.data(), question.size(), MSG_DONTWAIT) > 0;
  }

 private:
  FileDescriptor socket_;
  bool mounted_ = false;
};

TEST(UrlRequestTimeout, EndsTheLookUpOfAName) {
  const SilentNameServer names;
  ASSERT_TRUE(names.valid());
  EXPECT_THAT(outcomeWithin(kInterval, requestFor("http://silent.example/")), EndedByTheInterval());
  EXPECT_TRUE(names.wasAsked());
}

TEST(UrlRequestTimeout, EndsAConnectionThatIsNeverMade) {
  const FileDescriptor listener = boundTo(SOCK_STREAM, 8099);
  ASSERT_EQ(::listen(listener.get(), 0), 0);
  // Who is not accepted fills the queue, and those behind get no answer at all.
  const sockaddr_in address = loopback(8099);
  std::vector<FileDescriptor> waiting;
  for (int i = 0; i < 4; ++i) {
    waiting.emplace_back(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    std::ignore =
        ::connect(waiting.back().get(), reinterpret_cast<const sockaddr*>(&address), sizeof address);
  }
  EXPECT_THAT(outcomeWithin(kInterval, requestFor("http://127.0.0.1:8099/")), EndedByTheInterval());
}

TEST(UrlRequestTimeout, EndsAHandshakeThatIsNeverAnswered) {
  std::string hello;
  {
    const RawHttpServer server([&](RawConnection& connection) {
      hello = connection.readBytes(5);
      connection.waitForEnd();
    });
    EXPECT_THAT(outcomeWithin(kInterval, requestFor(server.url("/", "https"))), EndedByTheInterval());
  }
  EXPECT_THAT(hello, testing::StartsWith("\x16\x03"));
}

TEST(UrlRequestTimeout, EndsTheSilenceBeforeTheHeader) {
  EXPECT_THAT(silenceAfter(""), EndedByTheInterval());
}

TEST(UrlRequestTimeout, EndsTheSilenceWithinTheHeader) {
  EXPECT_THAT(silenceAfter("HTTP/1.1 200 OK\r\nContent-"), EndedByTheInterval());
}

TEST(UrlRequestTimeout, EndsTheSilenceBeforeTheBody) {
  EXPECT_THAT(silenceAfter("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\n"), EndedByTheInterval());
}

TEST(UrlRequestTimeout, EndsTheSilenceWithinTheBody) {
  EXPECT_THAT(silenceAfter("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\n12345"), EndedByTheInterval());
  EXPECT_THAT(silenceAfter("HTTP/1.1 200 OK\r\n\r\n12345"), EndedByTheInterval());
}

TEST(UrlRequestTimeout, EndsTheSilenceWithinAChunk) {
  EXPECT_THAT(silenceAfter("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5\r\n123"),
              EndedByTheInterval());
}

TEST(UrlRequestTimeout, EndsTheSilenceAfterARedirect) {
  const RawHttpServer target([](RawConnection& connection) { connection.waitForEnd(); });
  const RawHttpServer server(
      RawHttpServer::answer(httpReply("", "Location: " + target.url() + "\r\n", "302 Found")));
  EXPECT_THAT(outcomeWithin(kInterval, requestFor(server.url())), EndedByTheInterval());
  EXPECT_EQ(target.connections(), 1U);
}

TEST(UrlRequestTimeout, EndsABodyThatNobodyTakes) {
  const std::string body(std::size_t{64} << 20, 'b');
  const RawHttpServer server([](RawConnection& connection) {
    connection.readHead();
    connection.pauseFor(20s);
  });
  EXPECT_THAT(outcomeWithin(kInterval, postOf(server.url(), body)), EndedByTheInterval());
}

TEST(UrlRequestTimeout, ConnectionIsClosedWithTheCall) {
  std::atomic<bool> closed = false;
  const RawHttpServer server([&](RawConnection& connection) {
    connection.readHead();
    closed = connection.waitForEnd();
  });
  EXPECT_THAT(outcomeWithin(kInterval, requestFor(server.url())), EndedByTheInterval());
  EXPECT_TRUE(test_support::waitUntil([&] { return closed.load(); }));
}

TEST(UrlRequestTimeout, IntervalOfNothingIsNoReply) {
  const RawHttpServer server([](RawConnection& connection) { connection.waitForEnd(); });
  for (const auto interval : {0ms, -1000ms}) {
    const Outcome outcome = outcomeWithin(interval, requestFor(server.url()));
    EXPECT_EQ(outcome.reply, std::nullopt);
    EXPECT_LT(outcome.time, 3s);
  }
}

TEST(UrlRequestTimeout, IntervalWithoutEndWaits) {
  const RawHttpServer server([](RawConnection& connection) {
    connection.readHead();
    connection.pauseFor(700ms);
    connection.send(httpReply("late"));
  });
  EXPECT_THAT(outcomeWithin(std::chrono::milliseconds::max(), requestFor(server.url())).reply,
              Optional(std::string("late")));
}

TEST(UrlRequestTimeout, SlowBodyThatLivesIsAwaited) {
  const std::string body(20, 's');
  const RawHttpServer server([&](RawConnection& connection) {
    connection.readHead();
    connection.send("HTTP/1.1 200 OK\r\nContent-Length: 20\r\n\r\n");
    connection.sendSlowly(body, 500ms);
  });
  const Outcome outcome = outcomeWithin(3s, requestFor(server.url()));
  EXPECT_THAT(outcome.reply, Optional(body));
  EXPECT_GE(outcome.time, 9500ms);
}

TEST(UrlRequestTimeout, SlowHeaderThatLivesIsAwaited) {
  const RawHttpServer server([](RawConnection& connection) {
    connection.readHead();
    connection.sendSlowly(httpReply("done"), 60ms);
  });
  const Outcome outcome = outcomeWithin(1s, requestFor(server.url()));
  EXPECT_THAT(outcome.reply, Optional(std::string("done")));
  EXPECT_GE(outcome.time, 2s);
}

TEST(UrlRequestTimeout, SlowChunksThatLiveAreAwaited) {
  const RawHttpServer server([](RawConnection& connection) {
    connection.readHead();
    connection.sendSlowly(test_support::chunkedReply("chunk", 1), 30ms);
  });
  EXPECT_THAT(outcomeWithin(1s, requestFor(server.url())).reply, Optional(std::string("chunk")));
}

// The whole body fits into what the system buffers, so that nothing is left to send while the server takes
// it.
TEST(UrlRequestTimeout, BodyThatIsTakenSlowlyIsAwaited) {
  const std::string body(1 << 20, 'b');
  constexpr std::size_t kSteps = 32;
  const auto takeSlowly = [&](RawConnection& connection) {
    connection.readHead();
    for (std::size_t i = 0; i < kSteps; ++i) {
      connection.readBytes(body.size() / kSteps);
      connection.pauseFor(100ms);
    }
    connection.send(httpReply("taken"));
  };
  const RawHttpServer server(std::vector<RawHttpServer::Script>{takeSlowly}, 16 << 10);
  const Outcome outcome = outcomeWithin(1s, postOf(server.url(), body));
  EXPECT_THAT(outcome.reply, Optional(std::string("taken")));
  EXPECT_GE(outcome.time, 3s);
}

}  // namespace
