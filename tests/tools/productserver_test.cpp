#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <httplib.h>
#include <signal.h>

#include <filesystem>
#include <sstream>

#include "tests/harness/processes/file_contents.h"
#include "tests/tools/productserver_fixture.h"
#include "tests/tools/tool_process.h"

namespace {

namespace fs = std::filesystem;

using test_support::ExitStatus;
using testing::HasSubstr;
using testing::MatchesRegex;
using tools_test::kFolder;
using tools_test::ProductServer;
using tools_test::runToEnd;
using tools_test::toolPath;

// Returns the local addresses that listen on `port`, in the hexadecimal form of the kernel's table
// (/proc/net/tcp or tcp6).
std::vector<std::string> listeningAddresses(const std::string& table, int port) {
  constexpr const char* kListening = "0A";
  std::istringstream lines(test_support::contentsOf(table));
  std::vector<std::string> addresses;
  std::string line;
  std::getline(lines, line);
  while (std::getline(lines, line)) {
    std::istringstream fields(line);
    std::string slot, local, remote, state;
    fields >> slot >> local >> remote >> state;
    const std::size_t colon = local.find(':');
    if (state == kListening && std::stoi(local.substr(colon + 1), nullptr, 16) == port) {
      addresses.push_back(local.substr(0, colon));
    }
  }
  return addresses;
}

TEST_F(ProductServer, ServesFileVerbatim) {
  const std::string bytes("\0\r\n\xff", 4);
  write(std::string(kFolder) + "/sub/x.png", bytes);
  const httplib::Result result = client_->Get("/sub/x.png");
  ASSERT_TRUE(result);
  EXPECT_EQ(result->status, 200);
  EXPECT_EQ(result->body, bytes);
}

TEST_F(ProductServer, DecodesPath) {
  write(std::string(kFolder) + "/a b.txt", "x");
  EXPECT_EQ(statusOf("/a%20b.txt"), 200);
}

TEST_F(ProductServer, ContentTypeFollowsExtension) {
  EXPECT_EQ(typeOf("n.xml"), "application/xml");
  EXPECT_EQ(typeOf("n.plist"), "application/x-plist");
  EXPECT_EQ(typeOf("n.html"), "text/html; charset=utf-8");
  EXPECT_EQ(typeOf("n.png"), "image/png");
  EXPECT_EQ(typeOf("xml"), "application/octet-stream");
}

TEST_F(ProductServer, OtherThanFileIsNotFound) {
  EXPECT_EQ(statusOf("/none.xml"), 404);
  EXPECT_EQ(statusOf("/sub"), 404);
  EXPECT_EQ(statusOf("/"), 404);
  EXPECT_EQ(statusOf("/a.xml/"), 404);
  EXPECT_EQ(statusOf("/a.xml%00.png"), 404);
}

TEST_F(ProductServer, PathOutsideFolderIsNotFound) {
  for (const char* const path :
       {"/../secret.txt", "/sub/../../secret.txt", "/%2e%2e/secret.txt", "/..%2fsecret.txt",
        "//tmp/secret.txt", "/../served_not/secret.txt", "/%2Ftmp%2Fsecret.txt"}) {
    EXPECT_EQ(statusOf(path), 404) << path;
    EXPECT_THAT(server_.readLine().value_or(""), HasSubstr(std::string("GET ") + path + "  404"));
  }
}

TEST_F(ProductServer, LinkOutsideFolderIsNotFound) {
  fs::create_symlink("../secret.txt", std::string(kFolder) + "/link.txt");
  fs::create_directory_symlink("/tmp/served_not", std::string(kFolder) + "/folder");
  fs::create_symlink("a.xml", std::string(kFolder) + "/inner.xml");
  EXPECT_EQ(statusOf("/link.txt"), 404);
  EXPECT_EQ(statusOf("/folder/secret.txt"), 404);
  EXPECT_EQ(statusOf("/inner.xml"), 200);
}

TEST_F(ProductServer, LogsOneLinePerRequest) {
  ASSERT_EQ(statusOf("/a.xml?v=1&w=%20"), 200);
  EXPECT_THAT(server_.readLine().value_or(""),
              MatchesRegex("[0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3}  GET /a\\.xml\\?v=1&w=%20  200  5 bytes"));
  ASSERT_TRUE(client_->Head("/a.xml"));
  EXPECT_THAT(server_.readLine().value_or(""), HasSubstr("HEAD /a.xml  200  0 bytes"));
}

TEST_F(ProductServer, PostIsRefusedAndLogged) {
  const httplib::Result result = client_->Post("/a.xml", "x=1", "application/x-www-form-urlencoded");
  ASSERT_TRUE(result);
  EXPECT_EQ(result->status, 404);
  EXPECT_THAT(server_.readLine().value_or(""), HasSubstr("POST /a.xml  404"));
}

TEST_F(ProductServer, ListensOnLoopbackOnly) {
  EXPECT_THAT(listeningAddresses("/proc/net/tcp", port_), testing::ElementsAre("0100007F"));
  EXPECT_THAT(listeningAddresses("/proc/net/tcp6", port_), testing::IsEmpty());
}

TEST_F(ProductServer, UsedPortIsRefused) {
  const auto finished = runToEnd({toolPath("productserver"), "--port", std::to_string(port_), kFolder});
  EXPECT_EQ(finished.status, ExitStatus{.code = 1});
  EXPECT_THAT(finished.error, HasSubstr("cannot listen on port " + std::to_string(port_)));
}

TEST_F(ProductServer, WritesPortFile) {
  test_support::ChildProcess second;
  ASSERT_TRUE(second.start({toolPath("productserver"), "--port", "0", "--port-file", "/tmp/port", kFolder}));
  const std::string line = second.readLine().value_or("");
  EXPECT_EQ(line + "\n", "listening on http://127.0.0.1:" + test_support::contentsOf("/tmp/port"));
  fs::remove("/tmp/port");
}

TEST_F(ProductServer, IdleConnectionDoesNotDelayTermination) {
  client_->set_keep_alive(true);
  ASSERT_EQ(statusOf("/a.xml"), 200);
  server_.terminate();
  EXPECT_EQ(server_.wait(std::chrono::seconds(4)), ExitStatus{.code = 0});
}

TEST_F(ProductServer, SigintExitsWithZero) {
  server_.signal(SIGINT);
  EXPECT_EQ(server_.wait(), ExitStatus{.code = 0});
}

TEST_F(ProductServer, MissingFolderIsRejected) {
  const auto finished = runToEnd({toolPath("productserver"), "/tmp/none"});
  EXPECT_EQ(finished.status, ExitStatus{.code = 2});
  EXPECT_EQ(finished.error, "productserver: no such folder: /tmp/none\n");
}

TEST_F(ProductServer, InvalidPortIsRejected) {
  for (const char* const port : {"65536", "-1", "80x", ""}) {
    EXPECT_EQ(runToEnd({toolPath("productserver"), "--port", port, kFolder}).status, ExitStatus{.code = 2})
        << port;
  }
}

}  // namespace
