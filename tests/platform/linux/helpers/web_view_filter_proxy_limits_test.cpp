#include <pthread.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>

#include <chrono>
#include <system_error>
#include <thread>
#include <vector>

#include "tests/harness/processes/wait_until.h"
#include "tests/platform/linux/helpers/filter_proxy_fixture.h"

namespace helpers {
namespace {

TEST_F(FilterProxyTest, ConnectionsBeyondLimitAreClosed) {
  const EchoServer server("127.0.0.1", 0, "origin");
  proxy_->setOrigin(Endpoint{"127.0.0.1", server.port()});
  std::vector<FileDescriptor> silent;
  for (int i = 0; i < 64; ++i) silent.push_back(connectedTo("127.0.0.1", port()));
  const FileDescriptor extra = connectedTo("127.0.0.1", port());
  EXPECT_EQ(readSome(extra, 1), "");
  silent.clear();
  EXPECT_TRUE(
      test_support::waitUntil([&] { return toAddress("127.0.0.1", server.port()).reply == kConnected; }));
}

// Connections of another user, for the lifetime of the object.
class OtherUser {
 public:
  OtherUser(int port, int count) {
    std::thread([&] {
      // The raw system call changes the user of this thread only; the C library's setresuid() changes all
      // threads.
      isAnother_ = ::syscall(SYS_setresuid, kOtherUser, kOtherUser, kOtherUser) == 0;
      for (int i = 0; i < count; ++i) sockets_.push_back(connectedTo("127.0.0.1", port));
    }).join();
  }
  [[nodiscard]] bool isAnother() const {
    struct stat status {};
    return isAnother_ && ::fstat(sockets_.front().get(), &status) == 0 && status.st_uid == kOtherUser;
  }
  [[nodiscard]] const FileDescriptor& last() const { return sockets_.back(); }

 private:
  static constexpr uid_t kOtherUser = 65534;
  bool isAnother_ = false;
  std::vector<FileDescriptor> sockets_;
};

TEST_F(FilterProxyTest, ConnectionsOfAnotherUserDoNotCount) {
  const EchoServer server("127.0.0.1", 0, "origin");
  proxy_->setOrigin(Endpoint{"127.0.0.1", server.port()});
  const OtherUser otherUser(port(), 100);
  if (!otherUser.isAnother()) GTEST_SKIP() << "cannot change to another user";
  EXPECT_EQ(toAddress("127.0.0.1", server.port()).reply, kConnected);
  EXPECT_EQ(readSome(otherUser.last(), 1), "");
}

std::chrono::microseconds processorTime() {
  rusage usage{};
  ::getrusage(RUSAGE_SELF, &usage);
  return std::chrono::seconds(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
         std::chrono::microseconds(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec);
}

// accept4() fails with EMFILE, and poll() reports the pending connection again immediately.
TEST_F(FilterProxyTest, OutOfDescriptorsDelaysClientWithoutSpinning) {
  const EchoServer server("127.0.0.1", 0, "origin");
  proxy_->setOrigin(Endpoint{"127.0.0.1", server.port()});
  const FileDescriptor late(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  constexpr timeval second{1, 0};
  ::setsockopt(late.get(), SOL_SOCKET, SO_RCVTIMEO, &second, sizeof second);
  rlimit before{};
  ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
  const rlimit none{3, before.rlim_max};
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
  const sockaddr_in target = addressOf("127.0.0.1", port());
  EXPECT_EQ(::connect(late.get(), reinterpret_cast<const sockaddr*>(&target), sizeof target), 0);
  EXPECT_TRUE(sendAll(late, {"\x05\x01\x02", 3}));
  const auto start = processorTime();
  char byte = 0;
  EXPECT_EQ(::recv(late.get(), &byte, 1, 0), -1);
  EXPECT_LT(processorTime() - start, std::chrono::milliseconds(300));
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &before), 0);
  constexpr timeval patience{60, 0};
  ::setsockopt(late.get(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
  EXPECT_EQ(readSome(late, 2), "\x05\x02");
}

TEST_F(FilterProxyTest, FailedThreadCreationClosesConnection) {
  const EchoServer server("127.0.0.1", 0, "origin");
  proxy_->setOrigin(Endpoint{"127.0.0.1", server.port()});
  pthread_attr_t before;
  pthread_attr_t endless;
  ASSERT_EQ(::pthread_getattr_default_np(&before), 0);
  ASSERT_EQ(::pthread_getattr_default_np(&endless), 0);
  ASSERT_EQ(::pthread_attr_setstacksize(&endless, std::size_t{1} << 50U), 0);
  ASSERT_EQ(::pthread_setattr_default_np(&endless), 0);
  EXPECT_THROW(std::thread([] {}).join(), std::system_error);
  const FileDescriptor client = connectedTo("127.0.0.1", port());
  EXPECT_EQ(readSome(client, 1), "");
  EXPECT_EQ(FilterProxy().address(), "");
  ASSERT_EQ(::pthread_setattr_default_np(&before), 0);
  EXPECT_EQ(toAddress("127.0.0.1", server.port()).reply, kConnected);
}

}  // namespace
}  // namespace helpers
