#include <gmock/gmock.h>
#include <sys/mount.h>
#include <sys/stat.h>

#include "tests/harness/sanitizer.h"
#include "tests/usage/upload_fixture.h"
#include "usage/upload_files.h"

namespace settings_test {
namespace {

using test_support::ServedRequest;
using testing::ElementsAre;
using testing::UnorderedElementsAre;

TEST_F(UploadPass, RequestIsFormVerbatim) {
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

TEST_F(UploadPass, TodaysFileIsNeitherSentNorDeleted) {
  EXPECT_EQ(pass({kTodaysName}), "");
  EXPECT_THAT(server_.requests(), IsEmpty());
  EXPECT_THAT(left(), ElementsAre(kTodaysName));
}

TEST_F(UploadPass, OnlyAcceptedFilesAreDeleted) {
  server_.judgeUploads([](const ServedRequest& request) {
    return Reply{200, request.body.find("bytes of b.dat") != std::string::npos ? "\xff" : "OK"};
  });
  pass({"a.dat", "b.dat", kTodaysName, "c.dat"});
  EXPECT_EQ(server_.requests().size(), 3u);
  EXPECT_THAT(left(), UnorderedElementsAre("b.dat", kTodaysName));
}

TEST_F(UploadPass, RejectedFileIsSentAgainInNextPass) {
  server_.judgeUploads([](const ServedRequest&) { return Reply{200, "\xff"}; });
  pass({kYesterday});
  EXPECT_THAT(left(), ElementsAre(kYesterday));
  server_.judgeUploads([](const ServedRequest&) { return Reply{}; });
  pass({});
  EXPECT_THAT(left(), IsEmpty());
  EXPECT_EQ(server_.requests().size(), 2u);
}

TEST_F(UploadPass, OnlyNamesEndingInDatAreSent) {
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

TEST_F(UploadPass, FileThatGrewDuringUploadIsKept) {
  server_.judgeUploads([](const ServedRequest&) {
    std::ofstream(inFolder(kYesterday), std::ios::app) << "a late record";
    return Reply{};
  });
  pass({kYesterday});
  EXPECT_THAT(left(), ElementsAre(kYesterday));
}

TEST_F(UploadPass, RefusedConnectionKeepsFiles) {
  record_parts::setServers(kClosedServer, kClosedServer);
  pass({"a.dat", "b.dat"});
  EXPECT_THAT(left(), UnorderedElementsAre("a.dat", "b.dat"));
}

TEST_F(UploadPass, OptionOtherThanOneSelectsTestUploadServer) {
  for (const int option : {0, 2, -1}) {
    delegate_.dataUploadURL = option;
    record_parts::setServers(kClosedServer, server_.origin());
    pass({kYesterday});
    EXPECT_THAT(left(), IsEmpty()) << option;
  }
  EXPECT_EQ(server_.requests().size(), 3u);
}

TEST_F(UploadPass, HttpsOriginIsSentOverHttp) {
  record_parts::setServers("https" + server_.origin().substr(4), kClosedServer);
  pass({kYesterday});
  EXPECT_THAT(left(), IsEmpty());
}

TEST_F(UploadPass, MissingFolderIsCreatedAndSendsNothing) {
  fs::remove_all(kSupport);
  EXPECT_TRUE(delegate_.TvlDataFileCheck());
  EXPECT_THAT(server_.requests(), IsEmpty());
}

TEST_F(UploadPass, InvalidFolderSendsNothing) {
  fs::remove_all(kFolder);
  write(kFolder, "");
  EXPECT_TRUE(delegate_.TvlDataFileCheck());
}

TEST_F(UploadPass, OtherThanRegularFileIsSkippedWithoutBlocking) {
  ASSERT_EQ(::mkfifo(inFolder("pipe.dat").c_str(), 0600), 0);
  fs::create_directory(inFolder("folder.dat"));
  fs::create_symlink("/dev/zero", inFolder("device.dat"));
  fs::create_symlink("/tmp/nowhere", inFolder("dangling.dat"));
  pass({});
  EXPECT_THAT(server_.requests(), IsEmpty());
  EXPECT_EQ(left().size(), 4u);
}

TEST_F(UploadPass, FileBeyondLimitIsKeptAndNotRead) {
  write(inFolder("large.dat"), "");
  fs::resize_file(inFolder("large.dat"), (std::uintmax_t{256} << 20) + 1);
  pass({});
  EXPECT_THAT(server_.requests(), IsEmpty());
  EXPECT_THAT(left(), ElementsAre("large.dat"));
}

TEST_F(UploadPass, FileOfLimitSizeIsReadCompletely) {
  write(inFolder("large.dat"), "");
  fs::resize_file(inFolder("large.dat"), std::uintmax_t{256} << 20);
  const auto contents = contentsOfFile(inFolder("large.dat"));
  ASSERT_TRUE(contents);
  EXPECT_EQ(contents->size(), std::size_t{256} << 20);
}

TEST_F(UploadPass, FileThatShrankDuringUploadIsDeleted) {
  server_.judgeUploads([](const ServedRequest&) {
    fs::resize_file(inFolder(kYesterday), 3);
    return Reply{};
  });
  pass({kYesterday});
  EXPECT_TRUE(left().empty());
}

TEST_F(UploadPass, FileRemovedAfterListingIsSkipped) {
  server_.judgeUploads([](const ServedRequest&) {
    for (const char* name : {"a.dat", "b.dat", "c.dat"}) fs::remove(inFolder(name));
    return Reply{};
  });
  pass({"a.dat", "b.dat", "c.dat"});
  EXPECT_EQ(server_.requests().size(), 1u);
}

TEST_F(UploadPass, ReadOnlyFolderKeepsSentFile) {
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
    if (!test_support::becomeNobody()) return test_support::kUnavailable;
    if (::access(inFolder(kYesterday).c_str(), R_OK) == 0) return 100;
    return delegate_.TvlDataFileCheck() ? 0 : 1;
  });
  if (wasUnavailable(finished)) GTEST_SKIP() << "cannot change to another user";
  EXPECT_EQ(finished.status, test_support::ExitStatus{.code = 0});
  EXPECT_THAT(server_.requests(), IsEmpty());
  EXPECT_THAT(left(), ElementsAre(kYesterday));
}

long residentPages() {
  long size = 0, resident = 0;
  std::ifstream("/proc/self/statm") >> size >> resident;
  return resident;
}

TEST_F(UploadPass, TenThousandFilesAreSentWithoutLeak) {
  // The server is a separate process, so that its memory does not count.
  test_support::ChildProcess server;
  test_support::ChildOptions quiet;
  quiet.output = test_support::Redirection::null();
  fs::create_directories("/tmp/served");
  ASSERT_TRUE(
      server.start({TOVALIN_PRODUCTSERVER, "--port", "0", "--port-file", "/tmp/port", "/tmp/served"}, quiet));
  ASSERT_TRUE(test_support::waitUntil([] { return fs::exists("/tmp/port"); }));
  record_parts::setServers("http://127.0.0.1:" + std::to_string(std::stoi(contentsOf("/tmp/port"))),
                           kClosedServer);
  const auto passOver = [this](int files) {
    for (int i = 0; i < files; ++i) write(inFolder(std::to_string(i) + ".dat"), std::string(64, 'b'));
    errorsOf([this] { delegate_.TvlDataFileCheck(); });
    EXPECT_THAT(left(), IsEmpty());
  };
  passOver(1000);
  const long before = residentPages();
  const int descriptors = test_support::openDescriptors();
  passOver(10'000);
  EXPECT_EQ(test_support::openDescriptors(), descriptors);
  if (test_support::isAddressSanitized) GTEST_SKIP() << test_support::memoryIsTheSanitizers;
  // Allows for the list of names.
  EXPECT_LE(residentPages(), before + 512);
}

}  // namespace
}  // namespace settings_test
