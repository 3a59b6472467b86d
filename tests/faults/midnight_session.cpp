#include <filesystem>
#include <fstream>
#include <string>

#include "tests/faults/sessions.h"
#include "tests/harness/processes/file_contents.h"

namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;
using test_support::contentsOf;

constexpr const char* kClock = "/tmp/faults.clock";
const std::string kDayBefore = "/tmp/home/.local/share/Tovalin/Tovalin_2024_05_01.dat";
const std::string kNewDay = "/tmp/home/.local/share/Tovalin/Tovalin_2024_05_02.dat";

const std::string kBeginningOfDayBefore = "TVLD2024-05-01";

bool holds(const std::string& bytes, const std::string& record) {
  return bytes.find(record) != std::string::npos;
}

// Replaces the file atomically, because the agent may read it at any time.
void putClock(const std::string& time) {
  const std::string draft = kClock + ".new"s;
  std::ofstream(draft) << '@' << time << '\n';
  fs::rename(draft, kClock);
}

// A time on the new day, five seconds after the full minute.
std::string minuteOfNewDay(int minute) {
  char text[32];
  std::snprintf(text, sizeof text, "2024-05-02 %02d:%02d:05", minute / 60, minute % 60);
  return text;
}

}  // namespace

MidnightSession::MidnightSession(FaultyAgent& agent)
    : ScriptedSession(agent, {.pastFiles = {UsageCheck::waiting, {kDayBefore, kBeginningOfDayBefore}}}) {}

void MidnightSession::play() {
  run_.environment_["LD_PRELOAD"] = TOVALIN_FAILING_CALLS ":" TOVALIN_FAKETIME;
  run_.environment_["FAKETIME_TIMESTAMP_FILE"] = kClock;
  run_.environment_["FAKETIME_NO_CACHE"] = "1";
  putClock("2024-05-01 23:59:00");
  run_.launchCompletely();
  run_.injector_.injectFailures();
  run_.sendRecord(deviceMessage, deviceRecord);
  passMidnight();
}

void MidnightSession::passMidnight() {
  putClock(minuteOfNewDay(1));
  static_cast<void>(run_.becomesTrue([&] { return wakes() && fs::exists(kNewDay); }));
  run_.sendRecord(transferMessage, transferRecord);
  waitForPass();
}

// The upload happens in one minute of the hour, at the second of the minute of the tick that saw the new day.
void MidnightSession::waitForPass() {
  for (int minute = 2; minute < 70 && run_.agent_.running() && fs::exists(kDayBefore); ++minute) {
    putClock(minuteOfNewDay(minute));
    // The first request wakes the agent, which then finds its timer due; the second is answered after that.
    if (!wakes() || !wakes()) return;
  }
}

// A D-Bus request ends the main thread's wait, whose timeout was computed before the clock was put forward.
bool MidnightSession::wakes() {
  return run_.host_.ask("properties").ok;
}

Outcome MidnightSession::judge() {
  Outcome outcome = run_.judge();
  const std::string wrong = judgeDays();
  if (outcome.survival == Survival::Failed || wrong.empty()) return outcome;
  return {Survival::Failed, wrong + ": " + outcome.detail};
}

// Each record must be in the file of its own day.
std::string MidnightSession::judgeDays() const {
  std::vector<std::string> before = run_.uploads();
  before.push_back(contentsOf(kDayBefore));
  for (const std::string& day : before) {
    if (holds(day, transferRecord) || holds(day, quitRecord))
      return "the day before has the new day's records";
  }
  const std::string after = contentsOf(kNewDay);
  return holds(after, startRecord) || holds(after, deviceRecord) ? "the new day has records of the one before"
                                                                 : "";
}
