#include "tests/faults/faulty_agent.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <fstream>
#include <limits>

#include "tests/end_to_end/app/icon_in_panel.h"
#include "tests/harness/collect_messages.h"
#include "tests/harness/processes/file_contents.h"
#include "tests/harness/processes/file_descriptor.h"
#include "tests/harness/processes/wait_until.h"
#include "usage/upload_rules.h"

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using namespace std::string_literals;
using test_support::contentsOf;
using test_support::FileDescriptor;
using test_support::waitUntil;

constexpr std::chrono::seconds kPatienceAfterFault{4};
// Logged for a picture that could not be loaded.
constexpr const char* kLostPicture = "Invalid Image";
// A copy of the bundle's pictures, because some sessions remove the bundle.
const std::string kPictures = "/tmp/pictures";

long openDescriptorsOf(pid_t process) {
  std::error_code gone;
  const fs::directory_iterator open("/proc/" + std::to_string(process) + "/fd", gone);
  return gone ? 0 : std::distance(begin(open), end(open));
}

long processes() {
  const fs::directory_iterator all("/proc");
  return std::ranges::count_if(all, [](const auto& entry) {
    return std::isdigit(static_cast<unsigned char>(entry.path().filename().string()[0])) != 0;
  });
}

std::string processNames() {
  std::string names;
  for (const auto& entry : fs::directory_iterator("/proc")) {
    std::string name = contentsOf(entry.path() / "comm");
    if (std::isdigit(static_cast<unsigned char>(entry.path().filename().string()[0])) == 0) continue;
    names += " " + name.substr(0, name.find('\n'));
  }
  return names;
}

// Each thread of Qt's thread pool holds a descriptor, and their number varies.
long pooledThreadsOf(pid_t process) {
  std::error_code gone;
  const fs::directory_iterator threads("/proc/" + std::to_string(process) + "/task", gone);
  if (gone) return 0;
  return std::count_if(begin(threads), end(threads), [](const auto& thread) {
    return contentsOf(thread.path() / "comm") == "Thread (pooled)\n";
  });
}

}  // namespace

const std::string deviceMessage = test_support::deviceMessage();
const std::string deviceRecord = "\x04\x13";
const std::string transferMessage = test_support::kTransferMessage;
const std::string transferRecord = "\x07\x08";

void FaultyAgent::setUp() {
  removePipe();
  setUpAgent();
  if (testing::Test::HasFatalFailure()) return;
  setUpForSupport(*this, *this, *this);
  if (testing::Test::HasFatalFailure()) return;
  server_->put(bannerFolder + std::string("red.ppm"), pictureFile(red, 420, 120));
  ASSERT_TRUE(injector_.open());
  // The same server for both values of the server option.
  setServers(server_->origin(), server_->origin());
  fs::copy(agentContents() + "/Resources", kPictures,
           fs::copy_options::recursive | fs::copy_options::overwrite_existing);
  environment_["LD_PRELOAD"] = TOVALIN_FAILING_CALLS;
}

void FaultyAgent::begin(const Fault& fault, const Expected& expected) {
  expected_ = expected;
  usage_.begin(expected_.isFirstLaunch);
  fs::remove(pipePath);
  timeline_.clear();
  host_.clearEvents();
  consoleLog_.clear();
  descriptorsAtEnd_.reset();
  endsProperly_ = false;
  hasPipe_ = true;
  patience_ = kPatienceAfterFault;
  injector_.arm(fault, environment_);
  processesBefore_ = processes();
  requestsBefore_ = server_->requests().size();
}

void FaultyAgent::launchCompletely() {
  startAgent();
  waitForLaunch();
}

void FaultyAgent::waitForLaunch() {
  waitForListener();
  static_cast<void>(becomesTrue([&] { return host_.waitForEvent("registered", 10ms).has_value(); }));
  static_cast<void>(becomesTrue([] { return !fs::exists(UsageCheck::waiting.path); }));
}

// Uses a shorter timeout after the fault, because a step that the fault prevents never completes.
bool FaultyAgent::becomesTrue(const std::function<bool()>& condition) {
  const auto begin = std::chrono::steady_clock::now();
  std::optional<std::chrono::steady_clock::time_point> failedAt;
  return waitUntil([&] {
           const auto now = std::chrono::steady_clock::now();
           if (!failedAt && injector_.hasFailed()) failedAt = now;
           const bool givesUp = failedAt ? now - *failedAt > patience_ && now - begin > 2s : false;
           return condition() || givesUp || !agent_.running();
         }) &&
         condition();
}

void FaultyAgent::waitForListener() {
  static_cast<void>(becomesTrue([&] { return listens() || hasReportedLostPipe(); }));
}

bool FaultyAgent::listens() {
  return FileDescriptor(::open(pipePath, O_WRONLY | O_NONBLOCK | O_CLOEXEC)).valid();
}

// Returns once the message was read, because the agent treats messages read together as one.
bool FaultyAgent::sendToPipe(const std::string& text) {
  const FileDescriptor pipe(::open(pipePath, O_WRONLY | O_NONBLOCK | O_CLOEXEC));
  const int before = count("log 6: read_pipe");
  if (::write(pipe.get(), text.data(), text.size()) <= 0) return false;
  return becomesTrue([&] { return count("log 6: read_pipe") > before; });
}

void FaultyAgent::sendRecord(const std::string& text, const std::string& record) {
  usage_.expect(record);
  if (!sendToPipe(text)) return;
  usage_.noteRead(record);
  if (becomesTrue([&] { return UsageCheck::writtenWhole(record) == usage_.expected(record); }))
    usage_.noteWritten(record);
}

void FaultyAgent::closeSupportWindow(std::uint32_t window) {
  static_cast<void>(becomesTrue([&] {
    test_support::requestClose(display_.name(), window);
    return test_support::waitForNoWindow(display_.name(), isSupportWindow, 100ms);
  }));
}

void FaultyAgent::playInSupportWindow(const std::function<void()>& use) {
  launchCompletely();
  openWindow();
  if (testing::Test::HasFatalFailure()) return;
  injector_.injectFailures();
  use();
  closeSupportWindow(window_.id);
}

bool FaultyAgent::answersPipe() {
  sendToPipe("-noff");
  sendToPipe("-non");
  const auto isUp = [&] {
    return test_support::waitForWindow(display_.name(), isAccessNotice, 0ms).has_value();
  };
  if (!becomesTrue(isUp)) return false;
  sendToPipe("-noff");
  return becomesTrue([&] { return !isUp(); });
}

std::string FaultyAgent::switchLabel() {
  for (const auto& item : host_.menu()) {
    if (item.label.starts_with("Automount ")) return item.label;
  }
  return {};
}

bool FaultyAgent::switchWorks() {
  const std::string before = switchLabel();
  if (before.empty()) return unusualOutput().contains(kLostPicture) && switchWorksFromSecondStart();
  const char* after = before == "Automount Off" ? "Automount On" : "Automount Off";
  return host_.click(before) &&
         waitUntil([&] { return !agent_.running() || switchLabel() == after || pictureIsLost(); });
}

// Returns whether a picture could not be loaded and its state is current: the item is then not registered.
bool FaultyAgent::pictureIsLost() {
  return unusualOutput().contains(kLostPicture) && host_.items().empty();
}

// A second start opens the menu at the pointer; its first line is the switch. After the switch the item
// returns with the other picture.
bool FaultyAgent::switchWorksFromSecondStart() {
  test_support::ChildOptions options;
  options.environment = environment_;
  options.environment["LD_PRELOAD"] = std::nullopt;
  test_support::ChildProcess second;
  if (!second.start({agentProgram()}, options) || second.wait() != test_support::ExitStatus{.code = 0})
    return false;
  if (!test_support::waitForWindow(display_.name(), isMenu)) return false;
  press("Down");
  press("Return");
  return waitUntil([&] { return !agent_.running() || !switchLabel().empty(); });
}

bool FaultyAgent::showsIcon() {
  const char* picture = switchLabel() == "Automount Off" ? "mount on" : "mount off";
  return becomesTrue(
      [&] { return host_.saveIcon("/tmp/icon.png", "20") && panelShows(host_, kPictures, picture); });
}

UnusualOutput FaultyAgent::unusualOutput() {
  return {texts(), consoleLog_ += agent_.takeErrorOutput()};
}

Outcome FaultyAgent::judge() {
  if (const auto early = judgeEarlyEnd()) return *early;
  for (const auto step : {&FaultyAgent::judgePipe, &FaultyAgent::judgeItem, &FaultyAgent::judgeLeaks,
                          &FaultyAgent::judgeEnd, &FaultyAgent::judgeFiles, &FaultyAgent::judgeUsageAtEnd}) {
    const std::string wrong = (this->*step)();
    if (wrong.empty()) continue;
    if (const auto early = judgeEarlyEnd(); early && !endsProperly_) return *early;
    return {Survival::Failed, wrong + ": " + message()};
  }
  if (!endsProperly_) return {Survival::EndedWithMessage, message()};
  return {hasPipe_ ? Survival::Served : Survival::ServedWithoutPipe, message()};
}

std::string FaultyAgent::judgePipe() {
  // The thread that could not be started may be the listener's.
  const auto isReported = [&] {
    return hasReportedLostPipe() || unusualOutput().contains("] cannot start a thread: ");
  };
  const bool wasReported = isReported();
  hasPipe_ = answersPipe();
  if (hasPipe_ || wasReported || isReported()) return {};
  // The pipe was not reported as lost, so it must answer, however busy the machine is.
  patience_ = test_support::kPatience;
  hasPipe_ = answersPipe();
  return hasPipe_ || isReported() ? "" : "does not answer the pipe";
}

// The icon must be shown before and after a click on the switch, except for pictures logged as invalid.
std::string FaultyAgent::judgeItem() {
  patience_ = unusualOutput().contains(kLostPicture) ? kPatienceAfterFault : test_support::kPatience;
  int missing = 0;
  for (int turn = 0; turn < 2; ++turn) {
    if (!showsIcon()) ++missing;
    if (!switchWorks()) return "does not answer its menu";
  }
  if (missing > unusualOutput().count(kLostPicture)) return "does not show its icon";
  return showsMenu() ? "" : "does not answer its menu";
}

bool FaultyAgent::showsMenu() {
  return !switchLabel().empty() || switchWorks();
}

std::string FaultyAgent::judgeFiles() {
  const std::string damage = usage_.damage(uploads());
  return damage.empty() ? usage_.duplicatesOrLosses(expected_.starts, uploads(), unusualOutput()) : damage;
}

std::string FaultyAgent::judgeUsageAtEnd() {
  return endsProperly_ ? judgeUsage(endedBySignal_ ? 1 : 2) : "";
}

std::string FaultyAgent::judgeUsage(int ends) {
  std::string missing = usage_.missingRecords(expected_.starts, ends, hasPipe_, uploads(), unusualOutput());
  if (!missing.empty()) return missing;
  // The listener's thread runs, so the thread that could not be started was that of the upload at launch.
  if (hasPipe_ && unusualOutput().contains("] cannot start a thread: ")) return {};
  return UsageCheck::unsent(expected_.pastFiles, injector_.hasFailed() ? injector_.fault().call : "",
                            uploads(), unusualOutput());
}

std::optional<Outcome> FaultyAgent::judgeEarlyEnd() {
  if (agent_.running()) return std::nullopt;
  const auto status = agent_.wait();
  const std::string said = message();
  if (status->signal)
    return Outcome{Survival::Failed, "signal " + std::to_string(*status->signal) + " " + said};
  if (status->code == 0 || !unusualOutput().reportsFatalError())
    return Outcome{Survival::Failed, "ended without saying why: " + said};
  const std::string wrong = judgeFiles();
  if (!wrong.empty()) return Outcome{Survival::Failed, "ended: " + wrong};
  return Outcome{Survival::EndedWithMessage, said};
}

// Checks for leaked descriptors and children while the agent runs.
std::string FaultyAgent::judgeLeaks() {
  const auto open = [&] { return openDescriptorsOf(agent_.pid()) - pooledThreadsOf(agent_.pid()); };
  descriptorsAtEnd_ = open();
  // Without the listener, its two descriptors of the pipe are missing.
  const long maxOpen = expected_.descriptors.value_or(std::numeric_limits<long>::max()) - (hasPipe_ ? 0 : 2);
  if (!waitUntil([&] { return open() <= maxOpen; }, 3s))
    return std::to_string(open()) + " descriptors for " + std::to_string(maxOpen);
  // The agent and its web view remain. Commands may still be running on a busy machine.
  if (!waitUntil([&] { return processes() <= processesBefore_ + 2; }))
    return "leaves children behind, of these processes:" + processNames();
  return {};
}

std::string FaultyAgent::judgeEnd() {
  // Use SIGTERM for every other fault. A fault that has not occurred yet may occur during the longer end by
  // menu.
  endedBySignal_ = injector_.hasFailed() && injector_.fault().which % 2 == 1;
  if (endedBySignal_) agent_.terminate();
  if (!endedBySignal_ && !host_.click("Quit Tovalin") && !agent_.wait(1s))
    return "can't be ended by its menu";
  const auto status = agent_.wait(8s);
  if (!status) return "does not end";
  if (status->signal) return "ended by signal " + std::to_string(*status->signal);
  endsProperly_ = status->code == 0;
  if (!endsProperly_ && !unusualOutput().reportsFatalError()) return "ended without saying why";
  return hasNoProcessesLeft() ? "" : "processes outlive it";
}

bool FaultyAgent::hasNoProcessesLeft() const {
  return waitUntil([&] { return processes() <= processesBefore_; });
}

std::vector<std::string> FaultyAgent::uploads() const {
  const std::size_t head = uploadBodyHead().size(), around = head + uploadBodyTail().size();
  std::vector<std::string> contents;
  const auto requests = server_->requests();
  for (std::size_t i = requestsBefore_; i < requests.size(); ++i) {
    const std::string& body = requests[i].body;
    if (requests[i].method == "POST") contents.push_back(body.substr(head, body.size() - around));
  }
  return contents;
}
