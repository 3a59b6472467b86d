#include <filesystem>

#include "tests/faults/lives.h"

namespace {

namespace fs = std::filesystem;

constexpr const char* copy = "/tmp/tovalinupdate.app";

}  // namespace

void UpdateLife::lead() {
  fs::remove_all(copy);
  hasOpened_ = false;
  leadInSupportWindow([this] { update(); });
}

void UpdateLife::update() {
  clickAt(updateMiddle);
  hasOpened_ = comesTrue([&] { return count(std::string("run: open ") + copy) == 1; });
}

Outcome UpdateLife::judge() {
  const bool isCopied = fs::exists(fs::path(copy) / "Contents/Info.plist");
  Outcome outcome = FaultTest::judge();
  if (outcome.survival != Survival::Served && outcome.survival != Survival::ServedWithoutPipe) return outcome;
  // A command that can't be run is left out without a word, as one that fails; and where the folder of the
  // helpers may not be looked at, the system's own command of the same name runs.
  const bool isExcused =
      fault().call == "posix_spawn" || fault().call == "lstat" || words().tellOf("updater's folder");
  if (!isExcused && !hasOpened_) return {Survival::Failed, "opens no updater: " + outcome.detail};
  if (!isExcused && !isCopied) return {Survival::Failed, "makes no copy: " + outcome.detail};
  return outcome;
}
