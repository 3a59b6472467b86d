#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <linux/close_range.h>
#include <sched.h>
#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <latch>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "platform/shell.h"
#include "tests/ipc/forked_call.h"
#include "tests/platform/url_request_support.h"
#include "tests/support/wait_until.h"

namespace {

using namespace std::chrono_literals;
using platform::sendSynchronousRequest;
using test_support::ExitStatus;
using test_support::httpReply;
using test_support::openDescriptors;
using test_support::outcomeOf;
using test_support::RawConnection;
using test_support::RawHttpServer;
using test_support::requestFor;
using testing::Optional;

TEST(UrlRequestProcess, NoDescriptorStaysOpen) {
  const RawHttpServer server(RawHttpServer::answer("HTTP/1.1 200 OK\r\n\r\ntext"));
  std::ignore = sendSynchronousRequest(requestFor(server.url()));
  const int before = openDescriptors();
  for (int i = 0; i < 50; ++i)
    EXPECT_THAT(sendSynchronousRequest(requestFor(server.url())), Optional(std::string("text")));
  // The server closes its ends on its own time.
  EXPECT_TRUE(test_support::waitUntil([&] { return openDescriptors() <= before; }))
      << before << ' ' << openDescriptors();
}

// Runs `during` while a request waits for its reply.
template <typename During>
std::optional<std::string> replyWith(During during) {
  const RawHttpServer server([&](RawConnection& connection) {
    connection.readHead();
    during();
    connection.send(httpReply("text"));
  });
  return sendSynchronousRequest(requestFor("http://localhost:" + std::to_string(server.port()) + "/"));
}

TEST(UrlRequestProcess, ProgramStartedMeanwhileGetsNoDescriptor) {
  const auto finished = test_support::runForked([] {
    // Whoever started this program may have left descriptors of its own to it.
    ::close_range(STDERR_FILENO + 1, ~0U, CLOSE_RANGE_CLOEXEC);
    int status = -1;
    const auto reply = replyWith([&] { status = platform::system("ls /proc/$$/fd; true"); });
    return reply ? status : -1;
  });
  EXPECT_EQ(finished.status, ExitStatus{.code = 0});
  EXPECT_EQ(finished.output, "0\n1\n2\n");
}

TEST(UrlRequestProcess, DescriptorsOfTheTransferAreItsOwn) {
  int before = 0;
  int during = 0;
  const RawHttpServer server([&](RawConnection& connection) {
    connection.readHead();
    during = openDescriptors();
    connection.send(httpReply("text"));
  });
  before = openDescriptors();
  EXPECT_THAT(sendSynchronousRequest(requestFor(server.url())), Optional(std::string("text")));
  EXPECT_EQ(during, before + 1) << "the server's end of the connection";
}

TEST(UrlRequestProcess, DescriptorsOfTheCallerStayOpen) {
  const test_support::FileDescriptor kept(::dup(STDERR_FILENO));
  EXPECT_TRUE(replyWith([] {}));
  EXPECT_GE(::fcntl(kept.get(), F_GETFD), 0);
}

TEST(UrlRequestProcess, ThreadsSendBesideEachOther) {
  constexpr int kThreads = 8;
  std::latch together(kThreads);
  const RawHttpServer server([&](RawConnection& connection) {
    const std::string head = connection.readHead();
    // None is answered before all are there.
    together.arrive_and_wait();
    connection.send(httpReply(head.substr(0, head.find(" HTTP"))));
  });
  std::vector<std::optional<std::string>> replies(kThreads);
  {
    std::vector<std::jthread> threads;
    threads.reserve(kThreads);
    for (int i = 0; i < kThreads; ++i)
      threads.emplace_back([&, i] {
        replies[static_cast<std::size_t>(i)] =
            sendSynchronousRequest(requestFor(server.url("/" + std::to_string(i))));
      });
  }
  for (int i = 0; i < kThreads; ++i)
    EXPECT_THAT(replies[static_cast<std::size_t>(i)], Optional("GET /" + std::to_string(i)));
}

TEST(UrlRequestProcess, WaitingCostsNoTime) {
  const auto used = [] {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    const auto time = [](const timeval& value) { return value.tv_sec * 1s + value.tv_usec * 1us; };
    return std::chrono::duration_cast<std::chrono::milliseconds>(time(usage.ru_utime) + time(usage.ru_stime));
  };
  const RawHttpServer server([](RawConnection& connection) { connection.waitForEnd(); });
  platform::UrlRequest request = requestFor(server.url());
  request.timeoutInterval = 2s;
  const auto before = used();
  EXPECT_EQ(sendSynchronousRequest(request), std::nullopt);
  EXPECT_LT(used() - before, 200ms);
}

class SignalBlocked {
 public:
  explicit SignalBlocked(int signal) {
    sigset_t mask;
    ::sigemptyset(&mask);
    ::sigaddset(&mask, signal);
    ::pthread_sigmask(SIG_BLOCK, &mask, &before_);
  }
  ~SignalBlocked() { ::pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
  SignalBlocked(const SignalBlocked&) = delete;
  SignalBlocked& operator=(const SignalBlocked&) = delete;

 private:
  sigset_t before_{};
};

// The threads of this process that would take that signal.
std::vector<std::string> threadsTaking(int signal) {
  std::vector<std::string> threads;
  for (const auto& thread : std::filesystem::directory_iterator("/proc/self/task")) {
    std::ifstream status(thread.path() / "status");
    std::string word;
    while (status >> word && word != "SigBlk:") continue;
    status >> word;
    if ((std::stoull(word, nullptr, 16) >> (signal - 1) & 1) == 0)
      threads.push_back(thread.path().filename());
  }
  return threads;
}

// A handler may know descriptors of the process, which the transfer has not.
TEST(UrlRequestProcess, SignalsMeanwhileAreTakenByTheCaller) {
  std::vector<std::string> threads;
  std::optional<test_support::RawHttpServer> server;
  {
    const SignalBlocked inTheServer(SIGUSR1);
    server.emplace([&](RawConnection& connection) {
      connection.readHead();
      threads = threadsTaking(SIGUSR1);
      connection.send(httpReply("text"));
    });
  }
  EXPECT_THAT(sendSynchronousRequest(requestFor(server->url())), Optional(std::string("text")));
  EXPECT_THAT(threads, testing::ElementsAre(std::to_string(::gettid())));
}

TEST(UrlRequestProcess, SignalsOfTheCallerStayAsTheyAre) {
  sigset_t before;
  sigset_t after;
  ::pthread_sigmask(SIG_BLOCK, nullptr, &before);
  std::ignore = replyWith([] {});
  ::pthread_sigmask(SIG_BLOCK, nullptr, &after);
  for (int signal = 1; signal < 32; ++signal)
    EXPECT_EQ(::sigismember(&before, signal), ::sigismember(&after, signal)) << signal;
}

// Sends a request where there is no network at all, not even a loopback that is up.
ExitStatus sentWithoutNetwork(const std::string& url) {
  const auto finished = test_support::runForked([&] {
    if (::unshare(CLONE_NEWNET) != 0) return test_support::kNotToBeHad;
    const auto outcome = outcomeOf(requestFor(url));
    if (outcome.reply) return 1;
    return outcome.time < 5s ? 0 : 2;
  });
  return finished.status.value_or(ExitStatus{.code = -1});
}

TEST(UrlRequestProcess, WithoutANetworkTheCallReturnsAtOnce) {
  EXPECT_EQ(sentWithoutNetwork("http://127.0.0.1:8080/"), ExitStatus{.code = 0}) << "the loopback";
  EXPECT_EQ(sentWithoutNetwork("http://192.0.2.1/"), ExitStatus{.code = 0}) << "an address";
  EXPECT_EQ(sentWithoutNetwork("http://host.example/"), ExitStatus{.code = 0}) << "a name";
  EXPECT_EQ(sentWithoutNetwork("https://host.example/"), ExitStatus{.code = 0}) << "a name";
}

TEST(UrlRequestProcess, UnreachableNetworkIsNoReplyAtOnce) {
  const auto outcome = outcomeOf(requestFor("http://192.0.2.1/"));
  EXPECT_EQ(outcome.reply, std::nullopt);
  EXPECT_LT(outcome.time, 5s);
}

TEST(UrlRequestProcess, ProxyOfTheEnvironmentIsAsked) {
  std::string head;
  const RawHttpServer proxy([&](RawConnection& connection) {
    head = connection.readHead();
    connection.send(httpReply("from the proxy"));
  });
  ::setenv("http_proxy", proxy.url().c_str(), 1);
  const auto reply = sendSynchronousRequest(requestFor("http://host.example/path"));
  ::unsetenv("http_proxy");
  EXPECT_THAT(reply, Optional(std::string("from the proxy")));
  EXPECT_THAT(head, testing::StartsWith("GET http://host.example/path HTTP/1.1\r\nHost: host.example\r\n"));
}

TEST(UrlRequestProcess, WithoutAThreadThereIsNoReply) {
  const auto finished = test_support::runForked([] {
    if (!test_support::becomeNobody()) return test_support::kNotToBeHad;
    const rlimit none{0, 0};
    if (::setrlimit(RLIMIT_NPROC, &none) != 0) return test_support::kNotToBeHad;
    return sendSynchronousRequest(requestFor("http://127.0.0.1:8080/")) ? 1 : 0;
  });
  if (test_support::wasNotToBeHad(finished)) GTEST_SKIP() << "no user without rights to be had";
  EXPECT_EQ(finished.status, ExitStatus{.code = 0});
}

}  // namespace
