#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <syslog.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "tests/harness/processes/file_contents.h"
#include "tests/harness/processes/forked_call.h"
#include "tests/harness/processes/stream_capture.h"
#include "tests/harness/processes/syslog_socket.h"

namespace settings_test {

namespace fs = std::filesystem;
using test_support::contentsOf;
using testing::IsEmpty;
using testing::StartsWith;

inline constexpr const char* kSupport = "/tmp/support";
inline constexpr const char* kFolder = "/tmp/support/Tovalin";

inline void write(const std::string& path, const std::string& text) {
  std::ofstream(path, std::ios::binary | std::ios::trunc) << text;
}

// Runs `call` and returns its output on standard error.
template <typename Call>
std::string errorsOf(Call call) {
  test_support::StreamCapture errors(STDERR_FILENO);
  call();
  return errors.end();
}

// Creates an empty XDG_DATA_HOME with the product's folder.
inline void makeUserFiles() {
  fs::remove_all(kSupport);
  fs::create_directories(kFolder);
  ::setenv("XDG_DATA_HOME", kSupport, 1);
  ::setenv("HOME", "/tmp/home", 1);
}
inline void removeUserFiles() {
  fs::remove_all(kSupport);
}

// Receives the syslog messages of the process.
class RecordedLog {
 public:
  static auto error(const std::string& text) {
    using test_support::SyslogMessage;
    return testing::AllOf(testing::Field("priority", &SyslogMessage::priority, LOG_ERR),
                          testing::Field("text", &SyslogMessage::text, text));
  }

  test_support::SyslogSocket log_;
};

class Settings : public testing::Test {
 protected:
  void SetUp() override { makeUserFiles(); }
  void TearDown() override { removeUserFiles(); }
};

class LoggedSettings : public testing::Test, protected RecordedLog {
 protected:
  void SetUp() override {
    makeUserFiles();
    ASSERT_TRUE(log_.valid());
  }
  void TearDown() override { removeUserFiles(); }
};

}  // namespace settings_test
