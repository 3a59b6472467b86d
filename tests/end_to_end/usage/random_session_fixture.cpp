#include "tests/end_to_end/usage/random_session_fixture.h"

#include <cstdlib>
#include <ctime>
#include <fstream>

#include "tests/end_to_end/ipc/pipe_away.h"
#include "tests/end_to_end/support/support_log_fixture.h"
#include "tests/harness/processes/file_contents.h"

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using test_support::contentsOf;
using test_support::ExitStatus;
using test_support::waitUntil;

const std::string kFolder = "/tmp/home/.local/share/Tovalin";
constexpr const char* kDesktop = "/tmp/home/Desktop";

std::string fileNameOf(std::chrono::sys_days day) {
  const std::time_t seconds = std::chrono::system_clock::to_time_t(day);
  std::tm parts{};
  ::gmtime_r(&seconds, &parts);
  std::string name(30, '\0');
  name.resize(std::strftime(name.data(), name.size(), "Tovalin_%Y_%m_%d.dat", &parts));
  return name;
}

}  // namespace

unsigned RandomSessionTest::seed() {
  static const char* const asked = std::getenv("TOVALIN_SOAK_SEED");
  static const unsigned chosen =
      asked != nullptr && *asked != '\0' ? static_cast<unsigned>(std::atoi(asked)) : std::random_device()();
  return chosen;
}

void RandomSessionTest::SetUp() {
  std::printf("seed %u\n", seed());
  removePipe();
  setUpAgent();
  if (HasFatalFailure()) return;
  setUpForSupport(*this, *this, *this);
  if (HasFatalFailure()) return;
  ASSERT_TRUE(fs::exists(TOVALIN_FAKETIME));
  // A repeated Escape would also close the window behind the sheet.
  ASSERT_TRUE(test_support::stopKeyRepeat(display_.name()));
  ASSERT_TRUE(portal_.start(bus_, "2"));
  placeScript("journalctl", std::string("echo '") + systemEntry + "'");
  setServers(server_->origin(), uploads_.testServer());
  server_->judgeUploads([this](const auto& request) { return uploads_.judge(request); });
  for (auto& [name, value] : FakeClock::environment()) environment_[name] = value;
}

void RandomSessionTest::beginSession() {
  if (below(2) == 0) clock_.forward(24h);
  fs::create_directories(kFolder);
  std::ofstream(kFolder + "/TovalinServerOption.txt") << below(2);
  const std::size_t past = pastFiles().size(), before = uploads_.arrived();
  host_.clearEvents();
  clock_.processStarts();
  launchInPanel();
  ++written_["start"];
  automount_ = true;
  ASSERT_NO_FATAL_FAILURE(waitForUploads(before, past));
  ASSERT_NO_FATAL_FAILURE(waitUntilIdle());
}

void RandomSessionTest::endByMenu() {
  choose("Quit Tovalin");
  ASSERT_EQ(endOfAgent(), ExitStatus{.code = 0});
  written_["end"] += 2;
}

void RandomSessionTest::endBySignal() {
  terminateAgent();
  ++written_["end"];
}

void RandomSessionTest::endByForce() {
  agent_.kill();
  ASSERT_TRUE(agent_.wait());
}

const std::vector<RandomSessionTest::Act>& RandomSessionTest::everyAct() {
  static const std::vector<Act> all = {
      {"record", 30, &RandomSessionTest::record},
      {"message without record", 5, &RandomSessionTest::recordNothing},
      {"access notice", 8, &RandomSessionTest::showAccessNotice},
      {"loading notice", 8, &RandomSessionTest::showLoadingNotice},
      {"both notices", 5, &RandomSessionTest::showBothNotices},
      {"both notices crosswise", 5, &RandomSessionTest::showBothCrosswise},
      {"notice twice", 4, &RandomSessionTest::showTwice},
      {"switch", 6, &RandomSessionTest::useSwitch},
      {"switch without reader", 3, &RandomSessionTest::useSwitchWithoutReader},
      {"switch without pipe", 3, &RandomSessionTest::useSwitchWithoutPipe},
      {"support window", 4, &RandomSessionTest::lookAtSupport},
      {"support window offline", 3, &RandomSessionTest::lookAtSupportOffline},
      {"support window with sheet", 3, &RandomSessionTest::openSheet},
      {"logs collected", 2, &RandomSessionTest::collectLogs},
      {"update", 3, &RandomSessionTest::update},
      {"notice over support window", 3, &RandomSessionTest::showNoticeOverSupport},
      {"support window over notice", 3, &RandomSessionTest::openSupportOverNotice},
      {"appearance", 8, &RandomSessionTest::flipAppearance},
      {"tray host", 3, &RandomSessionTest::restartHost},
      {"midnight", 3, &RandomSessionTest::passMidnight},
  };
  return all;
}

void RandomSessionTest::act() {
  int weights = 0;
  for (const Act& each : everyAct()) weights += each.weight;
  int drawn = static_cast<int>(below(static_cast<unsigned>(weights)));
  for (const Act& each : everyAct()) {
    drawn -= each.weight;
    if (drawn < 0) return play(each);
  }
}

void RandomSessionTest::performAll() {
  for (const Act& each : everyAct()) {
    if (!HasFatalFailure()) play(each);
  }
}

void RandomSessionTest::play(const Act& act) {
  SCOPED_TRACE(std::string(act.name) + ", seed " + std::to_string(seed()));
  timeline_.clear();
  host_.clearEvents();
  static_cast<void>(agent_.takeOutput() + agent_.takeErrorOutput());
  ++acts_[act.name];
  (this->*act.play)();
  if (HasFatalFailure()) {
    ADD_FAILURE() << "the action failed" << agentsState() << windowsState();
    return;
  }
  waitUntilIdle();
}

void RandomSessionTest::showEverything() {
  showBothNotices();
  lookAtSupport();
  for (int i = 0; i < 2; ++i) flipAppearance();
  waitUntilIdle();
}

void RandomSessionTest::sendRecord() {
  const DataMessage message = messages_.next();
  send(message.bytes);
  for (const std::string& each : message.records) ++written_[each];
}

void RandomSessionTest::record() {
  for (unsigned left = 1 + below(5); left > 0 && !HasFatalFailure(); --left) sendRecord();
}

void RandomSessionTest::recordNothing() {
  send(messages_.nextWithoutRecord().bytes);
  send("-nothing");
}

void RandomSessionTest::showAccessNotice() {
  send("-non");
  ASSERT_TRUE(shows(isAccessNotice));
  send("-noff");
  ASSERT_TRUE(hides(isAccessNotice));
}

void RandomSessionTest::showLoadingNotice() {
  send("-neon");
  ASSERT_TRUE(shows(isLoadingNotice));
  send("-neoff");
  ASSERT_TRUE(hides(isLoadingNotice));
  ASSERT_TRUE(waitForText("run: osascript"));
}

void RandomSessionTest::showBothNotices() {
  send("-non");
  ASSERT_TRUE(shows(isAccessNotice));
  ASSERT_NO_FATAL_FAILURE(showLoadingNotice());
  send("-noff");
  ASSERT_TRUE(hides(isAccessNotice));
}

void RandomSessionTest::showBothCrosswise() {
  send("-neon");
  send("-non");
  ASSERT_TRUE(shows(isLoadingNotice) && shows(isAccessNotice));
  send("-neoff");
  ASSERT_TRUE(hides(isLoadingNotice));
  ASSERT_TRUE(shows(isAccessNotice));
  send("-noff");
  ASSERT_TRUE(hides(isAccessNotice));
}

void RandomSessionTest::showTwice() {
  for (const char* message : {"-non", "-non"}) send(message);
  ASSERT_TRUE(shows(isAccessNotice));
  for (const char* message : {"-noff", "-noff"}) send(message);
  ASSERT_TRUE(hides(isAccessNotice));
}

void RandomSessionTest::flipSwitch() {
  ASSERT_NO_FATAL_FAILURE(choose(automount_ ? "Automount Off" : "Automount On"));
  automount_ = !automount_;
  const char* const next = automount_ ? "Automount Off" : "Automount On";
  ASSERT_TRUE(waitUntil([&] { return host_.menu().front().label == next; }));
}

void RandomSessionTest::useSwitch() {
  ASSERT_NO_FATAL_FAILURE(flipSwitch());
  ASSERT_TRUE(waitForText(automount_ ? "pipe: -m" : "pipe: -u"));
}

void RandomSessionTest::useSwitchWithoutReader() {
  const PipeAway away;
  ASSERT_TRUE(PipeAway::putUnread());
  flipSwitch();
  waitUntilIdle();
}

void RandomSessionTest::useSwitchWithoutPipe() {
  const PipeAway away;
  flipSwitch();
  waitUntilIdle();
}

void RandomSessionTest::lookAtSupport() {
  ASSERT_NO_FATAL_FAILURE(openWindow());
  closeWindow();
}

void RandomSessionTest::lookAtSupportOffline() {
  server_->holdFilesBack(true);
  lookAtSupport();
  waitUntilIdle();
  server_->holdFilesBack(false);
}

void RandomSessionTest::openSheet() {
  ASSERT_NO_FATAL_FAILURE(openWindow());
  clickAt(logMiddle);
  ASSERT_TRUE(sheetIsUp());
  press("Escape");
  ASSERT_TRUE(sheetIsGone());
  closeWindow();
}

void RandomSessionTest::collectLogs() {
  ASSERT_NO_FATAL_FAILURE(openWindow());
  ASSERT_NO_FATAL_FAILURE(collect());
  press("Escape");
  ASSERT_TRUE(sheetIsGone());
  closeWindow();
  ASSERT_EQ(inFolder(kDesktop, "tovalinlog_").size(), 1U);
  fs::remove_all(kDesktop);
  for (const fs::path& folder : inFolder("/tmp", "tovalinlog_")) fs::remove_all(folder);
}

// The button is disabled if the version was not fetched within the agent's timeout, which the fast clock
// shortens.
void RandomSessionTest::update() {
  ASSERT_NO_FATAL_FAILURE(openWindow());
  clickAt(updateMiddle);
  if (timeline_.waitFor("run: open /tmp/tovalinupdate.app", 5s)) {
    ++updates_;
    ASSERT_NO_FATAL_FAILURE(choose());
    waitUntilIdle();
  }
  closeWindow();
}

void RandomSessionTest::showNoticeOverSupport() {
  ASSERT_NO_FATAL_FAILURE(openWindow());
  ASSERT_NO_FATAL_FAILURE(showAccessNotice());
  closeWindow();
}

// The end of the notice stops the modal run of the window opened last.
void RandomSessionTest::openSupportOverNotice() {
  send("-non");
  ASSERT_TRUE(shows(isAccessNotice));
  ASSERT_NO_FATAL_FAILURE(openWindow());
  send("-noff");
  ASSERT_TRUE(hides(isAccessNotice));
  closeWindow();
}

void RandomSessionTest::flipAppearance() {
  dark_ = !dark_;
  ASSERT_TRUE(portal_.set(dark_ ? "1" : "2"));
  ASSERT_TRUE(host_.waitForEvent("NewIcon"));
}

void RandomSessionTest::restartHost() {
  host_.process().kill();
  ASSERT_TRUE(host_.process().wait());
  record();
  ASSERT_TRUE(host_.start(bus_));
  ASSERT_TRUE(host_.waitForEvent("registered"));
}

// Writes records before, at and after midnight, then advances to the minute of the day's uploads, which comes
// once an hour and may be the first one of the day. A step may skip it, so several hours are tried in uneven
// steps. Steps are short, because each reduces the time that an upload under way waits for its reply.
void RandomSessionTest::passMidnight() {
  const std::size_t past = usageFiles().size(), before = uploads_.arrived();
  const auto midnight = clock_.today() + std::chrono::days(1);
  clock_.forwardTo(midnight - 3s);
  while (clock_.now() < midnight + 4s && !HasFatalFailure()) sendRecord();
  for (int step = 0; step < 1600 && uploads_.arrived() == before && !HasFatalFailure(); ++step) {
    clock_.forward(std::chrono::seconds(13 + below(10)));
    if (below(20) == 0) sendRecord();
    waitUntilIdle();
  }
  if (HasFatalFailure()) return;
  ASSERT_NO_FATAL_FAILURE(waitForUploads(before, past));
}

// Waits for the uploads of `past` files, and for the deletion of those that were accepted.
void RandomSessionTest::waitForUploads(std::size_t before, std::size_t past) {
  ASSERT_TRUE(waitUntil([&] { return uploads_.arrived() >= before + past; }, 60s))
      << uploads_.arrived() - before << " of " << past << " files were sent to server " << serverOption()
      << agentsState();
  ASSERT_TRUE(waitUntil([&] { return uploads_.errors(pastFiles()).empty(); }))
      << testing::PrintToString(uploads_.errors(pastFiles()));
}

// The main thread answers, so it has completed all earlier work except what the menu's Quit begins. Uploads
// may be under way.
void RandomSessionTest::waitUntilIdle() {
  const auto answer = host_.ask("properties", 60s);
  ASSERT_TRUE(answer.ok) << answer.text << ", after " << uploads_.arrived() << " uploads" << agentsState();
}

std::string RandomSessionTest::serverOption() {
  return contentsOf(kFolder + "/TovalinServerOption.txt");
}

std::string RandomSessionTest::agentsState() {
  if (!agent_.running()) {
    const auto status = agent_.wait();
    return "\nthe agent has ended, " +
           (status->signal ? "signal " + std::to_string(*status->signal)
                           : "status " + std::to_string(*status->code)) +
           "; its last words:\n" + agent_.takeErrorOutput();
  }
  std::string state = "\nits threads and the calls they wait in:\n";
  const fs::path tasks = "/proc/" + std::to_string(agent_.pid()) + "/task";
  for (const auto& task : fs::directory_iterator(tasks))
    state += contentsOf(task.path() / "comm") + contentsOf(task.path() / "syscall");
  // The sizes of the socket queues show which side does not read or write.
  state += "connections:\n" + contentsOf(tasks.parent_path() / "net/tcp");
  return state + "server " + serverOption() + ", the agent's last words:\n" + agent_.takeErrorOutput();
}

std::string RandomSessionTest::windowsState() {
  return "\nthe windows, hidden ones too:\n" + runOnDisplay({"xwininfo", "-root", "-tree"}) +
         runOnDisplay({"xprop", "-root", "_NET_ACTIVE_WINDOW", "_NET_CLIENT_LIST_STACKING"}) +
         "the keyboard goes to " + runOnDisplay({"xdotool", "getwindowfocus"});
}

RecordCounts RandomSessionTest::recordsLeft() {
  RecordCounts counts;
  for (const fs::path& file : usageFiles())
    EXPECT_TRUE(countRecords(contentsOf(file), counts))
        << file << " is damaged or holds another day's record";
  return counts;
}

std::set<std::string> RandomSessionTest::pastFiles() const {
  std::set<std::string> files;
  for (const fs::path& file : usageFiles()) {
    if (file.filename() != fileNameOf(clock_.today())) files.insert(contentsOf(file));
  }
  return files;
}

long RandomSessionTest::threads() const {
  const fs::directory_iterator all("/proc/" + std::to_string(agent_.pid()) + "/task");
  return std::distance(begin(all), end(all));
}
