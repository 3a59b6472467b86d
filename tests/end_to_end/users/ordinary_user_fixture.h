#pragma once

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "tests/end_to_end/ipc/hostile_pipes_fixture.h"
#include "tests/harness/processes/wait_until.h"

inline constexpr unsigned user = 65534;
inline const std::string ownHome = "/tmp/user/home";

// The agent of an unprivileged user; the test, as root, takes permissions away.
class OrdinaryUser : public testing::Test,
                     protected TestDesktop,
                     protected InstalledBundle,
                     protected RunningAgent,
                     protected NoticePipe {
 protected:
  OrdinaryUser() : RunningAgent(*this, *this), NoticePipe(*this, *this) {}
  void SetUp() override {
    removePipe();
    setUpAgent();
    if (HasFatalFailure()) return;
    if (!succeeds({"true"})) GTEST_SKIP() << "cannot change to another user";
    install("/tmp/Applications/Tovalin.app");
    std::filesystem::remove_all("/tmp/user");
    for (const std::string& folder : {ownHome, std::string("/tmp/user/runtime")}) {
      std::filesystem::create_directories(folder);
      ASSERT_EQ(::chown(folder.c_str(), user, user), 0);
      ASSERT_EQ(::chmod(folder.c_str(), 0700), 0);
    }
    environment_["HOME"] = ownHome;
    environment_["XDG_RUNTIME_DIR"] = "/tmp/user/runtime";
    // The test's bus belongs to another user.
    environment_["DBUS_SESSION_BUS_ADDRESS"] = std::nullopt;
    runOnDisplay({"xhost", "+local:"});
  }
  void TearDown() override {
    ::chmod("/tmp", 01777);
    tearDownAgent();
  }

  static std::vector<std::string> asUser(const std::vector<std::string>& command, unsigned who = user) {
    const std::string id = std::to_string(who);
    std::vector<std::string> all{"setpriv", "--reuid", id, "--regid", id, "--clear-groups", "--"};
    all.insert(all.end(), command.begin(), command.end());
    return all;
  }
  // Returns whether the user can run this command, to verify that a test's restriction is effective.
  [[nodiscard]] static bool succeeds(const std::vector<std::string>& command, unsigned who = user) {
    test_support::ChildProcess process;
    test_support::ChildOptions options;
    options.error = test_support::Redirection::null();
    return process.start(asUser(command, who), options) &&
           process.wait() == test_support::ExitStatus{.code = 0};
  }

  void startAsUser() {
    test_support::ChildOptions options;
    options.environment = environment_;
    options.error = test_support::Redirection::pipe();
    ASSERT_TRUE(agent_.start(asUser({agentProgram()}), options));
  }
  void launchAsUser() {
    startAsUser();
    ASSERT_TRUE(waitForText("log 6: read_pipe read pipe message : ")) << agent_.takeErrorOutput();
    timeline_.clear();
  }
  [[nodiscard]] bool saysOnConsole(const std::string& text) {
    return test_support::waitUntil(
        [&] { return (console_ += agent_.takeErrorOutput()).find(text) != std::string::npos; });
  }

  std::string console_;
};
