#include "tests/end_to_end/test_desktop.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "tests/harness/processes/child_process.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* outsideCommands = "/tmp/outside commands";

}  // namespace

void placeRecorder(const std::string& path) {
  fs::copy_file(TOVALIN_RECORDER, path, fs::copy_options::overwrite_existing);
}

void TestDesktop::startDesktop() {
  ASSERT_TRUE(bus_.start());
  ASSERT_TRUE(display_.start());
  fs::create_directories(outsideCommands);
  for (const char* command : {"/killall", "/beacon"}) placeRecorder(outsideCommands + std::string(command));
  environment_ = {{"DISPLAY", display_.name()},
                  {"DBUS_SESSION_BUS_ADDRESS", bus_.address()},
                  {"PATH", std::string(outsideCommands) + ":" + std::getenv("PATH")}};
}

std::string TestDesktop::runOnDisplay(const std::vector<std::string>& command) {
  test_support::ChildProcess tool;
  test_support::ChildOptions options;
  options.environment = environment_;
  EXPECT_TRUE(tool.start(command, options));
  EXPECT_EQ(tool.wait(), test_support::ExitStatus{.code = 0}) << command[0];
  return tool.takeOutput();
}
