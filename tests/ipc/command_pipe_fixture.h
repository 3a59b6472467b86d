#pragma once

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <syslog.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "ipc/command_pipe.h"
#include "tests/harness/processes/file_contents.h"
#include "tests/harness/processes/forked_call.h"
#include "tests/harness/processes/stream_capture.h"
#include "tests/harness/processes/syslog_socket.h"

namespace command_pipe_test {

using test_support::FileDescriptor;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;

inline constexpr const char* kCommandPipe = "/tmp/KMPIPE";

// The result of one message, its standard output and the change in the number of open descriptors.
struct Sent {
  int result = 0;
  std::string output = {};
  int newDescriptors = 0;

  bool operator==(const Sent&) const = default;
};

inline void PrintTo(const Sent& sent, std::ostream* stream) {
  *stream << "result " << sent.result << ", output \"" << sent.output << "\", " << sent.newDescriptors
          << " new descriptors";
}

inline Sent send(const char* message) {
  test_support::StreamCapture output(STDOUT_FILENO);
  const int before = test_support::openDescriptors();
  const int result = sendPipeMsg(message);
  const int after = test_support::openDescriptors();
  return {.result = result, .output = output.end(), .newDescriptors = after - before};
}

inline FileDescriptor openReader() {
  return FileDescriptor(::open(kCommandPipe, O_RDONLY | O_NONBLOCK | O_CLOEXEC));
}

// Returns the unread content of the pipe.
inline std::string readAll(const FileDescriptor& reader) {
  std::string text(1 << 17, '\0');
  const ssize_t count = ::read(reader.get(), text.data(), text.size());
  text.resize(count < 0 ? 0 : static_cast<std::size_t>(count));
  return text;
}

inline std::string fileContents() {
  return test_support::contentsOf(kCommandPipe);
}

// Matches a syslog entry of priority LOG_ERR.
inline auto error(const std::string& text) {
  return testing::AllOf(Field("priority", &test_support::SyslogMessage::priority, LOG_ERR),
                        Field("text", &test_support::SyslogMessage::text, text));
}

// Removes the entry at the path before each case. The process ignores SIGPIPE like the agent.
class CommandPipe : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(log_.valid());
    std::filesystem::remove_all(kCommandPipe);
    ::signal(SIGPIPE, SIG_IGN);
    // Opens the syslog connection beforehand, so that it does not count as a new descriptor.
    ::closelog();
    ::openlog("command_pipe_test", LOG_NDELAY, LOG_USER);
  }
  void TearDown() override {
    ::closelog();
    std::filesystem::remove_all(kCommandPipe);
  }

  static void makePipe(mode_t mode = 0600) { ASSERT_EQ(::mkfifo(kCommandPipe, mode), 0); }
  static void makeFile(const std::string& text) { std::ofstream(kCommandPipe) << text; }

  test_support::SyslogSocket log_;
};

}  // namespace command_pipe_test
