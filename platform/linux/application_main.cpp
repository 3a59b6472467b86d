#include <signal.h>
#include <syslog.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include <QApplication>

#include "platform/application.h"
#include "platform/linux/application_impl.h"
#include "platform/linux/desktop_session.h"
#include "platform/linux/private_folder.h"
#include "platform/linux/signal_pipe.h"
#include "platform/linux/single_instance.h"
#include "platform/log.h"

namespace platform {
namespace {

void prepareProcess() {
  ::openlog("TovalinTray", LOG_PID, LOG_USER);
  // A reader that leaves between open and write is a failed write, not the end of the agent.
  ::signal(SIGPIPE, SIG_IGN);
  std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
}

void endOnFatalMessage(QtMsgType type, const QMessageLogContext&, const QString& text) {
  const std::string line = text.toStdString();
  if (type == QtFatalMsg && QGuiApplication::primaryScreen() == nullptr) {
    fatalError("cannot open the display \"" + qgetenv("DISPLAY").toStdString() + "\"");
  }
  if (type == QtFatalMsg) fatalError(line);
  std::fprintf(stderr, "%s\n", line.c_str());
}

int tellRunningInstance(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  SingleInstance::tellFirst();
  return 0;
}

// The menu and the windows need what Wayland keeps from programs (their own place, staying on top), so X is
// asked for.
std::vector<char*> toolkitArguments(char* program) {
  static char option[] = "-platform";
  static char xcb[] = "xcb";
  if (qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) return {program};
  return {program, option, xcb};
}

void describeApplication() {
  // Not the display name: the toolkit would put that behind the title of each window.
  QCoreApplication::setApplicationName(QStringLiteral("Tovalin"));
  QGuiApplication::setDesktopFileName(QStringLiteral("com.kesmoor.tovalintrayagent"));
  QGuiApplication::setQuitOnLastWindowClosed(false);
}

// The toolkit ends the process with exit(1) when the X server goes away.
void endWithoutDisplay() {
  Application::Impl& application = Application::sharedApplication().impl();
  application.hasDisplay = false;
  application.end(1);
}

}  // namespace

int ApplicationMain(int argc, char** argv) {
  prepareProcess();
  const ApplicationRegistration& program = applicationRegistration();
  const std::vector<std::string_view> arguments(argv + std::min(argc, 1), argv + argc);
  if (const auto status = program.handleArguments(arguments)) return *status;

  SingleInstance instance;
  if (!instance.isFirst()) return tellRunningInstance(argc, argv);

  qInstallMessageHandler(endOnFatalMessage);
  describeApplication();
  std::vector<char*> toolkitArgv = toolkitArguments(argv[0]);
  int toolkitArgc = static_cast<int>(toolkitArgv.size());
  const QApplication toolkit(toolkitArgc, toolkitArgv.data());

  Application& application = Application::sharedApplication();
  const auto delegate = program.makeDelegate();
  application.impl().delegate = delegate.get();
  delegate->awakeFromNib();

  std::atexit(endWithoutDisplay);
  const SignalPipe signals([&application] { application.terminate(); });
  const DesktopSession session([&application] { application.terminate(); });
  instance.listen([&] { delegate->applicationShouldHandleReopen(); });
  installHelpers();
  application.performOnMainThread([&] { delegate->applicationDidFinishLaunching(); });
  QApplication::exec();
  application.terminate();
}

}  // namespace platform
