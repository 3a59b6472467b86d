#include <chrono>
#include <thread>

#include "app/nimbatrayAppDelegate.h"
#include "app/shell_commands.h"
#include "app/status_rules.h"
#include "ipc/command_pipe.h"
#include "notices/image_resize.h"
#include "platform/file_event_stream.h"
#include "platform/image.h"
#include "platform/menu.h"
#include "platform/shell.h"
#include "platform/status_item.h"
#include "platform/timer.h"
#include "platform/web_view.h"
#include "usage/usage_record.h"

using namespace std::chrono_literals;
using platform::MenuItem;

namespace {

std::shared_ptr<platform::Image> scaledImage(const char* name, double width, double height) {
  return imageResize(platform::imageNamed(name).get(), width, height);
}

}  // namespace

// The picture names are frozen: doc/compatibility.md.
void nimbatrayAppDelegate::buildStatusItem() {
  statusItem->setTitle("");
  statusOffImg = scaledImage("mount off.png", 20, 20);
  statusOnImg = scaledImage("mount on.png", 20, 20);
  statusOffImg_Reverse = scaledImage("mount off reverse.png", 20, 20);
  statusOnImg_Reverse = scaledImage("mount on reverse.png", 20, 20);
  statusItem->setHighlightMode(true);
  auto ownedMenu = std::make_unique<platform::Menu>();
  menu = ownedMenu.get();
  showStatusIcon();
  addMenuItems();
  statusItem->setMenu(std::move(ownedMenu));
  statusItem->notifyIfHidden(panelPatience, hiddenTitle, hiddenText);
}

// Titles and order are frozen: doc/compatibility.md.
void nimbatrayAppDelegate::addMenuItems() {
  const auto add = [this](const char* title, std::function<void()> action = nullptr) -> MenuItem& {
    return menu->addItem(std::make_unique<MenuItem>(title, std::move(action)));
  };
  add(switchTitleFor(bActive), [this] { togleswitch(); });
  menu->addItem(MenuItem::separatorItem());
  add("Like us on Facebook", [this] { secondsection_sub1(); });
  add("Share Tovalin on Facebook", [this] { secondsection_sub2(); });
  add("Share Tovalin on Twitter", [this] { secondsection_sub3(); });
  menu->addItem(MenuItem::separatorItem());
  add("Visit our website now", [this] { thirdsection_sub1(); });
  add("Review Tovalin", [this] { thirdsection_sub2(); });
  MenuItem& supportItem = add("Support Tovalin", [this] { support(); });
  supportItem.setEnabled(true);
  // The size is frozen: doc/compatibility.md.
  if (bUpdateEnabled) supportItem.setImage(scaledImage("n.png", 20, 17));
  menu->addItem(MenuItem::separatorItem());
  add("Quit Tovalin", [this] { quit(); });

  MenuItem& beacon = add("");
  beacon.setEnabled(true);
  auto view = std::make_unique<platform::WebView>(platform::Rect{0, 0, 1, 1});
  gaWebView = view.get();
  beacon.setView(std::move(view));
}

void nimbatrayAppDelegate::showStatusIcon() {
  statusItem->setToolTip(stateTextFor(bActive));
  const StatusIcon icon = statusIconFor(bActive, isDarkModeOn);
  switch (icon) {
    case StatusIcon::On:
      return statusItem->setImage(statusOnImg, symbolFor(icon));
    case StatusIcon::Off:
      return statusItem->setImage(statusOffImg, symbolFor(icon));
    case StatusIcon::OnReverse:
      return statusItem->setImage(statusOnImg_Reverse, symbolFor(icon));
    case StatusIcon::OffReverse:
      return statusItem->setImage(statusOffImg_Reverse, symbolFor(icon));
  }
}

// Flips the appearance at every notification, without reading the desktop's setting again.
void nimbatrayAppDelegate::themeChange() {
  isDarkModeOn = !isDarkModeOn;
  showStatusIcon();
}

// The menu title, not bActive, determines the direction of the switch.
void nimbatrayAppDelegate::togleswitch() {
  if (MenuItem* off = statusItem->menu()->itemWithTitle(switchOffTitle)) {
    off->setTitle(switchOnTitle);
    setAutomount(0);
    static_cast<void>(sendPipeMsg("-u"));
    notificateGA("clickaction", "turnoff");
  } else {
    if (MenuItem* on = statusItem->menu()->itemWithTitle(switchOnTitle)) on->setTitle(switchOffTitle);
    setAutomount(1);
    static_cast<void>(sendPipeMsg("-m"));
    notificateGA("clickaction", "turnon");
  }
  // Gives the main application time to mount or unmount before the next click is handled. Frozen:
  // doc/compatibility.md.
  std::this_thread::sleep_for(2s);
}

void nimbatrayAppDelegate::setAutomount(std::uint32_t active) {
  bActive = active;
  showStatusIcon();
}

// The order and the pause are frozen: doc/compatibility.md.
void nimbatrayAppDelegate::quit() {
  platform::system(killNotificationHelperCommand);
  TvlWriteQuitToFile();
  if (tvlDataTimer != nullptr) tvlDataTimer->invalidate();
  bThreadRun = false;
  notificateGA("clickaction", "quit");
  static_cast<void>(sendPipeMsg("-toff"));
  std::this_thread::sleep_for(1s);
  bannerList.reset();
  platform::system(unloadLaunchAgentCommand);
  platform::Application::sharedApplication().terminate();
}

// The order is frozen: doc/compatibility.md.
void nimbatrayAppDelegate::applicationWillTerminate() {
  platform::system(killNotificationHelperCommand);
  TvlWriteQuitToFile();
  if (tvlDataTimer != nullptr) tvlDataTimer->invalidate();
  if (stream != nullptr) stream->stop();
  stream.reset();
  statusOnImg.reset();
  statusOffImg.reset();
  statusOnImg_Reverse.reset();
  statusOffImg_Reverse.reset();
  statusItem.reset();
}
