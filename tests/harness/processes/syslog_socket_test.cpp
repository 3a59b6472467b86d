#include "tests/harness/processes/syslog_socket.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <syslog.h>
#include <unistd.h>

#include <fstream>

#include "tests/harness/processes/child_process.h"

namespace test_support {
namespace {

using namespace std::chrono_literals;

// Sends each message from a new process, because syslog(3) keeps its connection until the process exits.
void log(const std::string& priority, const std::string& text) {
  ChildProcess logger;
  ASSERT_TRUE(logger.start({"logger", "--priority", priority, "--tag", "TagOfTest", "--", text}));
  ASSERT_EQ(logger.wait(), ExitStatus{.code = 0});
}

TEST(SyslogMessage, EntryIsParsed) {
  EXPECT_EQ(
      parseSyslogMessage("<11>Jan  2 03:04:05 Name[123]: the text: more"),
      (SyslogMessage{.priority = LOG_ERR, .facility = LOG_USER, .ident = "Name", .text = "the text: more"}));
}

TEST(SyslogMessage, PidIsOptional) {
  EXPECT_EQ(parseSyslogMessage("<134>Dec 12 03:04:05 Name: "),
            (SyslogMessage{.priority = LOG_INFO, .facility = LOG_LOCAL0, .ident = "Name", .text = ""}));
}

TEST(SyslogMessage, MalformedEntryIsRejected) {
  EXPECT_EQ(parseSyslogMessage(""), std::nullopt);
  EXPECT_EQ(parseSyslogMessage("<"), std::nullopt);
  EXPECT_EQ(parseSyslogMessage("<>Dec 12 03:04:05 Name: text"), std::nullopt);
  EXPECT_EQ(parseSyslogMessage("<1x>Dec 12 03:04:05 Name: text"), std::nullopt);
  EXPECT_EQ(parseSyslogMessage("<11>short"), std::nullopt);
  EXPECT_EQ(parseSyslogMessage("<11>Dec 12 03:04:05 no colon"), std::nullopt);
}

TEST(SyslogSocket, ReturnsMessagesSentBeforeCall) {
  SyslogSocket socket;
  ASSERT_TRUE(socket.valid());
  log("user.err", "first");
  log("daemon.info", "second");
  EXPECT_THAT(
      socket.messages(),
      testing::ElementsAre(
          SyslogMessage{.priority = LOG_ERR, .facility = LOG_USER, .ident = "TagOfTest", .text = "first"},
          SyslogMessage{
              .priority = LOG_INFO, .facility = LOG_DAEMON, .ident = "TagOfTest", .text = "second"}));
}

TEST(SyslogSocket, ReceivesMoreThanSocketBuffer) {
  SyslogSocket socket;
  ChildProcess sender;
  ASSERT_TRUE(sender.start({"sh", "-c", "seq 20000 | logger --tag TagOfTest"}));
  ASSERT_EQ(sender.wait(), ExitStatus{.code = 0});
  const std::vector<SyslogMessage> messages = socket.messages();
  ASSERT_EQ(messages.size(), 20000U);
  EXPECT_EQ(messages.back().text, "20000");
}

TEST(SyslogSocket, WaitForReturnsLaterMessage) {
  SyslogSocket socket;
  ChildProcess sender;
  ASSERT_TRUE(
      sender.start({"sh", "-c", "read line; logger not yet; logger now"}, {.input = Redirection::pipe()}));
  ASSERT_TRUE(sender.writeLine("go"));
  const std::optional<SyslogMessage> message = socket.waitFor("now");
  ASSERT_TRUE(message);
  EXPECT_EQ(message->priority, LOG_NOTICE);
}

TEST(SyslogSocket, WaitForEndsAtTimeout) {
  SyslogSocket socket;
  log("user.err", "something else");
  const auto before = std::chrono::steady_clock::now();
  EXPECT_EQ(socket.waitFor("something", 50ms), std::nullopt);
  EXPECT_GE(std::chrono::steady_clock::now() - before, 50ms);
}

TEST(SyslogSocket, ClearDiscardsMessages) {
  SyslogSocket socket;
  log("user.err", "before");
  socket.clear();
  log("user.err", "after");
  ASSERT_EQ(socket.messages().size(), 1U);
  EXPECT_EQ(socket.messages().front().text, "after");
}

TEST(SyslogSocket, MalformedEntryIsKeptVerbatim) {
  SyslogSocket socket;
  const FileDescriptor sender(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
  const sockaddr_un address{AF_UNIX, "/dev/log"};
  ASSERT_EQ(::sendto(sender.get(), "odd", 3, 0, reinterpret_cast<const sockaddr*>(&address), sizeof address),
            3);
  EXPECT_THAT(socket.messages(), testing::ElementsAre(SyslogMessage{.priority = -1, .text = "odd"}));
}

TEST(SyslogSocket, ExistingLogIsLeftAlone) {
  std::ofstream("/tmp/taken") << "kept";
  {
    SyslogSocket socket("/tmp/taken");
    EXPECT_FALSE(socket.valid());
    EXPECT_TRUE(socket.messages().empty());
  }
  EXPECT_EQ(::access("/tmp/taken", F_OK), 0);
}

TEST(SyslogSocket, SocketIsRemovedByDestructor) {
  { const SyslogSocket socket; }
  EXPECT_NE(::access("/dev/log", F_OK), 0);
}

}  // namespace
}  // namespace test_support
