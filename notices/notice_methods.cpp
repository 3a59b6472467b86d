#include "app/nimbatrayAppDelegate.h"
#include "notices/notice_window.h"
#include "platform/application.h"
#include "platform/log.h"
#include "platform/shell.h"
#include "platform/window.h"

namespace {

// Frozen: doc/compatibility.md.
constexpr const char* reactivateFrontApplicationCommand =
    "osascript -e 'tell application \"System Events\" \n set frontApp to name of first application whose "
    "frontmost is "
    "true \n tell application frontApp \n activate \n end tell \n end tell'";

// Blocks until the modal run is stopped.
void runNotice(const std::shared_ptr<platform::Window>& window, const char* method) {
  if (window == nullptr) {
    platform::systemLog(platform::LogPriority::Error,
                        std::string(method) + " alloc notification window failed");
    return;
  }
  window->center();
  window->makeKeyAndOrderFront();
  platform::Application::sharedApplication().runModalForWindow(window);
}

// Ends the innermost modal run, whichever notice it belongs to.
void hideNotice(platform::Window& window) {
  window.orderOut();
  platform::Application::sharedApplication().stopModal();
}

}  // namespace

void nimbatrayAppDelegate::notificationOn() {
  notiWindow = makeNoticeWindow(deviceAccessNotice);
  runNotice(notiWindow, "-[nimbatrayAppDelegate notificationOn]");
}

void nimbatrayAppDelegate::notificationOff() {
  if (notiWindow != nullptr) hideNotice(*notiWindow);
}

void nimbatrayAppDelegate::noticeEnumerateOn() {
  notiEnumWindow = makeNoticeWindow(loadingNotice);
  runNotice(notiEnumWindow, "-[nimbatrayAppDelegate noticeEnumerateOn]");
}

void nimbatrayAppDelegate::noticeEnumerateOff() {
  if (notiEnumWindow == nullptr) return;
  hideNotice(*notiEnumWindow);
  platform::system(reactivateFrontApplicationCommand);
}
