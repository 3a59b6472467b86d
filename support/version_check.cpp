#include "app/globals.h"
#include "app/nimbatrayAppDelegate.h"
#include "platform/application.h"
#include "platform/log.h"
#include "platform/shell.h"
#include "support/server_fetch.h"
#include "support/updater_folder.h"
#include "support/version_rules.h"

int nimbatrayAppDelegate::getRecentVersion() {
  recentVersion.reset();
  // Frozen: doc/compatibility.md.
  const auto body = fetchFromServer("/product/nimba/binary/tovalin_recent_version_info.xml");
  if (body) recentVersion = versionInList(*body);
  return recentVersion ? 1 : 0;
}

void nimbatrayAppDelegate::versionCheck() {
  bUpdateEnabled = isNewerVersion(currentVersion, recentVersion);
}

void nimbatrayAppDelegate::checkForUpdate() {
  const bool fetched = getRecentVersion() != 0;
  if (fetched) versionCheck();
  isNetworkOnline = fetched;
}

void nimbatrayAppDelegate::updateBtnClick() {
  platform::systemLog(platform::LogPriority::Info,
                      "-[nimbatrayAppDelegate updateBtnClick:] update button click!");
  notificateGA("clickaction", "updatebtn");
  const auto command = copyUpdaterCommand(gBundlePath);
  if (!command)
    platform::fatalError(std::string("the bundle's path is too long to copy the updater: ") + gBundlePath);
  if (claimUpdaterFolder()) {
    platform::system(*command);
    dropEmptyUpdaterFolder();
    platform::system(std::string("open ").append(updaterFolder));
  }
  platform::Application::sharedApplication().stopModal();
}
