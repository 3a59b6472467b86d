#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>

#include <latch>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "platform/shell.h"
#include "tests/harness/processes/forked_call.h"
#include "tests/harness/processes/wait_until.h"
#include "tests/platform/portable/http/url_request_support.h"

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

TEST(UrlRequestProcess, LeaksNoDescriptor) {
  const RawHttpServer server(RawHttpServer::answer("HTTP/1.1 200 OK\r\n\r\ntext"));
  std::ignore = sendSynchronousRequest(requestFor(server.url()));
  const int before = openDescriptors();
  for (int i = 0; i < 50; ++i)
    EXPECT_THAT(sendSynchronousRequest(requestFor(server.url())), Optional(std::string("text")));
  // The server closes its descriptors asynchronously.
  EXPECT_TRUE(test_support::waitUntil([&] { return openDescriptors() <= before; }))
      << before << ' ' << openDescriptors();
}

// Runs `during` between the request and its reply. Returns the reply.
template <typename During>
std::optional<std::string> replyWith(During during) {
  const RawHttpServer server([&](RawConnection& connection) {
    connection.readHead();
    during();
    connection.send(httpReply("text"));
  });
  return sendSynchronousRequest(requestFor("http://localhost:" + std::to_string(server.port()) + "/"));
}

TEST(UrlRequestProcess, ProgramStartedDuringRequestInheritsNoDescriptor) {
  const auto finished = test_support::runForked([] {
    int status = -1;
    const auto reply = replyWith([&] { status = platform::system("ls /proc/$$/fd; true"); });
    return reply ? status : -1;
  });
  EXPECT_EQ(finished.status, ExitStatus{.code = 0});
  EXPECT_EQ(finished.output, "0\n1\n2\n");
}

TEST(UrlRequestProcess, ThreadsSendConcurrently) {
  constexpr int kThreads = 8;
  std::latch together(kThreads);
  const RawHttpServer server([&](RawConnection& connection) {
    const std::string head = connection.readHead();
    // Replies to none before all requests have arrived.
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

TEST(UrlRequestProcess, WaitingUsesNoCpuTime) {
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

TEST(UrlRequestProcess, SignalMaskOfCallerIsUnchanged) {
  sigset_t before;
  sigset_t after;
  ::pthread_sigmask(SIG_BLOCK, nullptr, &before);
  std::ignore = replyWith([] {});
  ::pthread_sigmask(SIG_BLOCK, nullptr, &after);
  for (int signal = 1; signal < 32; ++signal)
    EXPECT_EQ(::sigismember(&before, signal), ::sigismember(&after, signal)) << signal;
}

// Sends a request in a new network namespace, whose loopback interface is down. The exit status is 0 if the
// call returns without a reply within 5 s.
ExitStatus sentWithoutNetwork(const std::string& url) {
  const auto finished = test_support::runForked([&] {
    if (::unshare(CLONE_NEWNET) != 0) return test_support::kUnavailable;
    const auto outcome = outcomeOf(requestFor(url));
    if (outcome.reply) return 1;
    return outcome.time < 5s ? 0 : 2;
  });
  return finished.status.value_or(ExitStatus{.code = -1});
}

TEST(UrlRequestProcess, WithoutNetworkReturnsImmediately) {
  EXPECT_EQ(sentWithoutNetwork("http://127.0.0.1:8080/"), ExitStatus{.code = 0}) << "the loopback";
  EXPECT_EQ(sentWithoutNetwork("http://192.0.2.1/"), ExitStatus{.code = 0}) << "an address";
  EXPECT_EQ(sentWithoutNetwork("http://host.example/"), ExitStatus{.code = 0}) << "a name";
  EXPECT_EQ(sentWithoutNetwork("https://host.example/"), ExitStatus{.code = 0}) << "a name";
}

TEST(UrlRequestProcess, UnreachableNetworkReturnsImmediately) {
  const auto outcome = outcomeOf(requestFor("http://192.0.2.1/"));
  EXPECT_EQ(outcome.reply, std::nullopt);
  EXPECT_LT(outcome.time, 5s);
}

TEST(UrlRequestProcess, UsesHttpProxyOfEnvironment) {
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

}  // namespace
