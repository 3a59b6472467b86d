#pragma once

#include <gtest/gtest.h>
#include <httplib.h>

#include <optional>
#include <string>
#include <vector>

#include "tests/harness/processes/child_process.h"

namespace tools_test {

constexpr const char* kFolder = "/tmp/served";
constexpr const char* kUploads = "/tmp/uploads";
constexpr const char* kUploadPath = "/product/nimba/userlog/postdata.php";

// Runs the product server on a folder of its own, next to files that it must not serve.
class ProductServer : public testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  static void write(const std::string& path, const std::string& text);

  // Restarts the server with `options`.
  void start(const std::string& folder, const std::vector<std::string>& options = {});

  // Returns the status of the answer to a GET, or -1 without an answer.
  int statusOf(const std::string& path);
  std::string bodyOf(const std::string& path);
  std::string typeOf(const std::string& name);  // Content-Type of a file `name`

  // Sets a fault through the control path and consumes its log line.
  void setFault(const std::string& path, const std::string& name);

  // Returns the log lines up to and including one that contains `text`, or up to the timeout.
  std::vector<std::string> linesUpTo(const std::string& text);

  test_support::ChildProcess server_;
  std::optional<httplib::Client> client_;
  int port_ = 0;
};

}  // namespace tools_test
