#include "platform/shell.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <linux/close_range.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <thread>

#include "tests/harness/processes/file_contents.h"
#include "tests/harness/processes/forked_call.h"
#include "tests/harness/processes/stream_capture.h"
#include "tests/harness/processes/wait_until.h"

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using test_support::ExitStatus;
using test_support::StreamCapture;

constexpr const char* kHelpers = "/tmp/run/TovalinTray/helpers";
constexpr const char* kPath = "/opt/mine:/usr/bin:/bin";

using Environment = std::map<std::string, std::string>;

bool isAlive(const std::string& process) {
  const std::string status = test_support::contentsOf("/proc/" + process + "/status");
  return !status.empty() && status.find("State:\tZ") == std::string::npos;
}

class Shell : public testing::Test {
 protected:
  void SetUp() override {
    fs::create_directories(kHelpers);
    for (const char* folder : {"/tmp/run", "/tmp/run/TovalinTray"}) fs::permissions(folder, fs::perms(0700));
    ::setenv("XDG_RUNTIME_DIR", "/tmp/run", 1);
    ::setenv("PATH", kPath, 1);
    ::unsetenv("TOVALIN_ORIGINAL_PATH");
  }
  void TearDown() override {
    fs::remove_all("/tmp/run");
    fs::remove("/tmp/output");
  }

  // Runs `command` and returns what it wrote to /tmp/output.
  static std::string outputOf(const std::string& command) {
    fs::remove("/tmp/output");
    platform::system(command);
    return test_support::contentsOf("/tmp/output");
  }

  // Returns the initial environment of the shell.
  static Environment environmentOfTheShell() {
    Environment environment;
    const std::string entries = outputOf("cat /proc/$$/environ >/tmp/output; true");
    for (std::size_t start = 0, end; (end = entries.find('\0', start)) != std::string::npos;
         start = end + 1) {
      insert(environment, entries.substr(start, end - start));
    }
    return environment;
  }
  static Environment ownEnvironment() {
    Environment environment;
    for (char** entry = environ; *entry != nullptr; ++entry) insert(environment, *entry);
    return environment;
  }

  static void putHelper(const std::string& name, const std::string& script) {
    const std::string path = std::string(kHelpers) + "/" + name;
    std::ofstream(path) << "#!/bin/sh\n" + script;
    fs::permissions(path, fs::perms(0700));
  }

 private:
  static void insert(Environment& environment, const std::string& entry) {
    const std::size_t sign = entry.find('=');
    ASSERT_TRUE(environment.emplace(entry.substr(0, sign), entry.substr(sign + 1)).second)
        << entry << " twice";
  }
};

TEST_F(Shell, ReturnsExitStatusOfCommand) {
  EXPECT_EQ(platform::system("true"), 0);
  const int status = platform::system("exit 42");
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 42);
}

TEST_F(Shell, ReturnsSignalThatKilledCommand) {
  const int status = platform::system("kill -TERM $$");
  ASSERT_TRUE(WIFSIGNALED(status));
  EXPECT_EQ(WTERMSIG(status), SIGTERM);
}

TEST_F(Shell, MissingCommandReturns127) {
  StreamCapture errors(STDERR_FILENO);
  const int status = platform::system("no-such-command-anywhere");
  EXPECT_THAT(errors.end(), testing::HasSubstr("no-such-command-anywhere: not found"));
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 127);
}

TEST_F(Shell, WaitsForEndOfCommand) {
  EXPECT_EQ(outputOf("i=0; while [ $i -lt 2000 ]; do i=$((i + 1)); done; printf %s $i >/tmp/output"), "2000");
  EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1) << "a child was not reaped";
}

TEST_F(Shell, CommandInheritsStandardStreams) {
  StreamCapture output(STDOUT_FILENO);
  StreamCapture errors(STDERR_FILENO);
  platform::system("echo text; echo error >&2");
  EXPECT_EQ(output.end(), "text\n");
  EXPECT_EQ(errors.end(), "error\n");
}

TEST_F(Shell, QuotesAndLineEndsArePassedVerbatim) {
  EXPECT_EQ(outputOf("printf %s 'a \"b\" $c * \\d `e` %s\nf ' \"it's \u00e4\u65e5\" >/tmp/output"),
            "a \"b\" $c * \\d `e` %s\nf it's \u00e4\u65e5");
}

TEST_F(Shell, UnquotedTextIsExpandedByShell) {
  ::setenv("TEXT_OF_TEST", "a b", 1);
  EXPECT_EQ(outputOf("printf '<%s>' $TEXT_OF_TEST \"$TEXT_OF_TEST\" >/tmp/output"), "<a><b><a b>");
  ::unsetenv("TEXT_OF_TEST");
}

TEST_F(Shell, CommandInheritsEnvironmentWithHelpersFirstOnPath) {
  Environment expected = ownEnvironment();
  expected["PATH"] = std::string(kHelpers) + ":" + kPath;
  expected["TOVALIN_ORIGINAL_PATH"] = kPath;
  EXPECT_EQ(environmentOfTheShell(), expected);
}

TEST_F(Shell, EnvironmentOfCallerIsUnchanged) {
  const Environment before = ownEnvironment();
  platform::system("PATH=; true");
  EXPECT_EQ(ownEnvironment(), before);
}

TEST_F(Shell, InheritedOriginalPathIsReplaced) {
  ::setenv("TOVALIN_ORIGINAL_PATH", "/outer", 1);
  EXPECT_EQ(environmentOfTheShell()["TOVALIN_ORIGINAL_PATH"], kPath);
}

TEST_F(Shell, WithoutPathDefaultFoldersFollowHelpers) {
  ::unsetenv("PATH");
  const Environment environment = environmentOfTheShell();
  EXPECT_EQ(environment.at("PATH"), std::string(kHelpers) + ":/usr/local/bin:/usr/bin:/bin");
  EXPECT_EQ(environment.at("TOVALIN_ORIGINAL_PATH"), "/usr/local/bin:/usr/bin:/bin");
}

TEST_F(Shell, WithoutPrivateFolderPathIsUnchanged) {
  fs::permissions("/tmp/run/TovalinTray", fs::perms(0777));
  EXPECT_EQ(environmentOfTheShell().at("PATH"), kPath);
}

TEST_F(Shell, HelperPrecedesProgramOfSameName) {
  putHelper("cat", "echo the helper with $1 >/tmp/output");
  EXPECT_EQ(outputOf("cat argument"), "the helper with argument\n");
}

// Returns a signal set of /proc/PID/status without signals 32 and 33, which the C library reserves.
unsigned long long signalsIn(const std::string& status, const std::string& field) {
  constexpr unsigned long long kInternal = 0b11ULL << 31;
  const std::size_t start = status.find(field + ":\t");
  return start == std::string::npos ? ~0ULL : std::stoull(status.substr(start + 8), nullptr, 16) & ~kInternal;
}

TEST_F(Shell, CommandStartsWithDefaultSignalsAndEmptyMask) {
  const std::string status = test_support::runForked([] {
                               sigset_t all;
                               ::sigfillset(&all);
                               ::pthread_sigmask(SIG_BLOCK, &all, nullptr);
                               for (const int signal : {SIGPIPE, SIGINT, SIGQUIT, SIGHUP, SIGUSR1, SIGRTMIN})
                                 ::signal(signal, SIG_IGN);
                               return platform::system("exec cat /proc/self/status");
                             }).output;
  EXPECT_EQ(signalsIn(status, "SigBlk"), 0U) << status;
  EXPECT_EQ(signalsIn(status, "SigIgn"), 0U) << status;
}

TEST_F(Shell, SignalStateOfCallerIsUnchanged) {
  const auto finished = test_support::runForked([] {
    sigset_t mask;
    ::sigemptyset(&mask);
    ::sigaddset(&mask, SIGUSR1);
    ::pthread_sigmask(SIG_BLOCK, &mask, nullptr);
    ::signal(SIGPIPE, SIG_IGN);
    platform::system("true");
    sigset_t after;
    ::pthread_sigmask(SIG_BLOCK, nullptr, &after);
    const bool isRestored = ::sigismember(&after, SIGUSR1) == 1 && ::sigismember(&after, SIGCHLD) == 0 &&
                            ::signal(SIGPIPE, SIG_DFL) == SIG_IGN && ::signal(SIGINT, SIG_DFL) == SIG_DFL;
    return isRestored ? 0 : 1;
  });
  EXPECT_EQ(finished.status, ExitStatus{.code = 0});
}

TEST_F(Shell, CommandInheritsOnlyStandardStreams) {
  const auto finished = test_support::runForked([] {
    // The parent of the test program may have leaked descriptors to it.
    ::close_range(STDERR_FILENO + 1, ~0U, CLOSE_RANGE_CLOEXEC);
    const test_support::FileDescriptor file(::open("/dev/null", O_RDONLY | O_CLOEXEC));
    return file.get() > STDERR_FILENO ? platform::system("ls /proc/$$/fd; true") : 1;
  });
  EXPECT_EQ(finished.status, ExitStatus{.code = 0});
  EXPECT_EQ(finished.output, "0\n1\n2\n");
}

TEST_F(Shell, LeaksNoDescriptor) {
  const int before = test_support::openDescriptors();
  platform::system("true");
  EXPECT_EQ(test_support::openDescriptors(), before);
}

std::atomic<int> signalsTaken = 0;

TEST_F(Shell, SignalDoesNotInterruptWait) {
  struct sigaction action {};
  struct sigaction before {};
  action.sa_handler = [](int) { ++signalsTaken; };
  signalsTaken = 0;
  ::sigaction(SIGUSR1, &action, &before);
  // Process state S: the caller is blocked in its wait.
  const int status = platform::system(
      "until grep -q '^State:.S' /proc/$PPID/status; do :; done\n"
      "kill -USR1 $PPID\n"
      "while grep -q '^SigPnd:.*[1-9]' /proc/$PPID/status; do :; done\n"
      "exit 7");
  ::sigaction(SIGUSR1, &before, nullptr);
  EXPECT_EQ(signalsTaken, 1);
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 7);
}

TEST_F(Shell, ThreadsRunCommandsConcurrently) {
  int first = 0;
  int second = 0;
  ASSERT_EQ(::mkfifo("/tmp/run/meeting", 0600), 0);
  {
    // Opening a FIFO blocks until the other end is opened, so both commands must run at once.
    const std::jthread reader([&] { first = platform::system("read word </tmp/run/meeting; exit $word"); });
    const std::jthread writer([&] { second = platform::system("echo 3 >/tmp/run/meeting; exit 4"); });
  }
  EXPECT_EQ(WEXITSTATUS(first), 3);
  EXPECT_EQ(WEXITSTATUS(second), 4);
}

TEST_F(Shell, CommandWithinLimitReturnsItsStatus) {
  const auto status = platform::system("exit 42", 60s);
  ASSERT_TRUE(status && WIFEXITED(*status));
  EXPECT_EQ(WEXITSTATUS(*status), 42);
  EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1) << "a child was not reaped";
}

TEST_F(Shell, CommandBeyondLimitIsKilledWithItsChildren) {
  StreamCapture output(STDOUT_FILENO);
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(platform::system("trap '' TERM; sleep 1000 & echo $!; echo $$; wait", 200ms), std::nullopt);
  EXPECT_LT(std::chrono::steady_clock::now() - start, 20s);
  EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1) << "a child was not reaped";
  std::istringstream processes(output.end());
  int found = 0;
  for (std::string process; processes >> process; ++found)
    EXPECT_TRUE(test_support::waitUntil([&] { return !isAlive(process); })) << process;
  EXPECT_EQ(found, 2);
}

TEST_F(Shell, OnlyProcessGroupOfCommandIsKilled) {
  const auto finished = test_support::runForked([] {
    // Another child of the caller, which the kill of the command must not reach.
    const pid_t other = ::fork();
    if (other == 0) ::pause();
    const bool limited = !platform::system("sleep 1000", 50ms);
    const bool alive = ::waitpid(other, nullptr, WNOHANG) == 0;
    ::kill(other, SIGKILL);
    return limited && alive ? 0 : 1;
  });
  EXPECT_EQ(finished.status, ExitStatus{.code = 0});
}

TEST_F(Shell, LimitedCommandWaitsOnlyForItsShell) {
  StreamCapture output(STDOUT_FILENO);
  EXPECT_EQ(platform::system("sleep 1000 >/dev/null & echo $!", 60s), 0);
  std::string process = output.end();
  process.pop_back();
  EXPECT_TRUE(isAlive(process)) << "a background process of the command was killed";
  ::kill(std::stoi(process), SIGKILL);
}

TEST_F(Shell, LimitIsEnforcedWithoutFreeDescriptors) {
  const auto finished = test_support::runForked([] {
    const rlimit few{32, 32};
    if (::setrlimit(RLIMIT_NOFILE, &few) != 0) return 1;
    while (::open("/dev/null", O_RDONLY | O_CLOEXEC) != -1) continue;
    return platform::system("sleep 1000", 50ms) ? 2 : 0;
  });
  EXPECT_EQ(finished.status, ExitStatus{.code = 0});
}

TEST_F(Shell, WithoutShellReturnsMinusOne) {
  fs::create_directory("/tmp/run/empty");
  const auto finished = test_support::runForked([] {
    if (::chroot("/tmp/run/empty") != 0) return 1;
    return platform::system("true") == -1 ? 0 : 2;
  });
  EXPECT_EQ(finished.status, ExitStatus{.code = 0});
}

TEST_F(Shell, WithoutShellLimitedCommandReturnsMinusOne) {
  fs::create_directory("/tmp/run/empty");
  const auto finished = test_support::runForked([] {
    if (::chroot("/tmp/run/empty") != 0) return 1;
    return platform::system("true", 60s) == -1 ? 0 : 2;
  });
  EXPECT_EQ(finished.status, ExitStatus{.code = 0});
}

TEST_F(Shell, OverlongCommandReturnsMinusOne) {
  EXPECT_EQ(platform::system("true " + std::string(1 << 20, 'x')), -1);
}

}  // namespace
