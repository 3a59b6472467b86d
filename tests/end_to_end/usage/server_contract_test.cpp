#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <mutex>

#include "tests/end_to_end/support/support_fixture.h"
#include "tests/harness/processes/file_contents.h"
#include "tests/harness/servers/document_examples.h"
#include "tests/harness/servers/raw_http_server.h"
#include "tools/fleet/requests.h"

namespace {

namespace fs = std::filesystem;
using test_support::httpReply;
using test_support::RawConnection;
using test_support::RawHttpServer;
using test_support::waitUntil;
using testing::Contains;

std::string example(const std::string& name) {
  return test_support::exampleIn(TOVALIN_SERVER_DOCUMENT, name);
}

std::string replaced(std::string text, const std::string& what, const std::string& by) {
  for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += by.size())
    text.replace(at, what.size(), by);
  return text;
}

// Returns an example request of the document as sent to that server.
std::string onTheLine(const std::string& name, const std::string& host) {
  return replaced(replaced(example(name), "\n", "\r\n"), "www.tovalin.example", host);
}

// Records its input verbatim and sends the same reply to each request.
class Listener {
 public:
  explicit Listener(std::string reply)
      : server_([this, reply = std::move(reply)](RawConnection& connection) {
          const std::string request = connection.readRequest();
          {
            const std::lock_guard lock(mutex_);
            requests_.push_back(request);
          }
          connection.send(reply);
        }) {}

  [[nodiscard]] std::string host() const { return "127.0.0.1:" + std::to_string(server_.port()); }
  [[nodiscard]] std::vector<std::string> requests() const {
    const std::lock_guard lock(mutex_);
    return requests_;
  }

 private:
  mutable std::mutex mutex_;
  std::vector<std::string> requests_;
  RawHttpServer server_;
};

class ServerContract : public InstalledAgentTest {
 protected:
  static constexpr const char* past = "/tmp/home/.local/share/Tovalin/Tovalin_2000_01_01.dat";

  static void writePastDay(const std::string& bytes) {
    fs::create_directories(fs::path(past).parent_path());
    std::ofstream(past, std::ios::binary) << bytes;
  }
  [[nodiscard]] static bool pastDayIsSent() {
    return waitUntil([] { return !fs::exists(past); });
  }
};

TEST_F(ServerContract, LaunchRequestsMatchDocument) {
  Listener listener(httpReply("stored"));
  setServers("http://" + listener.host());
  std::string file(808, '\0');
  for (std::size_t i = 0; i < file.size(); ++i) file[i] = static_cast<char>(i);
  writePastDay(file);
  launchAgent();
  ASSERT_TRUE(pastDayIsSent());

  const std::string upload = replaced(onTheLine("upload", listener.host()), "(the bytes of the file)", file);
  EXPECT_THAT(listener.requests(), testing::ElementsAre(onTheLine("fetch", listener.host()), upload));
  // The tool that models the load assumes this request.
  EXPECT_EQ(fleet::versionFetchHead(listener.host()), onTheLine("fetch", listener.host()));
  EXPECT_EQ(fleet::uploadSize(listener.host(), file.size()), upload.size());
  EXPECT_EQ(fleet::uploadHead(listener.host(), file.size() + 241),
            upload.substr(0, upload.find("\r\n\r\n") + 4));
}

TEST_F(ServerContract, LaunchBeaconsMatchDocument) {
  launchAgent();
  std::istringstream lines(example("launch beacons"));
  int count = 0;
  for (std::string line; std::getline(lines, line); ++count)
    EXPECT_TRUE(waitForBeacon(line.substr(line.find('?')))) << line;
  EXPECT_EQ(count, 2);
}

// The tolerance covers the name of the server and the version of the engine.
TEST_F(ServerContract, BeaconHasSizeAssumedByLoadTool) {
  Listener listener(httpReply("<html></html>", "Content-Type: text/html\r\n"));
  setServers("http://" + listener.host());
  installWebView();
  launchAgent();
  const auto beacon = [&] {
    const auto requests = listener.requests();
    const auto found = std::ranges::find_if(requests, [](const std::string& request) {
      return request.starts_with("GET /product/nimba/binary/GATovalin.html?");
    });
    return found == requests.end() ? std::string() : *found;
  };
  ASSERT_TRUE(waitUntil([&] { return !beacon().empty(); }));
  EXPECT_NEAR(static_cast<double>(beacon().size()), static_cast<double>(fleet::measuredBeaconSize), 100)
      << beacon();
}

TEST_F(ServerContract, ErrorPageDeletesFile) {
  Listener listener(
      httpReply("<html>413 Request Entity Too Large</html>", {}, "413 Request Entity Too Large"));
  setServers("http://" + listener.host());
  writePastDay("TVLD");
  launchAgent();
  EXPECT_TRUE(pastDayIsSent());
}

TEST_F(ServerContract, InvalidUtf8ByteKeepsFile) {
  Listener listener(httpReply("\xff"));
  setServers("http://" + listener.host());
  writePastDay("TVLD");
  launchAgent();
  ASSERT_TRUE(waitUntil([&] { return listener.requests().size() == 2; }));
  terminateAgent();
  EXPECT_TRUE(fs::exists(past));
}

// The agent with the example lists of the document.
class ServerLists : public SupportTest {
 protected:
  void SetUp() override {
    SupportTest::SetUp();
    if (HasFatalFailure()) return;
    for (const char* name : {"version list", "notice", "banner list"}) ASSERT_NE(example(name), "") << name;
    server_->put(versionFile, example("version list"));
    server_->put(noticeFile, example("notice"));
    server_->put(bannerListFile, example("banner list"));
    server_->put(bannerFolder + std::string("first_steps.png"), pictureFile(red));
  }
};

TEST_F(ServerLists, OpeningFetchesMatchDocumentInOrder) {
  launchAndOpen();
  EXPECT_THAT(takeFetches(), testing::ElementsAre(versionFile, versionFile, bannerListFile, noticeFile,
                                                  bannerFolder + std::string("first_steps.png")));
}

TEST_F(ServerLists, ExampleUpdateIsOffered) {
  launchAgent();
  const auto run = timeline_.waitFor("run: open");
  ASSERT_TRUE(run);
  EXPECT_THAT(run->arguments, Contains("New version available"));
}

TEST_F(ServerLists, ExampleLinksAreOpened) {
  launchAndOpen();
  clickAt(firstLink);
  EXPECT_TRUE(waitForText("run: open https://www.tovalin.example/news#version-1-2"));
  clickAt(secondLink);
  EXPECT_TRUE(waitForText("run: open https://www.tovalin.example/news#wishes"));
  clickAt(bannerMiddle);
  EXPECT_TRUE(waitForText("run: open https://www.tovalin.example/news#first-steps"));
}

}  // namespace
