#include <filesystem>

#include "tests/faults/lives.h"

namespace {

namespace fs = std::filesystem;

const std::string movedFolder = "/Contents/Resources/moved";
constexpr const char* rootChangeLogged = "log 6: filestreamcallback event flag : 32, 0x20";

bool watchesFiles(pid_t process) {
  std::error_code gone;
  for (const auto& entry : fs::directory_iterator("/proc/" + std::to_string(process) + "/fd", gone)) {
    if (fs::read_symlink(entry.path(), gone) == "anon_inode:inotify") return true;
  }
  return false;
}

}  // namespace

void RemovalLife::lead() {
  installAnew();
  launchToItsEnd();
  letCallsFail();
  loseBundle([&] {
    fs::rename(bundle_ + movedFolder, bundle_ + movedFolder + " elsewhere");
    fs::remove_all(bundle_);
  });
}

void WatchLife::lead() {
  installAnew();
  letCallsFail();
  launchToItsEnd();
  loseBundle([&] { fs::rename(bundle_, bundle_ + " old"); });
}

void RemovalLife::installAnew() {
  fs::remove_all(bundle_ + " old");
  install(bundle_);
  setServers(server_->origin(), server_->origin());
  fs::create_directory(bundle_ + movedFolder);
}

void RemovalLife::loseBundle(const std::function<void()>& takeAway) {
  if (!agent_.running()) return;
  hasWatch_ = watchesFiles(agent_.pid());
  takeAway();
  if (hasWatch_) static_cast<void>(comesTrue([&] { return !agent_.running(); }));
}

Outcome RemovalLife::judge() {
  if (agent_.running()) return judgeUnwatched();
  const bool isProper = count(rootChangeLogged) == 1 && agent_.wait() == test_support::ExitStatus{.code = 0};
  if (!isProper) return *judgeEarlyEnd();
  const std::string wrong = judgeProperEnd();
  return {wrong.empty() ? Survival::Served : Survival::Failed, wrong + message()};
}

// Who got no watch goes on without a word, and ends as it would otherwise.
Outcome RemovalLife::judgeUnwatched() {
  if (hasWatch_) return {Survival::Failed, "does not notice that its bundle is gone: " + message()};
  const Outcome outcome = FaultTest::judge();
  return {outcome.survival == Survival::Served ? Survival::ServedWithoutWatch : outcome.survival,
          outcome.detail};
}

std::string RemovalLife::judgeProperEnd() {
  if (!nothingOutlivesIt()) return "processes outlive it: ";
  if (const std::string wrong = judgeFiles(); !wrong.empty()) return wrong + ": ";
  // A command that can't be run is left out without a word; of one that isn't found, the shell says so.
  const int missing = fault().call == "posix_spawn" || words().tellOf("launchctl: not found") ? 1 : 0;
  if (count(unloadRun) + count(killRun) < 2 - missing) return "is not unloaded: ";
  const std::string wrong = judgeUsage(1);
  return wrong.empty() ? "" : wrong + ": ";
}
