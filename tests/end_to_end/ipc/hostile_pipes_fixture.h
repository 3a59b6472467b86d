#pragma once

#include <fcntl.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>

#include "tests/end_to_end/notices/notice_fixture.h"

inline constexpr const char* commandPipe = "/tmp/KMPIPE";
inline constexpr const char* planted = "/tmp/planted";

inline mode_t modeOf(const std::string& path) {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
}

// Puts files of another local user at the paths of the pipes before the agent starts.
class HostilePipes : public testing::Test,
                     protected TestDesktop,
                     protected InstalledBundle,
                     protected RunningAgent,
                     protected NoticePipe {
 protected:
  HostilePipes() : RunningAgent(*this, *this), NoticePipe(*this, *this) {}
  void SetUp() override {
    removePipe();
    setUpAgent();
    if (HasFatalFailure()) return;
    // Removes the timeline's command pipe; the timeline still records the log and the commands.
    std::filesystem::remove_all(commandPipe);
    std::filesystem::remove_all(planted);
    install("/tmp/Applications/Tovalin.app");
    ASSERT_TRUE(host_.start(bus_));
  }
  void TearDown() override {
    tearDownAgent();
    for (const char* path : {commandPipe, pipePath, planted}) std::filesystem::remove_all(path);
  }

  void start() {
    startAgent();
    ASSERT_TRUE(host_.waitForEvent("registered")) << agent_.takeErrorOutput();
  }
  // Starts an agent that creates its own notification pipe.
  void startAndListen() {
    start();
    ASSERT_TRUE(waitForText("log 6: read_pipe read pipe message : "));
  }
};
