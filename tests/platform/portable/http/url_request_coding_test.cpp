#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/harness/servers/compressed.h"
#include "tests/platform/portable/http/url_request_support.h"

namespace {

using platform::sendSynchronousRequest;
using test_support::chunkedReply;
using test_support::compressed;
using test_support::CompressedFormat;
using test_support::httpReply;
using test_support::RawConnection;
using test_support::RawHttpServer;
using test_support::replyOf;
using test_support::requestFor;
using testing::Optional;

std::string codingHeader(const std::string& codings) {
  return "Content-Encoding: " + codings + "\r\n";
}

std::optional<std::string> replyWithCoding(const std::string& body, const std::string& codings) {
  return replyOf(RawHttpServer::answer(httpReply(body, codingHeader(codings))));
}

const std::string kText = "the text";
const std::string kGzipped = compressed(kText, CompressedFormat::Gzip);

TEST(UrlRequestCoding, BodyOfUnknownCodingIsUnchanged) {
  for (const char* coding : {"utf-8", "UTF-8", "text", "8bit", "identity", "none", "br", "compress",
                             "gzip;q=1", "gzip deflate", "", ",", "\"gzip\""})
    EXPECT_THAT(replyWithCoding(kText, coding), Optional(kText)) << coding;
}

TEST(UrlRequestCoding, ReplyToPostOfUnknownCodingIsUnchanged) {
  const RawHttpServer server(RawHttpServer::answer(httpReply("OK", codingHeader("utf-8"))));
  EXPECT_THAT(sendSynchronousRequest(test_support::postOf(server.url(), "body")),
              Optional(std::string("OK")));
}

TEST(UrlRequestCoding, GzipAndDeflateAreDecodedCaseInsensitively) {
  for (const char* coding : {"gzip", "GZip", "x-gzip", "X-GZIP", "  gzip\t", "identity, gzip"})
    EXPECT_THAT(replyWithCoding(kGzipped, coding), Optional(kText)) << coding;
  for (const auto format : {CompressedFormat::Zlib, CompressedFormat::RawDeflate}) {
    for (const char* coding : {"deflate", "Deflate"})
      EXPECT_THAT(replyWithCoding(compressed(kText, format), coding), Optional(kText)) << coding;
  }
}

TEST(UrlRequestCoding, UnknownCodingNextToGzipIsSkipped) {
  for (const char* codings : {"utf-8, gzip", "gzip, utf-8", "utf-8,gzip,identity"})
    EXPECT_THAT(replyWithCoding(kGzipped, codings), Optional(kText)) << codings;
}

TEST(UrlRequestCoding, SeveralHeaderLinesFormOneList) {
  const std::string body = compressed(kGzipped, CompressedFormat::Zlib);
  for (const std::string& headers :
       {codingHeader("gzip, deflate"), codingHeader("gzip") + codingHeader("deflate"),
        codingHeader("gzip") + "Vary: *\r\n" + codingHeader("utf-8, deflate")})
    EXPECT_THAT(replyOf(RawHttpServer::answer(httpReply(body, headers))), Optional(kText)) << headers;
}

TEST(UrlRequestCoding, HeaderLinesAfterTenthAreIgnored) {
  std::string headers;
  for (int i = 0; i < 9; ++i) headers += codingHeader("utf-8");
  EXPECT_THAT(replyOf(RawHttpServer::answer(httpReply(kGzipped, headers + codingHeader("gzip")))),
              Optional(kText));
  EXPECT_THAT(replyOf(RawHttpServer::answer(
                  httpReply(kGzipped, headers + codingHeader("utf-8") + codingHeader("gzip")))),
              Optional(kGzipped));
}

TEST(UrlRequestCoding, ChunksAreJoinedBeforeDecoding) {
  for (const std::size_t size : {1U, 7U, 1000U})
    EXPECT_THAT(replyOf(RawHttpServer::answer(chunkedReply(kGzipped, size, codingHeader("gzip")))),
                Optional(kText));
}

TEST(UrlRequestCoding, BodyNotInItsCodingIsUnchanged) {
  const std::string truncated = kGzipped.substr(0, kGzipped.size() - 1);
  for (const std::string& body : {kText, std::string("\x1f"), truncated})
    EXPECT_THAT(replyWithCoding(body, "gzip"), Optional(body)) << testing::PrintToString(body);
}

TEST(UrlRequestCoding, EmptyBodyWithCodingIsReply) {
  for (const char* coding : {"gzip", "deflate", "utf-8"}) {
    EXPECT_THAT(replyWithCoding("", coding), Optional(std::string())) << coding;
    EXPECT_THAT(replyOf(RawHttpServer::answer("HTTP/1.1 204 No Content\r\n" + codingHeader(coding) + "\r\n")),
                Optional(std::string()))
        << coding;
  }
}

TEST(UrlRequestCoding, IncompleteTransferOfCodedBodyIsNoReply) {
  const std::string head = "HTTP/1.1 200 OK\r\nContent-Length: 100\r\n" + codingHeader("gzip") + "\r\n";
  EXPECT_EQ(replyOf(RawHttpServer::answer(head + kGzipped)), std::nullopt);
}

TEST(UrlRequestCoding, CodingOfRedirectDoesNotApplyToTarget) {
  for (const auto& [atFirst, then] :
       {std::pair<const char*, const char*>("gzip", "utf-8"), {"utf-8", "gzip"}}) {
    const RawHttpServer target(RawHttpServer::answer(httpReply(kGzipped, codingHeader(then))));
    const RawHttpServer server(RawHttpServer::answer(
        httpReply("moved", "Location: " + target.url() + "\r\n" + codingHeader(atFirst), "302 Found")));
    EXPECT_THAT(sendSynchronousRequest(requestFor(server.url())),
                Optional(then == std::string("gzip") ? kText : kGzipped))
        << then;
  }
}

TEST(UrlRequestCoding, CodingOfInterimReplyOrTrailerDoesNotApplyToReply) {
  EXPECT_THAT(replyOf(RawHttpServer::answer("HTTP/1.1 103 Early Hints\r\n" + codingHeader("gzip") + "\r\n" +
                                            httpReply(kGzipped))),
              Optional(kGzipped));
  std::string chunks = chunkedReply(kGzipped, 100);
  chunks.insert(chunks.size() - 2, codingHeader("gzip"));
  EXPECT_THAT(replyOf(RawHttpServer::answer(chunks)), Optional(kGzipped));
}

// The server replies after the request header and does not read the body.
TEST(UrlRequestCoding, EarlyReplyIsDecoded) {
  const std::string body(std::size_t{100} << 20, 'b');
  const RawHttpServer server([](RawConnection& connection) {
    connection.readHead();
    connection.send(httpReply(kGzipped, codingHeader("gzip")));
    connection.waitForEnd();
  });
  platform::UrlRequest request = test_support::postOf(server.url(), body);
  request.timeoutInterval = std::chrono::milliseconds(500);
  EXPECT_THAT(sendSynchronousRequest(request), Optional(kText));
}

}  // namespace
