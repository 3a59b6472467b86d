#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <map>

#include "tests/platform/portable/http/url_request_support.h"

namespace {

using platform::sendSynchronousRequest;
using platform::UrlRequest;
using test_support::httpReply;
using test_support::RawConnection;
using test_support::RawHttpServer;
using test_support::requestFor;
using testing::Optional;
using testing::StartsWith;

std::string redirectTo(const std::string& place, const std::string& status = "302 Found") {
  return httpReply("moved", "Location: " + place + "\r\n", status);
}

TEST(UrlRequestRedirect, IsFollowed) {
  for (const char* status : {"301 Moved Permanently", "302 Found", "303 See Other", "307 Temporary Redirect",
                             "308 Permanent Redirect"}) {
    const RawHttpServer target(RawHttpServer::answer(httpReply("there")));
    const RawHttpServer server(RawHttpServer::answer(redirectTo(target.url("/new"), status)));
    EXPECT_THAT(sendSynchronousRequest(requestFor(server.url())), Optional(std::string("there"))) << status;
  }
}

TEST(UrlRequestRedirect, RelativeLocationIsResolved) {
  std::string head;
  const RawHttpServer server(std::vector<RawHttpServer::Script>{
      RawHttpServer::answer(redirectTo("../other?x=1")), [&](RawConnection& connection) {
        head = connection.readHead();
        connection.send(httpReply("there"));
      }});
  EXPECT_THAT(sendSynchronousRequest(requestFor(server.url("/a/b/c"))), Optional(std::string("there")));
  EXPECT_THAT(head, StartsWith("GET /a/other?x=1 HTTP/1.1\r\n"));
}

// Redirects to itself without end over one connection.
void redirectForever(RawConnection& connection) {
  while (!connection.readHead().empty()) connection.send(redirectTo("/again"));
}

TEST(UrlRequestRedirect, EndlessRedirectIsNoReply) {
  const RawHttpServer server(redirectForever);
  const auto outcome = test_support::outcomeOf(requestFor(server.url()));
  EXPECT_EQ(outcome.reply, std::nullopt);
  EXPECT_LT(outcome.time, std::chrono::seconds(10));
}

std::optional<std::string> replyAfterRedirects(int count) {
  int left = count;
  const RawHttpServer server([&](RawConnection& connection) {
    while (!connection.readHead().empty())
      connection.send(left-- > 0 ? redirectTo("/") : httpReply("arrived"));
  });
  return sendSynchronousRequest(requestFor(server.url()));
}

TEST(UrlRequestRedirect, MoreThanTwentyAreNotFollowed) {
  EXPECT_THAT(replyAfterRedirects(20), Optional(std::string("arrived")));
  EXPECT_EQ(replyAfterRedirects(21), std::nullopt);
}

TEST(UrlRequestRedirect, OtherSchemeThanHttpIsNotFollowed) {
  std::ofstream("/tmp/file") << "a file";
  const RawHttpServer target(RawHttpServer::answer(httpReply("there")));
  for (const std::string& place : {std::string("file:///tmp/file"), target.url("/", "ftp"),
                                   target.url("/", "gopher"), target.url("/", "dict")}) {
    const RawHttpServer server(RawHttpServer::answer(redirectTo(place)));
    UrlRequest request = requestFor(server.url());
    request.timeoutInterval = std::chrono::seconds(5);
    EXPECT_EQ(sendSynchronousRequest(request), std::nullopt) << place;
  }
  EXPECT_EQ(target.connections(), 0U);
}

TEST(UrlRequestRedirect, SchemeNotAllowedIsNotFollowed) {
  const RawHttpServer target(RawHttpServer::answer(httpReply("there")));
  std::map<std::string, std::optional<std::string>> replies;
  for (const char* schemes : {"http", "https", "https,http", "", "nonsense"}) {
    const RawHttpServer server(RawHttpServer::answer(redirectTo(target.url())));
    UrlRequest request = requestFor(server.url());
    request.redirectSchemes = schemes;
    replies[schemes] = sendSynchronousRequest(request);
  }
  EXPECT_THAT(replies["http"], Optional(std::string("there")));
  EXPECT_THAT(replies["https,http"], Optional(std::string("there")));
  for (const char* schemes : {"https", "", "nonsense"}) EXPECT_EQ(replies[schemes], std::nullopt) << schemes;
  EXPECT_EQ(target.connections(), 2U);
}

TEST(UrlRequestRedirect, RedirectSchemesDoNotApplyToFirstAddress) {
  const RawHttpServer server(RawHttpServer::answer(httpReply("here")));
  for (const char* schemes : {"https", ""}) {
    UrlRequest request = requestFor(server.url());
    request.redirectSchemes = schemes;
    EXPECT_THAT(sendSynchronousRequest(request), Optional(std::string("here"))) << schemes;
  }
}

TEST(UrlRequestRedirect, ToClosedPortIsNoReply) {
  std::string gone;
  {
    const RawHttpServer server(RawHttpServer::answer(""));
    gone = server.url();
  }
  const RawHttpServer server(RawHttpServer::answer(redirectTo(gone)));
  EXPECT_EQ(sendSynchronousRequest(requestFor(server.url())), std::nullopt);
}

TEST(UrlRequestRedirect, ConnectionClosedWithinHeaderOfTargetIsNoReply) {
  for (const char* cut : {"", "HTTP/1.1 20", "HTTP/1.1 200 OK\r\nContent-Le"}) {
    const RawHttpServer target(RawHttpServer::answer(cut));
    const RawHttpServer server(RawHttpServer::answer(redirectTo(target.url())));
    EXPECT_EQ(sendSynchronousRequest(requestFor(server.url())), std::nullopt) << cut;
  }
}

TEST(UrlRequestRedirect, WithoutLocationIsReply) {
  const RawHttpServer server(RawHttpServer::answer(httpReply("nowhere", {}, "302 Found")));
  EXPECT_THAT(sendSynchronousRequest(requestFor(server.url())), Optional(std::string("nowhere")));
}

// Returns the request that the target receives after a POST is redirected with `status`.
std::string postedAgain(const std::string& status, const std::string& body) {
  std::string request;
  const RawHttpServer target([&](RawConnection& connection) {
    request = connection.readRequest();
    connection.send(httpReply("taken"));
  });
  const RawHttpServer server(RawHttpServer::answer(redirectTo(target.url("/new"), status)));
  EXPECT_THAT(sendSynchronousRequest(test_support::postOf(server.url(), body)),
              Optional(std::string("taken")));
  return request;
}

TEST(UrlRequestRedirect, PostIsRepeatedWithItsBody) {
  const std::string body(300'000, 'b');
  for (const char* status :
       {"301 Moved Permanently", "302 Found", "307 Temporary Redirect", "308 Permanent Redirect"}) {
    const std::string request = postedAgain(status, body);
    EXPECT_THAT(request, StartsWith("POST /new HTTP/1.1\r\n")) << status;
    EXPECT_TRUE(request.ends_with("\r\n\r\n" + body)) << status;
  }
}

TEST(UrlRequestRedirect, PostWithEmptyBodyIsRepeated) {
  const std::string request = postedAgain("307 Temporary Redirect", "");
  EXPECT_THAT(request, StartsWith("POST /new HTTP/1.1\r\n"));
}

TEST(UrlRequestRedirect, SeeOtherChangesPostToGet) {
  const std::string request = postedAgain("303 See Other", "body");
  EXPECT_THAT(request, StartsWith("GET /new HTTP/1.1\r\n"));
  EXPECT_TRUE(request.ends_with("\r\n\r\n"));
}

TEST(UrlRequestRedirect, TimeoutStartsAnewForEachRedirect) {
  constexpr std::chrono::milliseconds kPause{400};
  int left = 4;
  const RawHttpServer server([&](RawConnection& connection) {
    while (!connection.readHead().empty()) {
      connection.pauseFor(kPause);
      connection.send(left-- > 0 ? redirectTo("/") : httpReply("arrived"));
    }
  });
  UrlRequest request = requestFor(server.url());
  request.timeoutInterval = std::chrono::seconds(1);
  const auto outcome = test_support::outcomeOf(request);
  EXPECT_THAT(outcome.reply, Optional(std::string("arrived")));
  EXPECT_GE(outcome.time, 5 * kPause);
}

}  // namespace
