#include <gmock/gmock.h>
#include <sys/mount.h>
#include <sys/stat.h>

#include <thread>

#include "app/nimbatrayAppDelegate.h"
#include "platform/status_item.h"
#include "tests/support/product_server_double.h"
#include "tests/support/raw_http_server.h"
#include "tests/usage/record_fixture.h"
#include "tests/usage/server_parts.h"

namespace settings_test {
namespace {

using test_support::ProductServerDouble;
using test_support::RawConnection;
using test_support::RawHttpServer;
using test_support::ServedRequest;
using testing::ElementsAre;
using testing::UnorderedElementsAre;

using Reply = ProductServerDouble::Reply;

std::string inFolder(const std::string& name) {
  return std::string(kFolder) + "/" + name;
}

// An upload pass on 7 March 2024 with a server of its own.
class UploadPass : public Records {
 protected:
  void SetUp() override {
    Records::SetUp();
    record_parts::setServers(server_.origin(), "http://127.0.0.1:1");
    delegate_.dataUploadURL = 1;
  }

  // The names of the files that are left, beside the identifier.
  [[nodiscard]] static std::vector<std::string> left() {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(kFolder)) {
      if (entry.path().extension() != ".txt") names.push_back(entry.path().filename());
    }
    return names;
  }

  // One pass over these files; what it says on standard error.
  std::string pass(const std::vector<std::string>& names) {
    for (const std::string& name : names) write(inFolder(name), "bytes of " + name);
    return errorsOf([this] { EXPECT_TRUE(delegate_.TvlDataFileCheck()); });
  }

  ProductServerDouble server_;
  nimbatrayAppDelegate delegate_;
};

constexpr const char* kYesterday = "Tovalin_2024_03_06.dat";
constexpr const char* kTodaysName = "Tovalin_2024_03_07.dat";

TEST_F(UploadPass, RequestIsTheFormToTheByte) {
  const std::string bytes = "TVLD\0\r\n--\xff"s;
  write(inFolder(kYesterday), bytes);
  pass({});
  ASSERT_EQ(server_.requests().size(), 1u);
  const ServedRequest request = server_.requests()[0];
  EXPECT_EQ(request.method, "POST");
  EXPECT_EQ(request.target, "/product/nimba/userlog/postdata.php");
  const std::string boundary = "---------------------------14737809831466499882746641449";
  const auto header = [&](const char* name) {
    const auto found = request.headers.find(name);
    return found == request.headers.end() ? "none" : found->second;
  };
  EXPECT_EQ(header("Content-Type"), "multipart/form-data; boundary=" + boundary);
  EXPECT_EQ(header("Content-Length"), std::to_string(bytes.size() + 241));
  EXPECT_EQ(header("Expect"), "none");
  EXPECT_EQ(request.body,
            "\r\n--" + boundary +
                "\r\nContent-Disposition: form-data; name=\"userdata\"; filename=\"Tovalin.dat\"\r\n"
                "Content-Type: application/octet-stream\r\n\r\n" +
                bytes + "\r\n--" + boundary + "--\r\n");
}

TEST_F(UploadPass, TodaysFileAloneSendsAndDeletesNothing) {
  EXPECT_EQ(pass({kTodaysName}), "");
  EXPECT_THAT(server_.requests(), IsEmpty());
  EXPECT_THAT(left(), ElementsAre(kTodaysName));
}

TEST_F(UploadPass, OfThreePastFilesTheTwoThatWereTakenAreDeleted) {
  server_.judgeUploads([](const ServedRequest& request) {
    return Reply{200, request.body.find("bytes of b.dat") != std::string::npos ? "\xff" : "OK"};
  });
  pass({"a.dat", "b.dat", kTodaysName, "c.dat"});
  EXPECT_EQ(server_.requests().size(), 3u);
  EXPECT_THAT(left(), UnorderedElementsAre("b.dat", kTodaysName));
}

TEST_F(UploadPass, FileThatWasNotTakenIsOfferedAgainAtTheNextPass) {
  server_.judgeUploads([](const ServedRequest&) { return Reply{200, "\xff"}; });
  pass({kYesterday});
  EXPECT_THAT(left(), ElementsAre(kYesterday));
  server_.judgeUploads([](const ServedRequest&) { return Reply{}; });
  pass({});
  EXPECT_THAT(left(), IsEmpty());
  EXPECT_EQ(server_.requests().size(), 2u);
}

TEST_F(UploadPass, AnyNameThatEndsInDatIsSentAndNoOther) {
  pass({"notes.dat", ".dat", "NOTES.DAT", "dat", "a.dat.bak", "b.Dat", "c.data"});
  EXPECT_EQ(server_.requests().size(), 2u);
  EXPECT_THAT(left(), UnorderedElementsAre("NOTES.DAT", "dat", "a.dat.bak", "b.Dat", "c.data"));
}

TEST_F(UploadPass, EmptyFileIsSentAndDeleted) {
  write(inFolder("empty.dat"), "");
  pass({});
  ASSERT_EQ(server_.requests().size(), 1u);
  EXPECT_EQ(server_.requests()[0].body.size(), 241u);
  EXPECT_THAT(left(), IsEmpty());
}

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
  record_parts::setServers(server.url(""), "http://127.0.0.1:1");
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
  record_parts::setServers(server.url(""), "http://127.0.0.1:1");
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

TEST_F(UploadPass, FileThatGrewWhileItWasSentIsKept) {
  server_.judgeUploads([](const ServedRequest&) {
    std::ofstream(inFolder(kYesterday), std::ios::app) << "a late record";
    return Reply{};
  });
  pass({kYesterday});
  EXPECT_THAT(left(), ElementsAre(kYesterday));
}

TEST_F(UploadPass, RefusedConnectionKeepsTheFiles) {
  record_parts::setServers("http://127.0.0.1:1", "http://127.0.0.1:1");
  pass({"a.dat", "b.dat"});
  EXPECT_THAT(left(), UnorderedElementsAre("a.dat", "b.dat"));
}

TEST_F(UploadPass, OptionOtherThanOneMeansTheTestUploadServer) {
  for (const int option : {0, 2, -1}) {
    delegate_.dataUploadURL = option;
    record_parts::setServers("http://127.0.0.1:1", server_.origin());
    pass({kYesterday});
    EXPECT_THAT(left(), IsEmpty()) << option;
  }
  EXPECT_EQ(server_.requests().size(), 3u);
}

TEST_F(UploadPass, OriginWithTlsIsSentToOverPlainHttp) {
  record_parts::setServers("https" + server_.origin().substr(4), "http://127.0.0.1:1");
  pass({kYesterday});
  EXPECT_THAT(left(), IsEmpty());
}

TEST_F(UploadPass, MissingFolderIsMadeAndGivesAnEmptyPass) {
  fs::remove_all(kSupport);
  EXPECT_TRUE(delegate_.TvlDataFileCheck());
  EXPECT_THAT(server_.requests(), IsEmpty());
}

TEST_F(UploadPass, FolderThatCannotBeHadGivesAnEmptyPass) {
  fs::remove_all(kFolder);
  write(kFolder, "");
  EXPECT_TRUE(delegate_.TvlDataFileCheck());
}

TEST_F(UploadPass, WhatIsNoRegularFileIsNeitherWaitedForNorSentNorDeleted) {
  ASSERT_EQ(::mkfifo(inFolder("pipe.dat").c_str(), 0600), 0);
  fs::create_directory(inFolder("folder.dat"));
  fs::create_symlink("/dev/zero", inFolder("device.dat"));
  fs::create_symlink("/tmp/nowhere", inFolder("dangling.dat"));
  pass({});
  EXPECT_THAT(server_.requests(), IsEmpty());
  EXPECT_EQ(left().size(), 4u);
}

TEST_F(UploadPass, FileBeyondTheLimitIsKeptAndNotRead) {
  write(inFolder("large.dat"), "");
  fs::resize_file(inFolder("large.dat"), (std::uintmax_t{256} << 20) + 1);
  pass({});
  EXPECT_THAT(server_.requests(), IsEmpty());
  EXPECT_THAT(left(), ElementsAre("large.dat"));
}

TEST_F(UploadPass, FileThatVanishesAfterTheListingIsPassedBy) {
  server_.judgeUploads([](const ServedRequest&) {
    for (const char* name : {"a.dat", "b.dat", "c.dat"}) fs::remove(inFolder(name));
    return Reply{};
  });
  pass({"a.dat", "b.dat", "c.dat"});
  EXPECT_EQ(server_.requests().size(), 1u);
}

TEST_F(UploadPass, ReadOnlyFolderKeepsAFileThatWasSent) {
  write(inFolder(kYesterday), "bytes");
  ASSERT_EQ(::mount(kFolder, kFolder, nullptr, MS_BIND, nullptr), 0);
  ASSERT_EQ(::mount(nullptr, kFolder, nullptr, MS_BIND | MS_REMOUNT | MS_RDONLY, nullptr), 0);
  std::error_code refused;
  fs::remove(inFolder(kYesterday), refused);
  EXPECT_TRUE(refused);
  pass({});
  EXPECT_EQ(server_.requests().size(), 1u);
  ASSERT_EQ(::umount(kFolder), 0);
  EXPECT_THAT(left(), ElementsAre(kYesterday));
}

TEST_F(UploadPass, UnreadableFileIsKeptAndNotSent) {
  write(inFolder(kYesterday), "bytes");
  fs::permissions(inFolder(kYesterday), fs::perms::none);
  fs::permissions(kFolder, fs::perms::all);
  const auto finished = test_support::runForked([this] {
    if (!test_support::becomeNobody()) return test_support::kNotToBeHad;
    if (::access(inFolder(kYesterday).c_str(), R_OK) == 0) return 100;
    return delegate_.TvlDataFileCheck() ? 0 : 1;
  });
  if (wasNotToBeHad(finished)) GTEST_SKIP() << "this user can't become another";
  EXPECT_EQ(finished.status, test_support::ExitStatus{.code = 0});
  EXPECT_THAT(server_.requests(), IsEmpty());
  EXPECT_THAT(left(), ElementsAre(kYesterday));
}

long residentPages() {
  long size = 0, resident = 0;
  std::ifstream("/proc/self/statm") >> size >> resident;
  return resident;
}

TEST_F(UploadPass, TenThousandFilesAreSentWithMemoryAndDescriptorsAsTheyWere) {
  // In a process of its own, whose memory is its own affair.
  test_support::ChildProcess server;
  test_support::ChildOptions quiet;
  quiet.output = test_support::Redirection::null();
  fs::create_directories("/tmp/served");
  ASSERT_TRUE(
      server.start({TOVALIN_PRODUCTSERVER, "--port", "0", "--port-file", "/tmp/port", "/tmp/served"}, quiet));
  ASSERT_TRUE(test_support::waitUntil([] { return fs::exists("/tmp/port"); }));
  record_parts::setServers("http://127.0.0.1:" + std::to_string(std::stoi(contentsOf("/tmp/port"))),
                           "http://127.0.0.1:1");
  const auto passOver = [this](int files) {
    for (int i = 0; i < files; ++i) write(inFolder(std::to_string(i) + ".dat"), std::string(64, 'b'));
    errorsOf([this] { delegate_.TvlDataFileCheck(); });
    EXPECT_THAT(left(), IsEmpty());
  };
  passOver(1000);
  const long before = residentPages();
  const int descriptors = test_support::openDescriptors();
  passOver(10'000);
  // The list of names takes some of it.
  EXPECT_LE(residentPages(), before + 512);
  EXPECT_EQ(test_support::openDescriptors(), descriptors);
}

TEST_F(UploadPass, ThreadAtLaunchLeavesTheFlagCleared) {
  delegate_.bTvlDataUpload = true;
  write(inFolder(kYesterday), "bytes");
  errorsOf([this] { delegate_.TvlDataFileUploadThread(); });
  EXPECT_FALSE(delegate_.bTvlDataUpload);
  EXPECT_THAT(left(), IsEmpty());
}

TEST_F(UploadPass, ThreadAtLaunchAndTicksShareTheFlag) {
  delegate_.strStartTime = record_parts::clockAt("2024-03-06 23:59:05");
  std::thread atLaunch([this] {
    for (int i = 0; i < 200; ++i) delegate_.TvlDataFileUploadThread();
  });
  for (int i = 0; i < 200; ++i) delegate_.TvlCheckDataUpload();
  atLaunch.join();
  EXPECT_THAT(left(), ElementsAre(kTodaysName));
}

// A minute's ticks with a clock that is stepped.
class UploadTicks : public UploadPass {
 protected:
  void launchAt(const char* time) {
    record_parts::setClock(time);
    TvlWriteStartToFile();
    delegate_.strStartTime = record_parts::clockAt(time);
  }
  void tickAt(const char* time) {
    record_parts::setClock(time);
    errorsOf([this] { delegate_.TvlCheckDataUpload(); });
  }
};

TEST_F(UploadTicks, LaunchBeforeMidnightUploadsInTheMinuteOfItsSecond) {
  launchAt("2024-03-06 23:59:30");
  tickAt("2024-03-07 00:00:30");
  EXPECT_EQ(contentsOf(inFolder(kTodaysName)), kHeader);
  EXPECT_TRUE(delegate_.bTvlDataUpload);
  EXPECT_EQ(delegate_.strStartTime.tm_sec, 30);
  tickAt("2024-03-07 00:29:30");
  EXPECT_THAT(server_.requests(), IsEmpty());
  tickAt("2024-03-07 00:30:30");
  ASSERT_EQ(server_.requests().size(), 1u);
  EXPECT_THAT(server_.requests()[0].body, testing::HasSubstr("TVLD2024-03-06"));
  EXPECT_FALSE(delegate_.bTvlDataUpload);
  EXPECT_THAT(left(), ElementsAre(kTodaysName));
  tickAt("2024-03-07 01:30:30");
  EXPECT_EQ(server_.requests().size(), 1u);
}

TEST_F(UploadTicks, MissedMinuteComesRoundAgain) {
  launchAt("2024-03-06 23:59:30");
  tickAt("2024-03-07 00:00:30");
  tickAt("2024-03-07 07:12:30");
  EXPECT_TRUE(delegate_.bTvlDataUpload);
  tickAt("2024-03-07 07:30:30");
  EXPECT_EQ(server_.requests().size(), 1u);
}

TEST_F(UploadTicks, FailedPassOfADayIsNotRepeatedBeforeTheNext) {
  launchAt("2024-03-06 23:59:30");
  record_parts::setServers("http://127.0.0.1:1", "http://127.0.0.1:1");
  tickAt("2024-03-07 00:00:00");
  EXPECT_FALSE(delegate_.bTvlDataUpload);
  record_parts::setServers(server_.origin(), "http://127.0.0.1:1");
  tickAt("2024-03-07 01:00:00");
  EXPECT_THAT(server_.requests(), IsEmpty());
  tickAt("2024-03-08 00:00:00");
  EXPECT_EQ(server_.requests().size(), 2u);
  EXPECT_THAT(left(), ElementsAre("Tovalin_2024_03_08.dat"));
}

TEST_F(UploadTicks, FlagSetByNobodyMakesNoPass) {
  launchAt("2024-03-07 09:05:06");
  write(inFolder(kYesterday), "bytes");
  tickAt("2024-03-07 10:06:06");
  EXPECT_THAT(server_.requests(), IsEmpty());
}

}  // namespace
}  // namespace settings_test
