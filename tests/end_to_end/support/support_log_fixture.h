#pragma once

#include <gmock/gmock.h>
#include <sys/mount.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "tests/end_to_end/support/support_fixture.h"

inline constexpr const char* commandFolder = "/tmp/outside commands/";
inline constexpr const char* systemEntry = "an entry of the system";

// Returns the paths in `folder` whose file names begin with `beginning`.
inline std::vector<std::filesystem::path> inFolder(const std::filesystem::path& folder,
                                                   const std::string& beginning = {}) {
  std::vector<std::filesystem::path> found;
  if (!std::filesystem::exists(folder)) return found;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.path().filename().string().starts_with(beginning)) found.push_back(entry.path());
  }
  return found;
}

// Replaces a system command by a script.
inline void placeScript(const std::string& name, const std::string& text) {
  const std::string path = commandFolder + name;
  std::ofstream(path) << "#!/bin/sh\n" << text << '\n';
  std::filesystem::permissions(path, std::filesystem::perms::owner_all);
}

// Replaces /var in this program's mount namespace: its own contents, except that the folders for logs and
// crashes are empty.
inline void replaceVar() {
  namespace fs = std::filesystem;
  ASSERT_STREQ(std::getenv("HOME"), "/tmp/home") << "not running in the sandbox";
  const fs::path own = "/tmp/var";
  fs::create_directory(own);
  ASSERT_EQ(::mount("tmpfs", own.c_str(), "tmpfs", 0, nullptr), 0);
  for (const char* empty : {"log", "crash"}) fs::create_directory(own / empty);
  for (const auto& entry : fs::directory_iterator("/var")) {
    const fs::path place = own / entry.path().filename();
    if (entry.is_symlink()) {
      fs::copy_symlink(entry.path(), place);
    } else if (entry.is_directory() && fs::create_directory(place)) {
      ASSERT_EQ(::mount(entry.path().c_str(), place.c_str(), nullptr, MS_BIND | MS_REC, nullptr), 0);
    }
  }
  ASSERT_EQ(::mount(own.c_str(), "/var", nullptr, MS_BIND | MS_REC, nullptr), 0);
  ASSERT_EQ(::umount2(own.c_str(), MNT_DETACH), 0);
  fs::remove(own);
}

// Log collection on a system with fake logs.
class SupportLog : public testing::Test,
                   protected TestDesktop,
                   protected InstalledBundle,
                   protected RunningAgent,
                   protected NoticePipe,
                   protected SupportServer,
                   protected SupportWindowDriver {
 protected:
  SupportLog()
      : RunningAgent(*this, *this), NoticePipe(*this, *this), SupportWindowDriver(*this, *this, *this) {}
  static void SetUpTestSuite() { replaceVar(); }

  void SetUp() override {
    for (const auto& path : inFolder("/tmp", "tovalinlog_")) std::filesystem::remove_all(path);
    for (const char* path : {"/tmp/home/Desktop", "/tmp/home/.config"}) std::filesystem::remove_all(path);
    for (const char* folder : {"/var/log", "/var/crash"}) {
      for (const auto& path : inFolder(folder)) std::filesystem::remove_all(path);
    }
    removePipe();
    setUpAgent();
    if (HasFatalFailure()) return;
    setUpForSupport(*this, *this, *this);
    if (HasFatalFailure()) return;
    ASSERT_TRUE(test_support::stopKeyRepeat(display_.name()));
    placeScript("journalctl", std::string("echo '") + systemEntry + "'");
    std::filesystem::remove(commandFolder + std::string("zip"));
  }

  void TearDown() override { tearDownAgent(); }

  static void write(const std::filesystem::path& path, const std::string& text = "text") {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path) << text;
  }

  // Begins a collection and blocks it while it packs.
  void collectUntilPacking() {
    launchAndOpen();
    continueUntilPacking();
  }
  void continueUntilPacking() {
    std::filesystem::copy_file(TOVALIN_RECORDER, commandFolder + std::string("zip"),
                               std::filesystem::copy_options::overwrite_existing);
    timeline_.hold("zip");
    openFirstSheet();
    clickAt(sheetsDefault);
    ASSERT_TRUE(waitForText("run: zip"));
  }

  static std::filesystem::perms permissions(const std::filesystem::path& path) {
    return std::filesystem::status(path).permissions();
  }
  static std::vector<std::filesystem::path> folders() { return inFolder("/tmp", "tovalinlog_"); }
  static std::vector<std::filesystem::path> archives(
      const std::filesystem::path& desktop = "/tmp/home/Desktop") {
    return inFolder(desktop, "tovalinlog_");
  }
  // Returns the paths in the only archive, relative to their folder.
  std::vector<std::string> archived(const std::filesystem::path& desktop = "/tmp/home/Desktop") {
    EXPECT_THAT(archives(desktop), testing::SizeIs(1));
    if (archives(desktop).empty()) return {};
    std::vector<std::string> names;
    std::istringstream list(runOnDisplay({"zip", "-sf", archives(desktop)[0].string()}));
    for (std::string line; std::getline(list, line);) {
      const std::size_t slash = line.rfind('/');
      if (slash != std::string::npos && line.find("tmp/tovalinlog_") != std::string::npos)
        names.push_back(line.substr(slash + 1));
    }
    return names;
  }
  // Returns the folder names of all collections that begin within the next 30 s.
  static std::vector<std::string> namesToCome() {
    std::vector<std::string> names;
    for (std::time_t time = std::time(nullptr), end = time + 30; time < end; ++time) {
      std::tm local{};
      ::localtime_r(&time, &local);
      char text[64];
      std::strftime(text, sizeof text, "/tmp/tovalinlog_%Y-%m-%dT%H-%M-%S", &local);
      names.emplace_back(text);
    }
    return names;
  }
  static int foldersWithLogs(const std::vector<std::string>& names) {
    return static_cast<int>(std::ranges::count_if(
        names, [](const auto& name) { return std::filesystem::exists(name + "/system.log"); }));
  }
};
