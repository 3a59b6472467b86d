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

// Serves a folder of its own beside which lie files that must not be had.
class ProductServer : public testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  static void write(const std::string& path, const std::string& text);

  // Starts the server anew, with these options.
  void start(const std::string& folder, const std::vector<std::string>& options = {});

  // The status of the answer to a GET; -1 when none came.
  int statusOf(const std::string& path);
  std::string bodyOf(const std::string& path);
  std::string typeOf(const std::string& name);  // of a file of this name

  // Sets a fault while the server runs, and takes in the line that tells of it.
  void setFault(const std::string& path, const std::string& name);

  // The lines of the server up to one that holds the text, or up to where no more came.
  std::vector<std::string> linesUpTo(const std::string& text);

  test_support::ChildProcess server_;
  std::optional<httplib::Client> client_;
  int port_ = 0;
};

}  // namespace tools_test
