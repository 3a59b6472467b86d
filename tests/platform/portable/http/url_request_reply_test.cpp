#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <fstream>

#include "tests/harness/processes/forked_call.h"
#include "tests/harness/sanitizer.h"
#include "tests/platform/portable/http/url_request_support.h"

namespace {

using platform::sendSynchronousRequest;
using test_support::chunkedReply;
using test_support::gzipped;
using test_support::httpReply;
using test_support::RawConnection;
using test_support::RawHttpServer;
using test_support::replyOf;
using test_support::requestFor;
using testing::Optional;

constexpr const char* kGzip = "Content-Encoding: gzip\r\n";

// Reads the request header, sends `bytes` and resets the connection (RST).
RawHttpServer::Script resetAfter(const std::string& bytes) {
  return [bytes](RawConnection& connection) {
    connection.readHead();
    connection.send(bytes);
    connection.pauseFor(std::chrono::milliseconds(50));
    connection.reset();
  };
}

TEST(UrlRequestReply, BodyIsReturnedVerbatim) {
  std::string bytes;
  for (int i = 0; i < 100'000; ++i) bytes += static_cast<char>(i * 7 + i / 256);
  EXPECT_TRUE(replyOf(RawHttpServer::answer(httpReply(bytes))) == bytes);
}

TEST(UrlRequestReply, EmptyBodyIsReply) {
  EXPECT_THAT(replyOf(RawHttpServer::answer(httpReply(""))), Optional(std::string()));
  EXPECT_THAT(replyOf(RawHttpServer::answer("HTTP/1.1 204 No Content\r\n\r\n")), Optional(std::string()));
}

TEST(UrlRequestReply, StatusCodeIsIgnored) {
  for (const char* status :
       {"404 Not Found", "500 Internal Server Error", "401 Unauthorized", "299 Whatever"}) {
    EXPECT_THAT(replyOf(RawHttpServer::answer(httpReply("the page", {}, status))),
                Optional(std::string("the page")))
        << status;
  }
}

TEST(UrlRequestReply, InterimReplyIsSkipped) {
  EXPECT_THAT(
      replyOf(RawHttpServer::answer("HTTP/1.1 103 Early Hints\r\nLink: </x>\r\n\r\n" + httpReply("final"))),
      Optional(std::string("final")));
}

TEST(UrlRequestReply, ChunksAreJoined) {
  for (const std::size_t size : {1U, 5U, 1000U})
    EXPECT_THAT(replyOf(RawHttpServer::answer(chunkedReply("in several chunks", size))),
                Optional(std::string("in several chunks")));
  EXPECT_THAT(replyOf(RawHttpServer::answer(chunkedReply("", 1))), Optional(std::string()));
}

TEST(UrlRequestReply, BodyWithoutLengthEndsWithConnection) {
  EXPECT_THAT(replyOf(RawHttpServer::answer("HTTP/1.1 200 OK\r\n\r\nup to the end")),
              Optional(std::string("up to the end")));
}

TEST(UrlRequestReply, BodyShorterThanItsLengthIsNoReply) {
  EXPECT_EQ(replyOf(RawHttpServer::answer("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\n123456789")),
            std::nullopt);
  EXPECT_EQ(replyOf(RawHttpServer::answer("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\n")), std::nullopt);
}

TEST(UrlRequestReply, TruncatedChunksAreNoReply) {
  const std::string whole = chunkedReply("in several chunks", 5);
  for (const std::size_t cut : {3U, 5U, 8U, 12U, 20U})
    EXPECT_EQ(replyOf(RawHttpServer::answer(whole.substr(0, whole.size() - cut))), std::nullopt) << cut;
}

TEST(UrlRequestReply, InvalidChunkLengthIsNoReply) {
  EXPECT_EQ(
      replyOf(RawHttpServer::answer("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\nno length\r\n")),
      std::nullopt);
}

TEST(UrlRequestReply, OtherProtocolIsNoReply) {
  EXPECT_EQ(replyOf(RawHttpServer::answer("220 another service is ready\r\n")), std::nullopt);
  EXPECT_EQ(replyOf(RawHttpServer::answer("")), std::nullopt);
}

TEST(UrlRequestReply, ConnectionClosedWithinHeaderIsNoReply) {
  const std::string head = httpReply("");
  for (const std::size_t size : {5UL, 12UL, 17UL, 25UL, head.size() - 2, head.size() - 1})
    EXPECT_EQ(replyOf(RawHttpServer::answer(head.substr(0, size))), std::nullopt) << size;
}

TEST(UrlRequestReply, ConnectionClosedAfterInterimReplyIsNoReply) {
  EXPECT_EQ(replyOf(RawHttpServer::answer("HTTP/1.1 100 Continue\r\n\r\n")), std::nullopt);
  EXPECT_EQ(replyOf(RawHttpServer::answer("HTTP/1.1 100 Continue\r\n\r\nHTTP/1.1 200 OK\r\n")), std::nullopt);
}

TEST(UrlRequestReply, TrailerIsNotPartOfBody) {
  EXPECT_THAT(
      replyOf(RawHttpServer::answer("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\nTrailer: X-Sum\r\n\r\n"
                                    "4\r\ntext\r\n0\r\nX-Sum: 1\r\n\r\n")),
      Optional(std::string("text")));
}

TEST(UrlRequestReply, ResetAnywhereIsNoReply) {
  EXPECT_EQ(replyOf([](RawConnection& connection) { connection.reset(); }), std::nullopt)
      << "before the request";
  EXPECT_EQ(replyOf(resetAfter("")), std::nullopt) << "before the header";
  EXPECT_EQ(replyOf(resetAfter("HTTP/1.1 200 OK\r\nContent-Le")), std::nullopt) << "within the header";
  EXPECT_EQ(replyOf(resetAfter("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\n")), std::nullopt)
      << "before the body";
  EXPECT_EQ(replyOf(resetAfter("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\n12345")), std::nullopt)
      << "within the body";
  EXPECT_EQ(replyOf(resetAfter("HTTP/1.1 200 OK\r\n\r\n12345")), std::nullopt)
      << "within a body without length";
}

TEST(UrlRequestReply, ResetAfterCompleteReplyIsReply) {
  EXPECT_THAT(replyOf(resetAfter(httpReply("whole"))), Optional(std::string("whole")));
}

TEST(UrlRequestReply, RefusedConnectionIsNoReply) {
  std::string url;
  {
    const RawHttpServer server(RawHttpServer::answer(httpReply("gone")));
    url = server.url();
  }
  const auto outcome = test_support::outcomeOf(requestFor(url));
  EXPECT_EQ(outcome.reply, std::nullopt);
  EXPECT_LT(outcome.time, std::chrono::seconds(5));
}

TEST(UrlRequestReply, InvalidOrOtherThanHttpUrlIsNoReply) {
  std::ofstream("/tmp/file") << "a file";
  const RawHttpServer server(RawHttpServer::answer(httpReply("text")));
  const std::string place = server.url("/").substr(7);
  for (const std::string& url :
       {std::string(), std::string("file:///tmp/file"), "ftp://" + place, "gopher://" + place, place,
        std::string("http://"), std::string("http://a b/"), std::string("http://[::1"),
        std::string("http://127.0.0.1:99999/"), std::string("/tmp/file")})
    EXPECT_EQ(sendSynchronousRequest(requestFor(url)), std::nullopt) << url;
  EXPECT_EQ(server.connections(), 0U);
}

class UrlRequestLimit : public testing::TestWithParam<bool> {
 protected:
  static constexpr std::size_t kLimit = 1000;

  static std::optional<std::string> replyWith(const std::string& reply) {
    const RawHttpServer server(RawHttpServer::answer(reply));
    platform::UrlRequest request = requestFor(server.url());
    request.maximumReplySize = kLimit;
    return sendSynchronousRequest(request);
  }
  static std::optional<std::string> expected(const std::string& body) {
    return body.size() <= kLimit ? std::optional(body) : std::nullopt;
  }
  const std::string body_ = std::string(GetParam() ? kLimit + 1 : kLimit, 'x');
};

TEST_P(UrlRequestLimit, AppliesToBodyWithLength) {
  EXPECT_EQ(replyWith(httpReply(body_)), expected(body_));
}

TEST_P(UrlRequestLimit, AppliesToBodyWithoutLength) {
  EXPECT_EQ(replyWith("HTTP/1.1 200 OK\r\n\r\n" + body_), expected(body_));
}

TEST_P(UrlRequestLimit, AppliesToChunks) {
  EXPECT_EQ(replyWith(chunkedReply(body_, 7)), expected(body_));
}

TEST_P(UrlRequestLimit, AppliesToDecodedGzip) {
  EXPECT_EQ(replyWith(httpReply(gzipped(body_), kGzip)), expected(body_));
}

INSTANTIATE_TEST_SUITE_P(, UrlRequestLimit, testing::Bool(),
                         [](const auto& parameter) { return parameter.param ? "Over" : "Within"; });

TEST(UrlRequestReply, GzipBombUsesLittleMemory) {
  constexpr std::size_t kUnpacked = std::size_t{300} << 20;
  constexpr long kMaxGrowth = 60 << 10;  // KiB, for a limit of 16 MiB
  const std::string bomb = gzipped(std::string(kUnpacked, '\0'));
  const auto finished = test_support::runForked([&] {
    const RawHttpServer server(RawHttpServer::answer(httpReply(bomb, kGzip)));
    // A forked child inherits the peak (VmHWM) of its parent; writing "5" to clear_refs resets it.
    std::ofstream("/proc/self/clear_refs") << "5";
    const auto peak = [] {
      std::ifstream status("/proc/self/status");
      for (std::string word; status >> word;)
        if (long size = 0; word == "VmHWM:" && status >> size) return size;
      return -1L;
    };
    const long before = peak();
    if (sendSynchronousRequest(requestFor(server.url()))) return 1;
    if (test_support::isThreadSanitized) return 0;
    return before > 0 && peak() - before < kMaxGrowth ? 0 : 2;
  });
  EXPECT_EQ(finished.status, test_support::ExitStatus{.code = 0});
}

TEST(UrlRequestReply, OutOfMemoryIsNoReply) {
  if (test_support::isAddressSanitized || test_support::isThreadSanitized)
    GTEST_SKIP() << test_support::memoryIsTheSanitizers;
  const auto finished = test_support::runForked([] {
    const RawHttpServer server([](RawConnection& connection) {
      connection.readHead();
      connection.send("HTTP/1.1 200 OK\r\n\r\n");
      const std::string piece(1 << 16, 'x');
      while (connection.send(piece)) continue;
    });
    platform::UrlRequest request = requestFor(server.url());
    request.maximumReplySize = ~std::size_t{0};
    std::ifstream statm("/proc/self/statm");
    rlim_t pages = 0;
    statm >> pages;
    const rlim_t maxSize = pages * 4096 + (rlim_t{256} << 20);
    const rlimit limit{maxSize, maxSize};
    if (::setrlimit(RLIMIT_AS, &limit) != 0) return test_support::kUnavailable;
    return sendSynchronousRequest(request) ? 1 : 0;
  });
  if (test_support::wasUnavailable(finished)) GTEST_SKIP() << "setrlimit failed";
  EXPECT_EQ(finished.status, test_support::ExitStatus{.code = 0});
}

// Sends `beginning`, then repeats `line` until the client closes the connection.
RawHttpServer::Script withEndless(const std::string& line, const std::string& beginning) {
  return [=](RawConnection& connection) {
    connection.readRequest();
    std::string much = line;
    while (much.size() < std::size_t{64} * 1024) much += line;
    for (bool there = connection.send(beginning); there;) there = connection.send(much);
  };
}

TEST(UrlRequestReply, EndlessHeaderOrTrailerIsNoReply) {
  const std::string chunked = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n2\r\nOK\r\n0\r\n";
  for (const auto& [line, beginning] : {std::pair<std::string, std::string>("X-a: b\r\n", chunked),
                                        {"X-a: b\r\n", "HTTP/1.1 200 OK\r\n"},
                                        {"HTTP/1.1 102 Processing\r\n\r\n", ""}}) {
    const RawHttpServer server(withEndless(line, beginning));
    EXPECT_EQ(sendSynchronousRequest(requestFor(server.url())), std::nullopt) << beginning << line;
  }
}

}  // namespace
