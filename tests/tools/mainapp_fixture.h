#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/harness/processes/file_contents.h"
#include "tests/tools/tool_process.h"

namespace tools_test {

inline constexpr const char* kCommandPipe = "/tmp/KMPIPE";
inline constexpr const char* kNotificationPipe = "/tmp/KMNOTIPIPE";

// Runs the fake main application. Removes both pipes before and after each case.
class MainAppTest : public testing::Test {
 protected:
  void SetUp() override { removePipes(); }
  void TearDown() override {
    app_ = {};
    removePipes();
  }

  // Starts mainapp and waits until it reads the command pipe.
  void startReading(const std::vector<std::string>& arguments = {}) {
    std::vector<std::string> argv = {toolPath("mainapp")};
    argv.insert(argv.end(), arguments.begin(), arguments.end());
    start(argv);
  }

  void start(const std::vector<std::string>& argv) {
    test_support::ChildOptions options;
    options.input = test_support::Redirection::pipe();
    options.error = test_support::Redirection::pipe();
    ASSERT_TRUE(app_.start(argv, options));
    ASSERT_EQ(app_.readLine(), "reading /tmp/KMPIPE") << app_.takeErrorOutput();
  }

  // Returns the next line of its output without the time.
  std::string nextLine() {
    constexpr std::size_t kTime = sizeof "14:03:07.123  " - 1;
    const std::string line = app_.readLine().value_or("");
    return line.size() < kTime ? "no such line: " + line : line.substr(kTime);
  }

  // Returns the state letter of /proc/PID/stat.
  char processState() {
    const std::string text = test_support::contentsOf("/proc/" + std::to_string(app_.pid()) + "/stat");
    const std::size_t end = text.rfind(')');
    return end + 2 < text.size() ? text[end + 2] : '?';
  }

  test_support::ChildProcess app_;

 private:
  static void removePipes() {
    std::filesystem::remove(kCommandPipe);
    std::filesystem::remove(kNotificationPipe);
  }
};

}  // namespace tools_test
