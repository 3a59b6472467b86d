#include <filesystem>

#include "tests/faults/sessions.h"

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

// Logged if the second process cannot reach the first one without a bus.
constexpr const char* noMenu = "its menu cannot be opened";

}  // namespace

void SecondStartSession::play() {
  run_.environment_["LD_PRELOAD"] = std::nullopt;
  run_.launchCompletely();
  test_support::ChildOptions options;
  options.environment = run_.environment_;
  options.environment["LD_PRELOAD"] = TOVALIN_FAILING_CALLS;
  options.error = test_support::Redirection::pipe();
  run_.injector_.injectFailures();
  ASSERT_TRUE(second_.start({run_.agentProgram()}, options));
}

Outcome SecondStartSession::judge() {
  Outcome second = judgeSecond();
  if (second.survival == Survival::Failed) return second;
  const std::string harm = harmToFirst();
  if (!harm.empty()) return {Survival::Failed, harm};
  const Outcome first = run_.judge();
  if (first.survival != Survival::Served) return {Survival::Failed, "the first agent: " + first.detail};
  return second;
}

Outcome SecondStartSession::judgeSecond() {
  const auto status = second_.wait(15s);
  second_.kill();
  run_.addToConsole(second_.takeErrorOutput());
  if (!status) return {Survival::Failed, "the second start does not end"};
  if (status->signal)
    return {Survival::Failed, "the second start: signal " + std::to_string(*status->signal)};
  const bool opened =
      test_support::waitForWindow(run_.display_.name(), isMenu, status->code == 0 ? 5s : 0s).has_value();
  if (opened) closeMenu();
  const std::string said = run_.message();
  const bool saysWhy =
      status->code == 0 ? run_.unusualOutput().contains(noMenu) : run_.unusualOutput().reportsFatalError();
  if (!saysWhy && (status->code != 0 || !opened))
    return {Survival::Failed, "the second start opens no menu and reports no reason: " +
                                  std::to_string(*status->code) + " " + said};
  return {opened ? Survival::Served : Survival::EndedWithMessage, said};
}

void SecondStartSession::closeMenu() {
  static_cast<void>(run_.becomesTrue([&] {
    run_.press("Escape");
    return test_support::waitForNoWindow(run_.display_.name(), isMenu, 100ms);
  }));
}

std::string SecondStartSession::harmToFirst() {
  for (const char* name : {"launchctl", "open", "osascript"}) {
    if (!fs::exists(std::string("/tmp/runtime/TovalinTray/helpers/") + name))
      return std::string("the first agent has lost its helper ") + name;
  }
  return run_.count("pipe: -ton") == 1 ? "" : "the second start sends \"-ton\"";
}
