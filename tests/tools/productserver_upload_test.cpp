#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/harness/processes/file_contents.h"
#include "tests/tools/productserver_fixture.h"
#include "tests/tools/raw_client.h"
#include "tests/tools/tool_process.h"

namespace {

namespace fs = std::filesystem;

using test_support::contentsOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using tools_test::kFolder;
using tools_test::kUploadPath;
using tools_test::kUploads;

constexpr const char* kBoundary = "---------------------------14737809831466499882746641449";

// Returns the multipart form of an upload of the agent.
std::string formOf(const std::string& data) {
  const std::string mark = std::string("\r\n--") + kBoundary;
  return mark + "\r\nContent-Disposition: form-data; name=\"userdata\"; filename=\"Tovalin.dat\"\r\n" +
         "Content-Type: application/octet-stream\r\n\r\n" + data + mark + "--\r\n";
}

class Uploads : public tools_test::ProductServer {
 protected:
  void SetUp() override {
    ProductServer::SetUp();
    start(kFolder, {"--uploads", kUploads});
  }

  httplib::Result post(const std::string& body, const std::string& boundary = kBoundary) {
    return client_->Post(kUploadPath, body, "multipart/form-data; boundary=" + boundary);
  }

  static std::string storedFile(const std::string& name) {
    return contentsOf(std::string(kUploads) + "/" + name);
  }
  static bool nothingKept() { return fs::is_empty(kUploads); }
};

TEST_F(Uploads, FormOfAgentIsStoredVerbatim) {
  std::string data(300'000, '\0');
  for (std::size_t i = 0; i < data.size(); ++i) data[i] = static_cast<char>(i * 7 + i / 251);
  const httplib::Result result = post(formOf(data));
  ASSERT_TRUE(result);
  EXPECT_EQ(result->status, 200);
  EXPECT_EQ(result->body, "The server took \"Tovalin.dat\", 300000 bytes.\n");
  EXPECT_EQ(storedFile("0001_Tovalin.dat"), data);
}

TEST_F(Uploads, UploadIsLogged) {
  ASSERT_TRUE(post(formOf("12345")));
  EXPECT_THAT(
      linesUpTo("POST"),
      ElementsAre("upload /product/nimba/userlog/postdata.php  field \"userdata\"  file \"Tovalin.dat\"  5 "
                  "bytes as 0001_Tovalin.dat",
                  EndsWith("POST /product/nimba/userlog/postdata.php  200  40 bytes")));
}

TEST_F(Uploads, UploadsOfOneConnectionAreNumberedInOrder) {
  client_->set_keep_alive(true);
  for (const char* const data : {"one", "", "three"}) ASSERT_TRUE(post(formOf(data)));
  EXPECT_EQ(storedFile("0001_Tovalin.dat"), "one");
  EXPECT_TRUE(fs::exists(std::string(kUploads) + "/0002_Tovalin.dat"));
  EXPECT_EQ(storedFile("0002_Tovalin.dat"), "");
  EXPECT_EQ(storedFile("0003_Tovalin.dat"), "three");
}

TEST_F(Uploads, FilesOfFormAreStoredAndFieldsAreNot) {
  const std::string part = "--X\r\nContent-Disposition: form-data; name=";
  ASSERT_TRUE(post(part + "\"n\"\r\n\r\nfield\r\n" + part + "\"a\"; filename=\"x\"\r\n\r\n1\r\n" + part +
                       "\"b\"; filename=\"../y z\"\r\n\r\n22\r\n--X--\r\n",
                   "X"));
  EXPECT_EQ(storedFile("0001_x"), "1");
  EXPECT_EQ(storedFile("0002_y_z"), "22");
  EXPECT_EQ(std::distance(fs::directory_iterator(kUploads), {}), 2);
}

TEST_F(Uploads, MalformedFormIsRefusedWithReasonAndNotStored) {
  const std::string good = formOf("d");
  const httplib::Result result = post(good.substr(0, good.size() - 10));
  ASSERT_TRUE(result);
  EXPECT_EQ(result->status, 400);
  EXPECT_EQ(result->body, "The server refused the upload: the closing delimiter is missing.\n");
  EXPECT_TRUE(nothingKept());
  EXPECT_THAT(linesUpTo("POST"),
              ElementsAre(HasSubstr("refused: the closing delimiter is missing"), HasSubstr("400")));
}

TEST_F(Uploads, OtherContentTypeIsRefused) {
  const httplib::Result result = client_->Post(kUploadPath, formOf("d"), "application/octet-stream");
  ASSERT_TRUE(result);
  EXPECT_EQ(result->status, 400);
  EXPECT_TRUE(nothingKept());
}

TEST_F(Uploads, FormWithoutFileIsRefused) {
  const httplib::Result result =
      post("--X\r\nContent-Disposition: form-data; name=\"n\"\r\n\r\nfield\r\n--X--\r\n", "X");
  ASSERT_TRUE(result);
  EXPECT_EQ(result->status, 400);
  EXPECT_TRUE(nothingKept());
}

TEST_F(Uploads, IncompleteUploadIsLoggedAndNotStored) {
  {
    const tools_test::RawClient client(port_);
    ASSERT_TRUE(client.send(std::string("POST ") + kUploadPath + " HTTP/1.1\r\nHost: x\r\nContent-Type: " +
                            "multipart/form-data; boundary=" + kBoundary +
                            "\r\nContent-Length: 5000\r\n\r\n" + formOf("d").substr(0, 100)));
  }
  EXPECT_THAT(server_.readLine().value_or(""), HasSubstr("refused: aborted after 100 bytes"));
  EXPECT_TRUE(nothingKept());
}

TEST_F(Uploads, FailedWriteAnswersWith500) {
  fs::remove_all(kUploads);
  const httplib::Result result = post(formOf("d"));
  ASSERT_TRUE(result);
  EXPECT_EQ(result->status, 500);
}

TEST_F(Uploads, WithoutFolderUploadIsAcceptedAndLogged) {
  start(kFolder);
  const httplib::Result result = post(formOf("12345"));
  ASSERT_TRUE(result);
  EXPECT_EQ(result->status, 200);
  EXPECT_THAT(server_.readLine().value_or(""), EndsWith("file \"Tovalin.dat\"  5 bytes"));
}

TEST_F(Uploads, UploadIsStoredDespiteDroppedAnswer) {
  setFault(kUploadPath, "drop*1");
  EXPECT_FALSE(post(formOf("d")));
  EXPECT_EQ(storedFile("0001_Tovalin.dat"), "d");
}

TEST_F(Uploads, ResetUploadIsNotStored) {
  setFault(kUploadPath, "reset-within-body*1");
  EXPECT_FALSE(post(formOf("d")));
  EXPECT_THAT(server_.readLine().value_or(""), EndsWith("fault reset-within-body"));
  EXPECT_TRUE(nothingKept());
}

TEST_F(Uploads, InvalidUploadFolderIsRejected) {
  const auto finished = tools_test::runToEnd(
      {tools_test::toolPath("productserver"), "--port", "0", "--uploads", "/tmp/served/a.xml", kFolder});
  EXPECT_EQ(finished.status, test_support::ExitStatus{.code = 2});
  EXPECT_EQ(finished.error, "productserver: cannot create the folder /tmp/served/a.xml\n");
}

}  // namespace
