#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

#include "platform/portable/http/url_request_body.h"
#include "tests/platform/portable/http/url_request_support.h"

namespace {

using platform::sendSynchronousRequest;
using platform::UrlRequest;
using test_support::httpReply;
using test_support::outcomeOf;
using test_support::postOf;
using test_support::RawConnection;
using test_support::RawHttpServer;
using test_support::requestFor;
using testing::Optional;

// Sends `request` to "/path?a=b%20c" of a local server. Returns the bytes that the server receives, with its
// address replaced by "HOST".
std::string onTheWire(UrlRequest request) {
  std::string bytes;
  std::string host;
  {
    const RawHttpServer server([&](RawConnection& connection) {
      bytes = connection.readRequest();
      connection.send(httpReply("taken"));
    });
    request.url = server.url("/path?a=b%20c");
    host = "127.0.0.1:" + std::to_string(server.port());
    EXPECT_THAT(sendSynchronousRequest(request), Optional(std::string("taken")));
  }
  if (const std::size_t place = bytes.find(host); place != std::string::npos)
    bytes.replace(place, host.size(), "HOST");
  return bytes;
}

TEST(UrlRequestOnTheWire, GetSendsDefaultHeaders) {
  EXPECT_EQ(onTheWire({}),
            "GET /path?a=b%20c HTTP/1.1\r\n"
            "Host: HOST\r\n"
            "User-Agent: TovalinTray\r\n"
            "Accept: */*\r\n"
            "Accept-Encoding: gzip, deflate\r\n"
            "\r\n");
}

TEST(UrlRequestOnTheWire, GetIgnoringCacheSendsNoCache) {
  UrlRequest request;
  request.cachePolicy = UrlRequest::CachePolicy::ReloadIgnoringLocalCache;
  EXPECT_EQ(onTheWire(request),
            "GET /path?a=b%20c HTTP/1.1\r\n"
            "Host: HOST\r\n"
            "User-Agent: TovalinTray\r\n"
            "Accept: */*\r\n"
            "Accept-Encoding: gzip, deflate\r\n"
            "Cache-Control: no-cache\r\n"
            "Pragma: no-cache\r\n"
            "\r\n");
}

TEST(UrlRequestOnTheWire, PostSendsPiecesAsOneBody) {
  const std::string parts[] = {"first,", "", "second,", "third", ""};
  UrlRequest request = postOf("", "");
  request.headers = {"Content-Type: text/plain", "X-Empty:"};
  request.body = {parts[0], parts[1], parts[2], parts[3], parts[4]};
  EXPECT_EQ(onTheWire(request),
            "POST /path?a=b%20c HTTP/1.1\r\n"
            "Host: HOST\r\n"
            "User-Agent: TovalinTray\r\n"
            "Accept: */*\r\n"
            "Content-Type: text/plain\r\n"
            "X-Empty:\r\n"
            "Content-Length: 18\r\n"
            "\r\n"
            "first,second,third");
}

TEST(UrlRequestOnTheWire, PostWithoutBodySendsContentLengthZero) {
  for (const UrlRequest& request : {postOf("", ""), UrlRequest{.method = "POST"}}) {
    EXPECT_EQ(onTheWire(request),
              "POST /path?a=b%20c HTTP/1.1\r\n"
              "Host: HOST\r\n"
              "User-Agent: TovalinTray\r\n"
              "Accept: */*\r\n"
              "Content-Length: 0\r\n"
              "\r\n");
  }
}

TEST(UrlRequestOnTheWire, PiecesOfAnySizeAreConcatenated) {
  std::string body;
  for (int i = 0; i < 400'000; ++i) body += static_cast<char>(i * 31 + i / 256);
  UrlRequest request = postOf("", "");
  request.body.clear();
  std::size_t start = 0;
  for (std::size_t size = 1; start < body.size(); start += size, size = size * 3 % 70'001) {
    request.body.push_back(std::span<const char>(body).subspan(start, std::min(size, body.size() - start)));
    request.body.emplace_back();
  }
  EXPECT_TRUE(onTheWire(request).ends_with("\r\nContent-Length: 400000\r\n\r\n" + body));
}

TEST(UrlRequestBody, SeekReachesEveryPositionUpToEnd) {
  const std::string first = "ab", none, second = "cde";
  const std::vector<std::span<const char>> pieces{first, none, second, none};
  platform::UrlRequestBody body(pieces);
  const std::string whole = "abcde";
  for (std::size_t position = 0; position <= whole.size(); ++position) {
    ASSERT_TRUE(body.seek(position)) << position;
    std::string rest(10, '\0');
    rest.resize(body.read(rest));
    EXPECT_EQ(rest, whole.substr(position));
  }
  ASSERT_TRUE(body.seek(3));
  EXPECT_FALSE(body.seek(whole.size() + 1));
  std::string next(1, '\0');
  EXPECT_EQ(body.read(next), 1U);
  EXPECT_EQ(next, "d") << "an invalid position moved the read position";
}

TEST(UrlRequestPost, LargeBodyIsSentWhole) {
  constexpr std::size_t kPiece = std::size_t{1} << 20;
  constexpr std::size_t kPieces = 100;
  const std::string piece(kPiece, 'p');
  std::string head;
  std::size_t received = 0;
  const RawHttpServer server([&](RawConnection& connection) {
    head = connection.readHead();
    for (std::size_t i = 0; i < kPieces; ++i) received += connection.readBytes(kPiece) == piece ? kPiece : 0;
    connection.send(httpReply("taken"));
  });
  UrlRequest request = postOf(server.url(), "");
  request.body.assign(kPieces, piece);
  EXPECT_THAT(sendSynchronousRequest(request), Optional(std::string("taken")));
  EXPECT_EQ(received, kPieces * kPiece);
  EXPECT_THAT(head, testing::HasSubstr("\r\nContent-Length: 104857600\r\n"));
}

TEST(UrlRequestPost, ContinueReplyIsNotAwaited) {
  const std::string body(2 << 20, 'b');
  std::string request;
  const RawHttpServer server([&](RawConnection& connection) {
    request = connection.readRequest();
    connection.send("HTTP/1.1 100 Continue\r\n\r\n" + httpReply("taken"));
  });
  // A client that sends "Expect: 100-continue" waits 1 s. The shortest of five attempts discounts delays of a
  // busy machine.
  constexpr std::chrono::milliseconds wait{900};
  auto shortest = std::chrono::milliseconds::max();
  for (int i = 0; i < 5 && shortest >= wait; ++i) {
    const auto outcome = outcomeOf(postOf(server.url(), body));
    EXPECT_THAT(outcome.reply, Optional(std::string("taken")));
    EXPECT_TRUE(request.ends_with("\r\n\r\n" + body));
    shortest = std::min(shortest, outcome.time);
  }
  EXPECT_LT(shortest, wait);
  EXPECT_EQ(request.find("\r\nExpect:"), std::string::npos);
}

// Sends `reply` after the request header, then reads 30 MiB of the body, so that the client receives the
// reply before the connection closes.
RawHttpServer::Script answerEarly(const std::string& reply) {
  return [reply](RawConnection& connection) {
    connection.readHead();
    connection.send(reply);
    connection.readBytes(std::size_t{30} << 20);
  };
}

TEST(UrlRequestPost, ErrorStatusBeforeEndOfBodyIsReply) {
  const std::string body(std::size_t{100} << 20, 'b');
  const RawHttpServer server(answerEarly(httpReply("too large", "Connection: close\r\n", "413 Too Large")));
  EXPECT_THAT(sendSynchronousRequest(postOf(server.url(), body)), Optional(std::string("too large")));
}

TEST(UrlRequestPost, ReplyBeforeEndOfBodyIsReply) {
  const std::string body(std::size_t{100} << 20, 'b');
  for (const char* headers : {"", "Connection: close\r\n"}) {
    const RawHttpServer server(answerEarly(httpReply("enough", headers)));
    EXPECT_THAT(sendSynchronousRequest(postOf(server.url(), body)), Optional(std::string("enough")))
        << headers;
  }
}

TEST(UrlRequestPost, ReplyOfServerThatStopsReadingIsReply) {
  const std::string body(std::size_t{100} << 20, 'b');
  const RawHttpServer server([](RawConnection& connection) {
    connection.readHead();
    connection.send(httpReply("enough"));
    connection.pauseFor(std::chrono::seconds(20));
  });
  UrlRequest request = postOf(server.url(), body);
  request.timeoutInterval = std::chrono::milliseconds(500);
  EXPECT_THAT(sendSynchronousRequest(request), Optional(std::string("enough")));
}

// Sends a redirect to `place` before the end of the body.
RawHttpServer::Script redirectEarly(const std::string& place, const std::string& status) {
  return answerEarly(httpReply("moved", "Location: " + place + "\r\nConnection: close\r\n", status));
}

TEST(UrlRequestPost, RedirectBeforeEndOfBodyIsFollowed) {
  const std::string body(std::size_t{40} << 20, 'b');
  for (const char* status : {"302 Found", "303 See Other", "307 Temporary Redirect"}) {
    const RawHttpServer target(RawHttpServer::answer(httpReply("there")));
    const RawHttpServer server(redirectEarly(target.url(), status));
    EXPECT_THAT(sendSynchronousRequest(postOf(server.url(), body)), Optional(std::string("there"))) << status;
  }
}

TEST(UrlRequestPost, RedirectBeforeEndOfBodyToFailingServerIsNoReply) {
  const std::string body(std::size_t{40} << 20, 'b');
  const RawHttpServer resetting([](RawConnection& connection) {
    connection.readHead();
    connection.reset();
  });
  const RawHttpServer silent([](RawConnection& connection) { connection.waitForEnd(); });
  for (const std::string& place : {std::string("http://127.0.0.1:1/"), resetting.url(), silent.url(),
                                   silent.url("/", "ftp"), std::string("http://")}) {
    for (const char* status : {"302 Found", "303 See Other", "307 Temporary Redirect"}) {
      const RawHttpServer server(redirectEarly(place, status));
      UrlRequest request = postOf(server.url(), body);
      request.timeoutInterval = std::chrono::seconds(2);
      EXPECT_EQ(sendSynchronousRequest(request), std::nullopt) << status << ' ' << place;
    }
  }
}

TEST(UrlRequestPost, PartialReplyBeforeEndOfBodyIsNoReply) {
  const std::string body(std::size_t{100} << 20, 'b');
  const RawHttpServer server(answerEarly("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nnot all"));
  EXPECT_EQ(sendSynchronousRequest(postOf(server.url(), body)), std::nullopt);
}

TEST(UrlRequestPost, ConnectionClosedWithinBodyIsNoReply) {
  const std::string body(std::size_t{100} << 20, 'b');
  const RawHttpServer server([](RawConnection& connection) { connection.readBytes(100'000); });
  EXPECT_EQ(sendSynchronousRequest(postOf(server.url(), body)), std::nullopt);
}

TEST(UrlRequestPost, GzipReplyIsDecoded) {
  const RawHttpServer server(
      RawHttpServer::answer(httpReply(test_support::gzipped("packed"), "Content-Encoding: gzip\r\n")));
  EXPECT_THAT(sendSynchronousRequest(postOf(server.url(), "body")), Optional(std::string("packed")));
}

TEST(UrlRequestPost, OtherMethodOrGetWithBodyIsNotSent) {
  const RawHttpServer server(RawHttpServer::answer(httpReply("text")));
  for (const char* method : {"", "PUT", "post", "DELETE"}) {
    UrlRequest request = requestFor(server.url());
    request.method = method;
    EXPECT_EQ(sendSynchronousRequest(request), std::nullopt) << method;
  }
  UrlRequest request = postOf(server.url(), "body");
  request.method = "GET";
  EXPECT_EQ(sendSynchronousRequest(request), std::nullopt);
  EXPECT_EQ(server.connections(), 0U);
}

}  // namespace
