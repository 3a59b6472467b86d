#include <signal.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <variant>
#include <vector>

#include <QCoreApplication>
#include <QSocketNotifier>

#include "companions/notification/notice.h"
#include "companions/notification/shown_notice.h"

namespace {

using companions::Notice;
using companions::ShownNotice;

constexpr int done = 0;
constexpr int failed = 1;
constexpr int refused = 2;

constexpr const char* help =
    "Usage: tovalinnotification -title TEXT -subtitle TEXT -message TEXT -closeLabel TEXT\n"
    "                           -actions TEXT -bundlepath FOLDER -timeout SECONDS\n"
    "\n"
    "Shows a desktop notification with two buttons, -actions and -closeLabel, and closes it after the\n"
    "timeout. The first button opens the updater of the application's bundle at FOLDER.\n"
    "All options are required, in any order.\n"
    "\n"
    "Exit status: 0 success, 1 the notification cannot be shown or the updater cannot be started, 2 invalid\n"
    "command line.\n";

int fail(int status, const std::string& reason) {
  std::fprintf(stderr, "tovalinnotification: %s\n", reason.c_str());
  return status;
}

// Blocks the signals that end the program and delivers them through a descriptor, because the notice must be
// closed first. The destructor restores the signal mask, which the updater inherits.
class EndingSignals {
 public:
  EndingSignals() {
    sigemptyset(&signals_);
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) sigaddset(&signals_, number);
    sigprocmask(SIG_BLOCK, &signals_, &before_);
    descriptor_ = ::signalfd(-1, &signals_, SFD_CLOEXEC | SFD_NONBLOCK);
  }
  ~EndingSignals() {
    if (descriptor_ >= 0) ::close(descriptor_);
    sigprocmask(SIG_SETMASK, &before_, nullptr);
  }
  EndingSignals(const EndingSignals&) = delete;
  EndingSignals& operator=(const EndingSignals&) = delete;

  [[nodiscard]] int descriptor() const { return descriptor_; }
  // Discards the pending signals, which would end the program when the mask is restored.
  void take() const {
    signalfd_siginfo signal{};
    while (::read(descriptor_, &signal, sizeof signal) > 0) continue;
  }

 private:
  sigset_t signals_{};
  sigset_t before_{};
  int descriptor_ = -1;
};

struct Outcome {
  int status = done;
  bool accepted = false;
  QString activationToken = {};
};

Outcome show(const Notice& notice, int& argc, char** argv) {
  const EndingSignals ending;
  if (ending.descriptor() < 0)
    return {.status = fail(failed, std::string("signalfd: ") + std::strerror(errno))};
  const QCoreApplication application(argc, argv);
  Outcome outcome;
  ShownNotice shown(notice, [&](ShownNotice::End end) {
    outcome.accepted = end == ShownNotice::End::Accepted;
    if (end == ShownNotice::End::Failed) outcome.status = fail(failed, shown.error().toStdString());
    QCoreApplication::quit();
  });
  const QSocketNotifier killed(ending.descriptor(), QSocketNotifier::Read);
  QObject::connect(&killed, &QSocketNotifier::activated, &shown, [&] {
    ending.take();
    shown.cancel();
  });
  shown.show();
  QCoreApplication::exec();
  outcome.activationToken = shown.activationToken();
  return outcome;
}

// Replaces this process by the updater. Returns only if that fails.
int openUpdater(const Notice& notice, const QString& activationToken) {
  if (!activationToken.isEmpty()) {
    ::setenv("XDG_ACTIVATION_TOKEN", activationToken.toUtf8().constData(), 1);
  }
  std::string program = companions::updaterProgram(notice);
  char* const arguments[] = {program.data(), nullptr};
  ::execv(program.c_str(), arguments);
  return fail(failed, program + ": " + std::strerror(errno));
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  if (arguments == std::vector<std::string>{"--help"}) return std::fputs(help, stdout) < 0 ? failed : done;
  const std::variant<Notice, std::string> parsed = companions::parseNotice(arguments);
  const auto* const notice = std::get_if<Notice>(&parsed);
  if (notice == nullptr) {
    return fail(refused, *std::get_if<std::string>(&parsed) + "\nsee tovalinnotification --help");
  }
  const Outcome outcome = show(*notice, argc, argv);
  return outcome.accepted ? openUpdater(*notice, outcome.activationToken) : outcome.status;
}
