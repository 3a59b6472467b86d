#include <chrono>
#include <string>

#include "app/bundle_watch.h"
#include "app/globals.h"
#include "app/launch_rules.h"
#include "app/nimbatrayAppDelegate.h"
#include "app/shell_commands.h"
#include "ipc/command_pipe.h"
#include "platform/bundle.h"
#include "platform/clock.h"
#include "platform/distributed_notification_center.h"
#include "platform/file_event_stream.h"
#include "platform/interface_style.h"
#include "platform/log.h"
#include "platform/shell.h"
#include "platform/status_item.h"
#include "platform/thread.h"
#include "platform/timer.h"
#include "usage/application_directory.h"
#include "usage/bundle_version.h"
#include "usage/property_file.h"
#include "usage/server_option.h"
#include "usage/usage_record.h"

using platform::LogPriority;
using namespace std::chrono_literals;

void nimbatrayAppDelegate::awakeFromNib() {
  platform::DistributedNotificationCenter::defaultCenter().addObserver(
      "AppleInterfaceThemeChangedNotification", [this] { themeChange(); });
}

// Later steps use fields that earlier ones set. The order is frozen: doc/compatibility.md.
void nimbatrayAppDelegate::applicationDidFinishLaunching() {
  readAppearance();
  statusItem = std::make_unique<platform::StatusItem>(platform::StatusItem::variableLength);
  readBundlePath();
  unloadUnlessAutorun();
  readAutomountState();
  readVersion();
  checkForUpdate();
  showUpdateNotice();
  buildStatusItem();
  static_cast<void>(sendPipeMsg("-ton"));
  stream = startBundleWatch(gBundlePath);
  sendLaunchBeacons();
  bsupportWindow = false;
  bThreadRun = true;
  // Makes files of earlier versions private before the first record is added.
  static_cast<void>(applicationDirectory());
  TvlWriteStartToFile();
  dataUploadURL = GetTovalinServerOption();
  bTvlDataUpload = false;
  platform::detachNewThread([this] { TvlDataFileUploadThread(); });
  strStartTime = platform::currentLocalTime();
  // The interval is frozen: doc/compatibility.md.
  tvlDataTimer = platform::Timer::scheduledTimer(60s, [this] { TvlCheckDataUpload(); });
  platform::detachNewThread([this] { notiThread(); });
}

void nimbatrayAppDelegate::applicationShouldHandleReopen() {
  if (statusItem != nullptr) statusItem->popUpMenu();
}

void nimbatrayAppDelegate::readAppearance() {
  isDarkModeOn = isDarkAppearance(platform::interfaceStyle());
}

// Logged with priority Error, here and in readAutomountState, so that the lines are kept whatever the
// system's log level. Support needs them.
void nimbatrayAppDelegate::readBundlePath() {
  const auto agent = platform::Bundle::mainBundle();
  const auto path = agent ? mainApplicationBundlePath(agent->bundlePath()) : std::nullopt;
  if (!path) {
    platform::fatalError(
        "not inside a main application's bundle (NAME.app/Contents/Resources/TovalinTray.app)");
  }
  if (path->size() >= sizeof gBundlePath) platform::fatalError("the bundle's path is too long: " + *path);
  path->copy(gBundlePath, sizeof gBundlePath - 1);
  platform::systemLog(LogPriority::Error, "Tovalin working path [" + *path + "]");
}

void nimbatrayAppDelegate::unloadUnlessAutorun() {
  std::uint32_t autorun = 0;
  if (GetProperty("Autorun", autorun) == 0 && autorun == 0) platform::system(unloadLaunchAgentCommand);
}

// If the file is unreadable, automount is on; if the file lacks the key, automount is off.
void nimbatrayAppDelegate::readAutomountState() {
  bActive = 0;
  if (GetProperty("Active", bActive) != 0) bActive = 1;
  platform::systemLog(LogPriority::Error, "bActive : " + std::to_string(bActive));
  platform::systemLog(LogPriority::Error, std::string("Dark Mode : ") + (isDarkModeOn ? "1" : "0"));
}

void nimbatrayAppDelegate::readVersion() {
  if (getBundleVersion(currentVersion) == 0) return;
  platform::systemLog(LogPriority::Error, bundleVersionFailure);
  recentVersion.reset();
}

void nimbatrayAppDelegate::showUpdateNotice() {
  if (!bUpdateEnabled) return;
  const auto command = updateNoticeCommand(gBundlePath);
  if (!command)
    platform::fatalError(std::string("the bundle's path is too long for the update notice: ") + gBundlePath);
  platform::system(*command);
}

void nimbatrayAppDelegate::sendLaunchBeacons() {
  notificateGA("applaunch", "start");
  notificateGA("applaunch", "version" + currentVersion.value_or("(null)"));
}
