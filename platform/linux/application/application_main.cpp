#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <QApplication>

#include "platform/application.h"
#include "platform/bundle.h"
#include "platform/helper_folder.h"
#include "platform/linux/application/application_impl.h"
#include "platform/linux/application/desktop_session.h"
#include "platform/linux/application/process_start.h"
#include "platform/linux/application/signal_pipe.h"
#include "platform/linux/application/single_instance.h"
#include "platform/linux/desktop/session_bus_guard.h"
#include "platform/linux/processes/qt_runtime_folder.h"
#include "platform/linux/windows/window_icon.h"
#include "platform/log.h"

namespace platform {
namespace {

// Before the first screen exists, a fatal Qt message almost always means that the display cannot be opened.
std::string startFailureText(const std::string& qtText) {
  if (qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) return qtText;
  if (!qEnvironmentVariableIsSet("DISPLAY")) return "cannot open a display: DISPLAY is not set";
  return "cannot open the display \"" + qgetenv("DISPLAY").toStdString() + "\"";
}

void handleQtMessage(QtMsgType type, const QMessageLogContext&, const QString& text) {
  const std::string line = text.toStdString();
  if (type == QtFatalMsg)
    fatalError(QGuiApplication::primaryScreen() == nullptr ? startFailureText(line) : line);
  std::fprintf(stderr, "TovalinTray: %s\n", line.c_str());
}

// Activates the running instance and returns 0. If that instance ends before it answers, restarts this
// process with execv so that it becomes the first instance.
int notifyRunningInstance(SingleInstance& instance, int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  if (instance.notifyFirst()) return 0;
  ::execv("/proc/self/exe", argv);
  fatalError(std::string("cannot restart: ") + std::strerror(errno));
}

// Requests X11 unless QT_QPA_PLATFORM is set: under Wayland a client can neither position its windows nor
// keep them on top.
std::vector<char*> qtArguments(char* program) {
  static char option[] = "-platform";
  static char platforms[] = "xcb;wayland";
  if (qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) return {program};
  return {program, option, platforms};
}

void describeApplication() {
  // Not setApplicationDisplayName: Qt appends the display name to the title of every window.
  QCoreApplication::setApplicationName(QStringLiteral("Tovalin"));
  QGuiApplication::setDesktopFileName(QStringLiteral("com.kesmoor.tovalintrayagent"));
  QGuiApplication::setQuitOnLastWindowClosed(false);
}

// Qt calls exit(1) when it loses the connection to the X server. Registered with atexit.
void endWithoutDisplay() {
  Application::Impl& application = Application::sharedApplication().impl();
  application.hasDisplay = false;
  application.end(1);
}

}  // namespace

int ApplicationMain(int argc, char** argv) {
  prepareProcess();
  // Read before any blocking call, so that Info.plist matches this executable even if the bundle is updated
  // meanwhile.
  static_cast<void>(Bundle::mainInfoDictionary());
  const ApplicationRegistration& program = applicationRegistration();
  const std::vector<std::string_view> arguments(argv + std::min(argc, 1), argv + argc);
  if (const auto status = program.handleArguments(arguments)) return *status;

  avoidUnusableSessionBus();
  qInstallMessageHandler(handleQtMessage);
  SingleInstance instance;
  if (!instance.isFirst()) return notifyRunningInstance(instance, argc, argv);

  describeApplication();
  std::vector<char*> qtArgv = qtArguments(argv[0]);
  int qtArgc = static_cast<int>(qtArgv.size());
  std::optional<QtRuntimeFolder> runtimeFolder(std::in_place);
  const QApplication qtApplication(qtArgc, qtArgv.data());
  runtimeFolder.reset();
  QGuiApplication::setWindowIcon(windowIcon());

  const auto delegate = program.makeDelegate();
  if (!instance.listen([&] { delegate->applicationShouldHandleReopen(); })) {
    instance.deferToNameOwner();
    return 0;
  }
  Application& application = Application::sharedApplication();
  application.impl().delegate = delegate.get();
  delegate->awakeFromNib();

  std::atexit(endWithoutDisplay);
  const SignalPipe signals([&application] { application.terminate(); });
  const DesktopSession session([&application] { application.terminate(); });
  installHelpers();
  application.performOnMainThread([&] { delegate->applicationDidFinishLaunching(); });
  QApplication::exec();
  application.terminate();
}

}  // namespace platform
