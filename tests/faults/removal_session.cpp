#include <filesystem>

#include "tests/faults/sessions.h"

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

void BundleLoss::installAnew() {
  fs::remove_all(run_.bundle_ + " old");
  run_.install(run_.bundle_);
  run_.setServers(run_.server_->origin(), run_.server_->origin());
  fs::create_directory(run_.bundle_ + movedFolder);
}

void BundleLoss::loseBundle(const std::function<void()>& takeAway) {
  if (!run_.agent_.running()) return;
  hasWatch_ = watchesFiles(run_.agent_.pid());
  takeAway();
  if (hasWatch_) static_cast<void>(run_.becomesTrue([&] { return !run_.agent_.running(); }));
}

Outcome BundleLoss::judge() {
  if (run_.agent_.running()) return judgeUnwatched();
  const bool isProper =
      run_.count(rootChangeLogged) == 1 && run_.agent_.wait() == test_support::ExitStatus{.code = 0};
  if (!isProper) return *run_.judgeEarlyEnd();
  const std::string wrong = judgeProperEnd();
  return {wrong.empty() ? Survival::Served : Survival::Failed, wrong + run_.message()};
}

// An agent without a watch runs on without a message and ends as usual.
Outcome BundleLoss::judgeUnwatched() {
  if (hasWatch_) return {Survival::Failed, "does not notice that its bundle is gone: " + run_.message()};
  const Outcome outcome = run_.judge();
  return {outcome.survival == Survival::Served ? Survival::ServedWithoutWatch : outcome.survival,
          outcome.detail};
}

std::string BundleLoss::judgeProperEnd() {
  if (!run_.hasNoProcessesLeft()) return "processes outlive it: ";
  if (const std::string wrong = run_.judgeFiles(); !wrong.empty()) return wrong + ": ";
  // A failing posix_spawn is not logged; the shell reports a missing command.
  const int missing =
      run_.injector_.fault().call == "posix_spawn" || run_.unusualOutput().contains("launchctl: not found")
          ? 1
          : 0;
  if (run_.count(unloadRun) + run_.count(killRun) < 2 - missing) return "is not unloaded: ";
  const std::string wrong = run_.judgeUsage(1);
  return wrong.empty() ? "" : wrong + ": ";
}

void RemovalSession::play() {
  loss_.installAnew();
  run_.launchCompletely();
  run_.injector_.injectFailures();
  loss_.loseBundle([&] {
    fs::rename(run_.bundle_ + movedFolder, run_.bundle_ + movedFolder + " elsewhere");
    fs::remove_all(run_.bundle_);
  });
}

void WatchSession::play() {
  loss_.installAnew();
  run_.injector_.injectFailures();
  run_.launchCompletely();
  loss_.loseBundle([&] { fs::rename(run_.bundle_, run_.bundle_ + " old"); });
}
