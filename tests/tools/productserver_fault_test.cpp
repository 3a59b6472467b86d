#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zlib.h>

#include <chrono>
#include <memory>
#include <vector>

#include "tests/tools/productserver_fixture.h"
#include "tests/tools/raw_client.h"
#include "tests/tools/tool_process.h"

namespace {

using namespace std::chrono_literals;

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using tools_test::kFolder;
using tools_test::RawClient;
using tools_test::runToEnd;
using tools_test::toolPath;
using End = RawClient::End;

constexpr const char* kText = "0123456789abcdefghijklmnopqrstuvwxyz\n";
constexpr auto kAWhile = 700ms;  // without any byte

class Faults : public tools_test::ProductServer {
 protected:
  void SetUp() override {
    ProductServer::SetUp();
    write(std::string(kFolder) + "/t.xml", kText);
  }

  // Sets the fault and returns the answer to a GET of the file.
  RawClient::Answer answerWith(const std::string& fault,
                               std::chrono::milliseconds silence = test_support::kPatience) {
    setFault("/t.xml", fault);
    const RawClient client(port_);
    EXPECT_TRUE(client.send("GET /t.xml HTTP/1.1\r\nHost: x\r\n\r\n"));
    RawClient::Answer answer = client.read(silence);
    EXPECT_THAT(server_.readLine().value_or(""), EndsWith("GET /t.xml  fault " + fault));
    return answer;
  }

  // Like answerWith(), for an answer that stalls.
  RawClient::Answer stalledAnswerWith(const std::string& fault) {
    setFault("/t.xml", fault);
    const RawClient client(port_);
    EXPECT_TRUE(client.send("GET /t.xml HTTP/1.1\r\nHost: x\r\n\r\n"));
    const std::string beginning = client.read(test_support::kPatience, 1).text;
    const RawClient::Answer rest = client.read(kAWhile);
    return {.text = beginning + rest.text, .end = rest.end};
  }

  httplib::Result get(const std::string& fault) {
    setFault("/t.xml", fault);
    return client_->Get("/t.xml");
  }
};

std::string bodyOfAnswer(const RawClient::Answer& answer) {
  const std::size_t blankLine = answer.text.find("\r\n\r\n");
  return blankLine == answer.text.npos ? "no body" : answer.text.substr(blankLine + 4);
}

TEST_F(Faults, RefuseStatus500AnswersWith500) {
  const httplib::Result result = get("refuse-status-500");
  ASSERT_TRUE(result);
  EXPECT_EQ(result->status, 500);
  EXPECT_EQ(result->body, "The server refuses this request.\n");
}

TEST_F(Faults, EmptyBodyAnswersWithLengthZero) {
  const httplib::Result result = get("empty-body");
  ASSERT_TRUE(result);
  EXPECT_EQ(result->status, 200);
  EXPECT_EQ(result->body, "");
  EXPECT_EQ(result->get_header_value("Content-Length"), "0");
}

TEST_F(Faults, InvalidUtf8FaultsSendTheirBytes) {
  for (const auto& [name, body] :
       {std::pair("not-utf8", "\xff\xff\xff\xff"), std::pair("overlong", "\xc0\xaf"),
        std::pair("surrogate", "\xed\xa0\x80")}) {
    const httplib::Result result = get(name);
    ASSERT_TRUE(result) << name;
    EXPECT_EQ(result->status, 200) << name;
    EXPECT_EQ(result->body, body) << name;
  }
}

TEST_F(Faults, ResetFaultsResetConnection) {
  for (const char* const name : {"reset-before", "reset-after"}) {
    const RawClient::Answer answer = answerWith(name);
    EXPECT_EQ(answer.text, "") << name;
    EXPECT_EQ(answer.end, End::Reset) << name;
  }
}

TEST_F(Faults, ResetWithinBodyWaitsForStartOfBody) {
  setFault("/t.xml", "reset-within-body");
  const RawClient client(port_);
  ASSERT_TRUE(client.send("POST /t.xml HTTP/1.1\r\nHost: x\r\nContent-Length: 1000\r\n\r\n"));
  EXPECT_EQ(client.read(300ms).end, End::StillOpen);
  ASSERT_TRUE(client.send("x"));
  EXPECT_EQ(client.read().end, End::Reset);
}

TEST_F(Faults, ResetWithinBodyDoesNotWaitWithoutBody) {
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_EQ(answerWith("reset-within-body").end, End::Reset);
  EXPECT_LT(std::chrono::steady_clock::now() - begin, 4s);
}

TEST_F(Faults, ResetAfterReadsWholeBody) {
  setFault("/t.xml", "reset-after");
  const RawClient client(port_);
  ASSERT_TRUE(client.send("POST /t.xml HTTP/1.1\r\nHost: x\r\nContent-Length: 4\r\n\r\nabc"));
  EXPECT_EQ(client.read(kAWhile).end, End::StillOpen);
  ASSERT_TRUE(client.send("d"));
  EXPECT_EQ(client.read().end, End::Reset);
}

TEST_F(Faults, DropClosesWithoutAnswer) {
  const RawClient::Answer answer = answerWith("drop");
  EXPECT_EQ(answer.text, "");
  EXPECT_EQ(answer.end, End::Closed);
}

TEST_F(Faults, SilentNeitherAnswersNorCloses) {
  const RawClient::Answer answer = answerWith("silent", kAWhile);
  EXPECT_EQ(answer.text, "");
  EXPECT_EQ(answer.end, End::StillOpen);
}

TEST_F(Faults, StallHeaderStopsBeforeBlankLine) {
  const RawClient::Answer answer = stalledAnswerWith("stall-header");
  EXPECT_THAT(answer.text, StartsWith("HTTP/1.1 200 OK\r\n"));
  EXPECT_THAT(answer.text, Not(HasSubstr("\r\n\r\n")));
  EXPECT_EQ(answer.end, End::StillOpen);
}

TEST_F(Faults, StallBodyStopsHalfway) {
  const RawClient::Answer answer = stalledAnswerWith("stall-body");
  EXPECT_THAT(answer.text, HasSubstr("Content-Length: 37\r\n"));
  EXPECT_EQ(bodyOfAnswer(answer), "0123456789abcdefgh");
  EXPECT_EQ(answer.end, End::StillOpen);
}

TEST_F(Faults, SlowSendsByteByByteForTenSeconds) {
  setFault("/t.xml", "slow");
  const auto begin = std::chrono::steady_clock::now();
  const RawClient client(port_);
  ASSERT_TRUE(client.send("GET /t.xml HTTP/1.1\r\nHost: x\r\n\r\n"));
  RawClient::Answer piece = client.read(test_support::kPatience, 1);
  std::string text = piece.text;
  int pieces = 1;
  for (; piece.end == End::StillOpen && !piece.text.empty(); ++pieces) {
    piece = client.read(test_support::kPatience, 1);
    text += piece.text;
  }
  EXPECT_GE(std::chrono::steady_clock::now() - begin, 10s);
  EXPECT_GE(pieces, 10) << "too few separate reads";
  EXPECT_THAT(text, EndsWith(std::string("\r\n\r\n") + kText));
  EXPECT_EQ(piece.end, End::Closed);
}

TEST_F(Faults, EndlessExceedsAnyLimit) {
  setFault("/t.xml", "endless");
  const RawClient client(port_);
  ASSERT_TRUE(client.send("GET /t.xml HTTP/1.1\r\nHost: x\r\n\r\n"));
  const RawClient::Answer answer = client.read(test_support::kPatience, 20UL * 1024 * 1024);
  EXPECT_THAT(answer.text.substr(0, 300),
              HasSubstr(std::string("\r\n\r\n25\r\n") + kText + "\r\n10000\r\n   "));
  EXPECT_EQ(answer.end, End::StillOpen);
}

TEST_F(Faults, HugeAppendsBlanksBeyondSixteenMebibytes) {
  const httplib::Result result = get("huge");
  ASSERT_TRUE(result);
  EXPECT_EQ(result->status, 200);
  EXPECT_EQ(result->body.size(), 17U * 1024 * 1024);
  EXPECT_EQ(result->body.substr(0, 37), kText);
  EXPECT_EQ(result->body.find_first_not_of(' ', 37), std::string::npos);
}

TEST_F(Faults, RedirectLoopKeepsPathAndQuery) {
  setFault("/t.xml", "redirect-loop");
  const httplib::Result result = client_->Get("/t.xml?a=b");
  ASSERT_TRUE(result);
  EXPECT_EQ(result->status, 302);
  EXPECT_EQ(result->get_header_value("Location"), "/t.xml?a=b");
  client_->set_follow_location(true);
  EXPECT_EQ(client_->Get("/t.xml").error(), httplib::Error::ExceedRedirectCount);
}

TEST_F(Faults, GzipCompressesWithoutAcceptEncoding) {
  const RawClient::Answer answer = answerWith("gzip");
  EXPECT_THAT(answer.text, HasSubstr("\r\nContent-Encoding: gzip\r\n"));
  std::string body = bodyOfAnswer(answer);
  std::string text(1000, '\0');
  z_stream stream{};
  ASSERT_EQ(::inflateInit2(&stream, 15 + 16), Z_OK);
  stream.next_in = reinterpret_cast<Bytef*>(body.data());
  stream.avail_in = static_cast<uInt>(body.size());
  stream.next_out = reinterpret_cast<Bytef*>(text.data());
  stream.avail_out = static_cast<uInt>(text.size());
  EXPECT_EQ(::inflate(&stream, Z_FINISH), Z_STREAM_END);
  ::inflateEnd(&stream);
  EXPECT_EQ(text.substr(0, stream.total_out), kText);
}

TEST_F(Faults, ChunkedSendsChunks) {
  const RawClient::Answer answer = answerWith("chunked");
  EXPECT_THAT(answer.text, HasSubstr("Transfer-Encoding: chunked\r\n"));
  EXPECT_THAT(answer.text, Not(HasSubstr("Content-Length")));
  EXPECT_THAT(bodyOfAnswer(answer), StartsWith("7\r\n0123456\r\n"));
  EXPECT_THAT(bodyOfAnswer(answer), EndsWith("2\r\nz\n\r\n0\r\n\r\n"));
  EXPECT_EQ(bodyOf("/t.xml"), kText);
}

TEST_F(Faults, FaultOptionAppliesFromStart) {
  start(kFolder, {"--fault", "/t=not-utf8*1", "--fault", "/t.xml?x=y=empty-body"});
  EXPECT_EQ(bodyOf("/t.xml"), "\xff\xff\xff\xff");
  EXPECT_EQ(bodyOf("/t.xml"), kText);
  EXPECT_EQ(bodyOf("/t.xml?x=y"), "");
}

TEST_F(Faults, CountLimitsRequestsOfOneConnection) {
  setFault("/t.xml", "empty-body*2");
  client_->set_keep_alive(true);
  EXPECT_EQ(bodyOf("/a.xml"), "<a/>\n");
  EXPECT_EQ(bodyOf("/t.xml"), "");
  EXPECT_EQ(bodyOf("/t.xml"), "");
  EXPECT_EQ(bodyOf("/t.xml"), kText);
}

TEST_F(Faults, ControlPathSetsListsAndClearsFaults) {
  EXPECT_EQ(bodyOf("/_control/fault"), "");
  EXPECT_EQ(bodyOf("/_control/fault?path=/t&name=drop*3"), "/t=drop*3\n");
  const httplib::Result posted =
      client_->Post("/_control/fault", "path=/a&name=gzip", "application/x-www-form-urlencoded");
  ASSERT_TRUE(posted);
  EXPECT_EQ(posted->body, "/a=gzip\n/t=drop*3\n");
  EXPECT_EQ(bodyOf("/_control/fault?path=/a&name=none"), "/t=drop*3\n");
  EXPECT_EQ(bodyOf("/_control/fault"), "/t=drop*3\n");
}

TEST_F(Faults, PostWithoutBodySetsFaultImmediately) {
  const auto begin = std::chrono::steady_clock::now();
  const RawClient client(port_);
  ASSERT_TRUE(
      client.send("POST /_control/fault?path=/t&name=drop HTTP/1.1\r\nHost: x\r\nConnection: close\r\n\r\n"));
  EXPECT_THAT(client.read().text, EndsWith("/t=drop\n"));
  EXPECT_LT(std::chrono::steady_clock::now() - begin, 4s) << "the server waited for a body";
}

TEST_F(Faults, InvalidFaultIsRefusedAndChangesNothing) {
  for (const char* const query :
       {"path=/t&name=dorp", "path=/t", "name=drop", "path=t&name=drop", "path=/t&name="}) {
    EXPECT_EQ(statusOf(std::string("/_control/fault?") + query), 400) << query;
  }
  EXPECT_EQ(bodyOf("/_control/fault?path=/t&name=dorp"), "unknown fault \"dorp\"\n");
  EXPECT_EQ(bodyOf("/_control/fault"), "");
}

TEST_F(Faults, ControlPathIsNotAffected) {
  setFault("/", "drop");
  EXPECT_EQ(bodyOf("/_control/fault"), "/=drop\n");
  setFault("/", "none");
  EXPECT_EQ(statusOf("/t.xml"), 200);
}

TEST_F(Faults, WaitingClientDoesNotDelayTermination) {
  setFault("/t.xml", "silent");
  const RawClient client(port_);
  ASSERT_TRUE(client.send("GET /t.xml HTTP/1.1\r\nHost: x\r\n\r\n"));
  ASSERT_TRUE(server_.readLine());
  server_.terminate();
  EXPECT_EQ(server_.wait(4s), test_support::ExitStatus{.code = 0});
}

TEST_F(Faults, TwentyWaitingClientsDoNotBlockOthers) {
  setFault("/t.xml", "silent");
  std::vector<std::unique_ptr<RawClient>> clients;
  for (int i = 0; i < 20; ++i) {
    clients.push_back(std::make_unique<RawClient>(port_));
    ASSERT_TRUE(clients.back()->send("GET /t.xml HTTP/1.1\r\nHost: x\r\n\r\n"));
    ASSERT_TRUE(server_.readLine());
  }
  EXPECT_EQ(bodyOf("/a.xml"), "<a/>\n");
}

TEST_F(Faults, InvalidFaultOptionIsRejected) {
  for (const char* const value : {"/t", "/t=", "/t=dorp", "t=drop", "=drop", "/t=drop*0", ""}) {
    const auto finished = runToEnd({toolPath("productserver"), "--port", "0", "--fault", value, kFolder});
    EXPECT_EQ(finished.status, test_support::ExitStatus{.code = 2}) << value;
    EXPECT_THAT(finished.error, StartsWith("productserver: --fault: ")) << value;
  }
}

}  // namespace
