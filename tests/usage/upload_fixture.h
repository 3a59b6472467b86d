#pragma once

#include <string>
#include <vector>

#include "app/nimbatrayAppDelegate.h"
#include "platform/status_item.h"
#include "tests/harness/servers/product_server_double.h"
#include "tests/usage/record_fixture.h"
#include "tests/usage/server_parts.h"

namespace settings_test {

using test_support::ProductServerDouble;
using Reply = ProductServerDouble::Reply;

inline constexpr const char* kYesterday = "Tovalin_2024_03_06.dat";
inline constexpr const char* kTodaysName = "Tovalin_2024_03_07.dat";
// An origin that refuses connections (nothing listens on port 1).
inline constexpr const char* kClosedServer = "http://127.0.0.1:1";

inline std::string inFolder(const std::string& name) {
  return std::string(kFolder) + "/" + name;
}

// Runs upload passes on 7 March 2024 with a server of its own.
class UploadPass : public testing::Test, protected RecordedLog {
 protected:
  void SetUp() override {
    setUpRecords();
    ASSERT_TRUE(log_.valid());
    record_parts::setServers(server_.origin(), kClosedServer);
    delegate_.dataUploadURL = 1;
  }
  void TearDown() override { removeUserFiles(); }

  // Returns the names of the remaining files except the settings files and the lock file.
  [[nodiscard]] static std::vector<std::string> left() {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(kFolder)) {
      const fs::path kind = entry.path().extension();
      if (kind != ".txt" && kind != ".lock") names.push_back(entry.path().filename());
    }
    return names;
  }

  // Creates these files and makes one upload pass. Returns its output on standard error.
  std::string pass(const std::vector<std::string>& names) {
    for (const std::string& name : names) write(inFolder(name), "bytes of " + name);
    return errorsOf([this] { EXPECT_TRUE(delegate_.TvlDataFileCheck()); });
  }

  ProductServerDouble server_;
  nimbatrayAppDelegate delegate_;
};

}  // namespace settings_test
