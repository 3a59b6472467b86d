#include <gmock/gmock.h>

#include "tests/support/raw_http_server.h"
#include "tests/usage/upload_fixture.h"

namespace settings_test {
namespace {

using test_support::RawConnection;
using test_support::RawHttpServer;
using test_support::ServedRequest;
using testing::ElementsAre;

struct Answer {
  const char* what;
  int status;
  std::string body;
  bool taken;
};

class Answers : public UploadPass, public testing::WithParamInterface<Answer> {};

TEST_P(Answers, KeepOrDeleteTheFile) {
  server_.judgeUploads([](const ServedRequest&) { return Reply{GetParam().status, GetParam().body}; });
  const std::string said = pass({kYesterday});
  EXPECT_THAT(said, testing::EndsWith("] " + (GetParam().taken ? GetParam().body : "(null)") + "\n"));
  EXPECT_EQ(left().empty(), GetParam().taken);
}

INSTANTIATE_TEST_SUITE_P(UploadPass, Answers,
                         testing::Values(Answer{"Text", 200, "OK", true}, Answer{"Nothing", 200, "", true},
                                         Answer{"ErrorPage", 500, "Internal Server Error \xe2\x82\xac", true},
                                         Answer{"NotFoundWithoutText", 404, "", true},
                                         Answer{"PercentSigns", 200, "%s %n %@", true},
                                         Answer{"NoUtf8", 200, "OK\xff", false},
                                         Answer{"Overlong", 200, "\xc0\x80", false},
                                         Answer{"Surrogate", 200, "\xed\xa0\x80", false},
                                         Answer{"ErrorPageThatIsNoUtf8", 500, "\xe4", false}),
                         [](const auto& test) { return test.param.what; });

struct Fault {
  const char* what;
  RawHttpServer::Script script;
};

class Faults : public UploadPass, public testing::WithParamInterface<Fault> {};

TEST_P(Faults, KeepTheFile) {
  const RawHttpServer server(GetParam().script);
  record_parts::setServers(server.url(""), kNobody);
  EXPECT_THAT(pass({kYesterday}), testing::EndsWith("] (null)\n"));
  EXPECT_THAT(left(), ElementsAre(kYesterday));
  EXPECT_EQ(server.connections(), 1u);
}

INSTANTIATE_TEST_SUITE_P(
    UploadPass, Faults,
    testing::Values(
        Fault{"ResetBeforeTheRequestIsRead", [](RawConnection& connection) { connection.reset(); }},
        Fault{"ResetWithinTheBody",
              [](RawConnection& connection) {
                connection.readHead();
                connection.readBytes(10);
                connection.reset();
              }},
        Fault{"ResetAfterTheBody",
              [](RawConnection& connection) {
                connection.readRequest();
                connection.reset();
              }},
        Fault{"ClosedWithoutAReply", [](RawConnection& connection) { connection.readRequest(); }},
        Fault{"ReplyThatEndsEarly",
              [](RawConnection& connection) {
                connection.readRequest();
                connection.send("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\nOK");
              }},
        Fault{"RedirectToAnotherScheme",
              RawHttpServer::answer(
                  "HTTP/1.1 307 Elsewhere\r\nLocation: https://127.0.0.1:1/\r\nContent-Length: 0\r\n\r\n")},
        Fault{"ReplyThatNeverEnds",
              [](RawConnection& connection) {
                connection.readRequest();
                connection.send("HTTP/1.1 200 OK\r\n\r\n");
                const std::string much(1 << 20, 'x');
                while (connection.send(much)) continue;
              }}),
    [](const auto& test) { return test.param.what; });

TEST_F(UploadPass, RedirectToAnotherSchemeIsNotEvenTried) {
  const RawHttpServer secure([](RawConnection& connection) { static_cast<void>(connection.waitForEnd()); });
  const RawHttpServer server(RawHttpServer::answer(
      "HTTP/1.1 307 Elsewhere\r\nLocation: " + secure.url("/", "https") + "\r\nContent-Length: 0\r\n\r\n"));
  record_parts::setServers(server.url(""), kNobody);
  pass({kYesterday});
  EXPECT_THAT(left(), ElementsAre(kYesterday));
  EXPECT_EQ(secure.connections(), 0u);
}

TEST_F(UploadPass, ReplyOfSixteenMegabytesIsTakenAndOneOfAByteMoreIsNot) {
  for (const std::size_t more : {1u, 0u}) {
    server_.judgeUploads([&](const ServedRequest&) {
      return Reply{200, std::string((16u << 20) + more, 'x')};
    });
    pass({kYesterday});
    EXPECT_EQ(left().empty(), more == 0);
  }
}

}  // namespace
}  // namespace settings_test
