#include <algorithm>
#include <filesystem>
#include <fstream>

#include "tests/faults/sessions.h"

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

const fs::path kDesktop = "/tmp/home/Desktop";
constexpr Place kContinue{350, 163};
constexpr const char* kJournal = "/tmp/outside commands/journalctl";

// A fake journal, so that it exists and is short.
void placeJournal() {
  std::ofstream(kJournal) << "#!/bin/sh\necho an entry of the system\n";
  fs::permissions(kJournal, fs::perms::owner_all);
}

void removeCollections() {
  fs::remove_all(kDesktop);
  for (const auto& entry : fs::directory_iterator("/tmp")) {
    if (entry.path().filename().string().starts_with("tovalinlog_")) fs::remove_all(entry.path());
  }
}

bool hasArchive() {
  std::error_code none;
  const fs::directory_iterator desktop(kDesktop, none);
  return std::any_of(begin(desktop), end(desktop),
                     [](const auto& entry) { return entry.path().extension() == ".zip"; });
}

}  // namespace

void LogCollectionSession::play() {
  placeJournal();
  removeCollections();
  hasReportedEnd_ = false;
  run_.playInSupportWindow([this] { collectLogs(); });
}

void LogCollectionSession::collectLogs() {
  run_.clickAt(logMiddle);
  static_cast<void>(run_.becomesTrue([&] { return isShaded(); }));
  const auto question = sheetMessage();
  // A click: a key held down on a busy machine might answer the next sheet too.
  run_.clickAt(kContinue);
  hasReportedEnd_ = run_.becomesTrue([&] { return isShaded() && !(sheetMessage() == question); });
  run_.press("Escape");
  static_cast<void>(run_.becomesTrue([&] { return !isShaded(); }));
}

// A sheet dims the part of the window that it does not cover.
bool LogCollectionSession::isShaded() const {
  return run_.colourOf(bareSpot).red < 200;
}

test_support::XPicture LogCollectionSession::sheetMessage() const {
  return run_.pictureOfPart({100, 180}, 300, 55);
}

Outcome LogCollectionSession::judge() {
  Outcome outcome = run_.judge();
  if (outcome.survival != Survival::Served && outcome.survival != Survival::ServedWithoutPipe) return outcome;
  if (!hasReportedEnd_)
    return {Survival::Failed, "does not printOutcome of the collection's end: " + outcome.detail};
  // A command that cannot be run is skipped without a message, like one that fails.
  const bool isCommand = run_.injector_.fault().call == "posix_spawn";
  if (!isCommand && !hasArchive()) return {Survival::Failed, "makes no archive: " + outcome.detail};
  return outcome;
}
