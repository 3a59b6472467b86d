#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/mount.h>
#include <sys/socket.h>

#include <array>
#include <atomic>
#include <fstream>
#include <future>
#include <tuple>
#include <vector>

#include "tests/harness/processes/wait_until.h"
#include "tests/platform/portable/http/url_request_support.h"

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
using testing::Each;
using testing::Optional;

constexpr std::chrono::milliseconds kInterval = 300ms;
constexpr std::chrono::milliseconds kLongInterval = 3300ms;

// The outcome of a request to a server that stalls, and its timeout.
struct Stall {
  std::chrono::milliseconds interval;
  Outcome outcome;
};

void PrintTo(const Stall& stall, std::ostream* stream) {
  *stream << "with " << stall.interval.count() << " ms: ";
  PrintTo(stall.outcome, stream);
}

// The accepted ranges of kInterval and kLongInterval do not overlap.
MATCHER(EndedByItsInterval, "") {
  const auto time = arg.outcome.time;
  return !arg.outcome.reply && time >= arg.interval - 100ms && time < arg.interval + 2900ms;
}

Outcome outcomeWithin(std::chrono::milliseconds interval, UrlRequest request) {
  request.timeoutInterval = interval;
  return outcomeOf(request);
}

// Sends `request` twice at once, with kInterval and with kLongInterval.
std::array<Stall, 2> stallsOf(const UrlRequest& request) {
  auto longer = std::async(std::launch::async, outcomeWithin, kLongInterval, request);
  const Outcome shorter = outcomeWithin(kInterval, request);
  return {{{kInterval, shorter}, {kLongInterval, longer.get()}}};
}

// Sends requests to a server that sends `bytes` and then stalls.
std::array<Stall, 2> silenceAfter(const std::string& bytes) {
  const RawHttpServer server([&](RawConnection& connection) {
    connection.readHead();
    connection.send(bytes);
    connection.waitForEnd();
  });
  return stallsOf(requestFor(server.url()));
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

// A name server that never replies. Binds port 53 of the sandbox's loopback interface and bind-mounts its own
// /etc/resolv.conf.
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

TEST(UrlRequestTimeout, EndsStalledNameLookup) {
  const SilentNameServer names;
  ASSERT_TRUE(names.valid());
  EXPECT_THAT(stallsOf(requestFor("http://silent.example/")), Each(EndedByItsInterval()));
  EXPECT_TRUE(names.wasAsked());
}

TEST(UrlRequestTimeout, EndsStalledConnect) {
  const FileDescriptor listener = boundTo(SOCK_STREAM, 8099);
  ASSERT_EQ(::listen(listener.get(), 0), 0);
  // Connections that are not accepted fill the backlog; the kernel drops the SYN of later ones.
  const sockaddr_in address = loopback(8099);
  std::vector<FileDescriptor> waiting;
  for (int i = 0; i < 4; ++i) {
    waiting.emplace_back(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    std::ignore =
        ::connect(waiting.back().get(), reinterpret_cast<const sockaddr*>(&address), sizeof address);
  }
  EXPECT_THAT(stallsOf(requestFor("http://127.0.0.1:8099/")), Each(EndedByItsInterval()));
}

TEST(UrlRequestTimeout, EndsStalledTlsHandshake) {
  std::atomic<int> hellos = 0;
  {
    const RawHttpServer server([&](RawConnection& connection) {
      if (connection.readBytes(5).starts_with("\x16\x03")) ++hellos;
      connection.waitForEnd();
    });
    EXPECT_THAT(stallsOf(requestFor(server.url("/", "https"))), Each(EndedByItsInterval()));
  }
  EXPECT_EQ(hellos, 2);
}

TEST(UrlRequestTimeout, EndsStallBeforeHeader) {
  EXPECT_THAT(silenceAfter(""), Each(EndedByItsInterval()));
}

TEST(UrlRequestTimeout, EndsStallWithinHeader) {
  EXPECT_THAT(silenceAfter("HTTP/1.1 200 OK\r\nContent-"), Each(EndedByItsInterval()));
}

TEST(UrlRequestTimeout, EndsStallBeforeBody) {
  EXPECT_THAT(silenceAfter("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\n"), Each(EndedByItsInterval()));
}

TEST(UrlRequestTimeout, EndsStallWithinBody) {
  EXPECT_THAT(silenceAfter("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\n12345"), Each(EndedByItsInterval()));
  EXPECT_THAT(silenceAfter("HTTP/1.1 200 OK\r\n\r\n12345"), Each(EndedByItsInterval()));
}

TEST(UrlRequestTimeout, EndsStallWithinChunk) {
  EXPECT_THAT(silenceAfter("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5\r\n123"),
              Each(EndedByItsInterval()));
}

TEST(UrlRequestTimeout, EndsStallAfterRedirect) {
  const RawHttpServer target([](RawConnection& connection) { connection.waitForEnd(); });
  const RawHttpServer server(
      RawHttpServer::answer(httpReply("", "Location: " + target.url() + "\r\n", "302 Found")));
  EXPECT_THAT(stallsOf(requestFor(server.url())), Each(EndedByItsInterval()));
  EXPECT_EQ(target.connections(), 2U);
}

TEST(UrlRequestTimeout, EndsStalledUpload) {
  const std::string body(std::size_t{64} << 20, 'b');
  const RawHttpServer server([](RawConnection& connection) {
    connection.readHead();
    connection.pauseFor(20s);
  });
  EXPECT_THAT(stallsOf(postOf(server.url(), body)), Each(EndedByItsInterval()));
}

TEST(UrlRequestTimeout, ClosesConnection) {
  std::atomic<int> closed = 0;
  const RawHttpServer server([&](RawConnection& connection) {
    connection.readHead();
    if (connection.waitForEnd()) ++closed;
  });
  EXPECT_THAT(stallsOf(requestFor(server.url())), Each(EndedByItsInterval()));
  EXPECT_TRUE(test_support::waitUntil([&] { return closed == 2; }));
}

TEST(UrlRequestTimeout, ZeroOrNegativeIntervalIsNoReply) {
  const RawHttpServer server([](RawConnection& connection) { connection.waitForEnd(); });
  for (const auto interval : {0ms, -1000ms}) {
    const Outcome outcome = outcomeWithin(interval, requestFor(server.url()));
    EXPECT_EQ(outcome.reply, std::nullopt);
    EXPECT_LT(outcome.time, 3s);
  }
}

TEST(UrlRequestTimeout, MaximumIntervalWaitsForReply) {
  const RawHttpServer server([](RawConnection& connection) {
    connection.readHead();
    connection.pauseFor(700ms);
    connection.send(httpReply("late"));
  });
  EXPECT_THAT(outcomeWithin(std::chrono::milliseconds::max(), requestFor(server.url())).reply,
              Optional(std::string("late")));
}

TEST(UrlRequestTimeout, SlowBodyResetsTimeout) {
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

TEST(UrlRequestTimeout, SlowHeaderResetsTimeout) {
  const RawHttpServer server([](RawConnection& connection) {
    connection.readHead();
    connection.sendSlowly(httpReply("done"), 60ms);
  });
  const Outcome outcome = outcomeWithin(1s, requestFor(server.url()));
  EXPECT_THAT(outcome.reply, Optional(std::string("done")));
  EXPECT_GE(outcome.time, 2s);
}

TEST(UrlRequestTimeout, SlowChunksResetTimeout) {
  const RawHttpServer server([](RawConnection& connection) {
    connection.readHead();
    connection.sendSlowly(test_support::chunkedReply("chunk", 1), 30ms);
  });
  EXPECT_THAT(outcomeWithin(1s, requestFor(server.url())).reply, Optional(std::string("chunk")));
}

// The body fits into the socket buffers, so that the client has nothing left to send while the server reads
// it.
TEST(UrlRequestTimeout, SlowlyReadUploadResetsTimeout) {
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
