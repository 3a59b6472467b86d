#include <filesystem>

#include "tests/faults/sessions.h"

namespace {

namespace fs = std::filesystem;

constexpr const char* copy = "/tmp/tovalinupdate.app";

}  // namespace

void UpdateSession::play() {
  fs::remove_all(copy);
  hasOpened_ = false;
  run_.playInSupportWindow([this] { update(); });
}

void UpdateSession::update() {
  run_.clickAt(updateMiddle);
  hasOpened_ = run_.becomesTrue([&] { return run_.count(std::string("run: open ") + copy) == 1; });
}

Outcome UpdateSession::judge() {
  const bool isCopied = fs::exists(fs::path(copy) / "Contents/Info.plist");
  Outcome outcome = run_.judge();
  if (outcome.survival != Survival::Served && outcome.survival != Survival::ServedWithoutPipe) return outcome;
  // A command that cannot be run is skipped without a message, like one that fails. If the helpers folder
  // cannot be checked, the system's command of the same name runs.
  const bool isExcused = run_.injector_.fault().call == "posix_spawn" ||
                         run_.injector_.fault().call == "lstat" ||
                         run_.unusualOutput().contains("updater's folder");
  if (!isExcused && !hasOpened_) return {Survival::Failed, "opens no updater: " + outcome.detail};
  if (!isExcused && !isCopied) return {Survival::Failed, "makes no copy: " + outcome.detail};
  return outcome;
}
