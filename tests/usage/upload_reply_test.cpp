#include <gmock/gmock.h>

#include <algorithm>

#include "tests/harness/servers/raw_http_server.h"
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

TEST_P(Answers, DecideWhetherFileIsDeleted) {
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

TEST_P(Faults, KeepFile) {
  const RawHttpServer server(GetParam().script);
  record_parts::setServers(server.url(""), kClosedServer);
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

TEST_F(UploadPass, RedirectToOtherSchemeIsNotFollowed) {
  const RawHttpServer secure([](RawConnection& connection) { static_cast<void>(connection.waitForEnd()); });
  const RawHttpServer server(RawHttpServer::answer(
      "HTTP/1.1 307 Elsewhere\r\nLocation: " + secure.url("/", "https") + "\r\nContent-Length: 0\r\n\r\n"));
  record_parts::setServers(server.url(""), kClosedServer);
  pass({kYesterday});
  EXPECT_THAT(left(), ElementsAre(kYesterday));
  EXPECT_EQ(secure.connections(), 0u);
}

// Sends a redirect after the request header, then reads 30 MiB of the body.
RawHttpServer::Script redirectEarly(const std::string& place) {
  return [place](RawConnection& connection) {
    connection.readHead();
    connection.send("HTTP/1.1 307 Elsewhere\r\nLocation: " + place +
                    "\r\nConnection: close\r\nContent-Length: 0\r\n\r\n");
    connection.readBytes(std::size_t{30} << 20);
  };
}

TEST_F(UploadPass, EarlyRedirectKeepsFileUntilTargetAcceptsIt) {
  write(inFolder(kYesterday), std::string(std::size_t{40} << 20, 'b'));
  const RawHttpServer astray(redirectEarly("http://127.0.0.1:1/"));
  record_parts::setServers(astray.url(""), kClosedServer);
  EXPECT_THAT(pass({}), testing::EndsWith("] (null)\n"));
  EXPECT_THAT(left(), ElementsAre(kYesterday));

  const RawHttpServer target(RawHttpServer::answer(test_support::httpReply("taken")));
  const RawHttpServer server(redirectEarly(target.url()));
  record_parts::setServers(server.url(""), kClosedServer);
  EXPECT_THAT(pass({}), testing::EndsWith("] taken\n"));
  EXPECT_TRUE(left().empty());
}

TEST_F(UploadPass, ReplyIsLimitedTo16Mebibytes) {
  for (const std::size_t more : {1u, 0u}) {
    server_.judgeUploads([&](const ServedRequest&) {
      return Reply{200, std::string((16u << 20) + more, 'x')};
    });
    pass({kYesterday});
    EXPECT_EQ(left().empty(), more == 0);
  }
}

TEST_F(UploadPass, ReplyOfUnknownContentCodingIsAccepted) {
  for (const char* coding : {"utf-8", "text", "8bit", "gzip"}) {
    const RawHttpServer server(
        RawHttpServer::answer(test_support::httpReply("OK", "Content-Encoding: "s + coding + "\r\n")));
    record_parts::setServers(server.url(""), kClosedServer);
    EXPECT_THAT(pass({kYesterday}), testing::EndsWith("] OK\n")) << coding;
    EXPECT_TRUE(left().empty()) << coding;
  }
}

TEST_F(UploadPass, LongReplyIsPrintedOnOneLineOfThousandCharacters) {
  server_.judgeUploads([](const ServedRequest&) { return Reply{200, std::string(16u << 20, 'x')}; });
  EXPECT_THAT(pass({kYesterday}), testing::EndsWith("] " + std::string(999, 'x') + "\u2026\n"));
  EXPECT_TRUE(left().empty());
}

TEST_F(UploadPass, ControlCharactersOfReplyAreEscaped) {
  server_.judgeUploads([](const ServedRequest&) {
    return Reply{200, "\x1b]0;title\a\n2024-03-07 09:05:00.000 TovalinTray[1] forged\r\u202e"};
  });
  const std::string said = pass({kYesterday});
  EXPECT_THAT(said, testing::EndsWith("] \\u001b]0;title\\u0007\\u000a2024-03-07 09:05:00.000 TovalinTray[1] "
                                      "forged\\u000d\\u202e\n"));
  EXPECT_EQ(std::ranges::count(said, '\n'), 1);
}

}  // namespace
}  // namespace settings_test
