#include "platform/status_item.h"

#include <optional>

#include <QCoreApplication>
#include <QCursor>
#include <QGuiApplication>
#include <QScreen>

#include "platform/application.h"
#include "platform/bundle.h"
#include "platform/linux/desktop/x_requests.h"
#include "platform/linux/tray/hidden_icon_notice.h"
#include "platform/linux/tray/menu_impl.h"
#include "platform/linux/tray/menu_window.h"
#include "platform/linux/tray/screen_pixels.h"
#include "platform/linux/tray/screen_tray_icon.h"
#include "platform/linux/tray/status_notifier_item.h"
#include "platform/linux/tray/tray_host_watch.h"

namespace platform {
namespace {

// Xwayland gets no input while a window of Wayland has the focus.
bool isOnWayland() {
  return QGuiApplication::platformName() == QLatin1StringView("wayland") || isXwayland();
}

QString folderOfSymbols() {
  const auto bundle = Bundle::mainBundle();
  return bundle ? QString::fromStdString(bundle->pathForResource("icons")) : QString();
}

std::vector<ScaledScreen> scaledScreens() {
  std::vector<ScaledScreen> screens;
  for (const QScreen* screen : QGuiApplication::screens())
    screens.push_back({screen->geometry(), screen->devicePixelRatio()});
  return screens;
}

}  // namespace

struct StatusItem::Impl {
  std::string title;
  std::string toolTip;
  std::shared_ptr<Image> image;
  std::string symbol;
  std::unique_ptr<Menu> menu;
  TrayPlace place = TrayPlace::Nowhere;
  // The menu must outlive both icons.
  std::unique_ptr<MenuWindow> menuWindow;
  std::unique_ptr<ScreenTrayIcon> onScreen;
  std::unique_ptr<StatusNotifierItem> onBus;
  std::unique_ptr<TrayHostWatch> watch;
  std::unique_ptr<HiddenIconNotice> hiddenNotice;

  void findPlace();
  void show();
  void popUpMenu();
  void popUpMenuAt(QPoint pixel);
  void openMenuWindow();
  [[nodiscard]] StatusContent content() const;
};

void StatusItem::Impl::findPlace() {
  const bool trayOnScreen = watch->busHost() == BusHost::Absent && watch->trayOnScreen();
  place = placeFor(place, watch->busHost(), trayOnScreen);
  show();
  if (hiddenNotice != nullptr) hiddenNotice->setHidden(watch->busHost() != BusHost::Present && !trayOnScreen);
}

StatusContent StatusItem::Impl::content() const {
  const std::string& text = toolTip.empty() ? title : toolTip;
  const SymbolSource source = watch->symbolSource();
  const QString folder = folderOfSymbols();
  return {.text = text.empty() ? QCoreApplication::applicationName() : QString::fromStdString(text),
          .image = image,
          .symbol = symbolIn(source, folder, QString::fromStdString(symbol)),
          .symbolFolder = source == SymbolSource::Folder ? folder : QString(),
          .menu = menu == nullptr ? nullptr : &menu->impl().widget};
}

// Updates the icon in the panel. Removes an icon in another kind of panel first, so that there are never two.
void StatusItem::Impl::show() {
  if (place != TrayPlace::Bus) onBus.reset();
  if (place != TrayPlace::Screen) onScreen.reset();
  if (place == TrayPlace::Bus) {
    if (onBus == nullptr)
      onBus = std::make_unique<StatusNotifierItem>(
          [this](std::optional<QPoint> pixel) { pixel ? popUpMenuAt(*pixel) : popUpMenu(); });
    onBus->show(content(), watch->watcherNumber());
  }
  if (place == TrayPlace::Screen) {
    if (onScreen == nullptr) onScreen = std::make_unique<ScreenTrayIcon>([this] { popUpMenu(); });
    onScreen->show(content());
  }
}

void StatusItem::Impl::popUpMenu() {
  if (menu == nullptr) return;
  if (isOnWayland()) return openMenuWindow();
  QMenu& widget = menu->impl().widget;
  // An X tray reports the icon's position: opens the menu beside the icon, not over the panel.
  const QRect icon = onScreen == nullptr ? QRect() : onScreen->geometry();
  if (icon.isEmpty()) return widget.popup(QCursor::pos());
  const int height = widget.sizeHint().height();
  widget.popup(icon.topLeft() + QPoint(0, icon.top() >= height ? -height : icon.height()));
}

void StatusItem::Impl::popUpMenuAt(QPoint pixel) {
  if (menu == nullptr) return;
  if (isOnWayland()) return openMenuWindow();
  menu->impl().widget.popup(pointAtPixel(pixel, scaledScreens()).value_or(QCursor::pos()));
}

void StatusItem::Impl::openMenuWindow() {
  if (menuWindow == nullptr) menuWindow = std::make_unique<MenuWindow>();
  menuWindow->open(content());
}

StatusItem::StatusItem(double) : impl_(std::make_unique<Impl>()) {
  impl_->watch = std::make_unique<TrayHostWatch>([this] { impl_->findPlace(); });
}

StatusItem::~StatusItem() {
  // Without a display the icon cannot be removed, and calling Qt would end the process here.
  if (!Application::sharedApplication().hasDisplay()) static_cast<void>(impl_.release());
}

void StatusItem::setTitle(std::string_view title) {
  impl_->title = title;
  impl_->show();
}

void StatusItem::setToolTip(std::string_view text) {
  impl_->toolTip = text;
  impl_->show();
}

void StatusItem::setImage(std::shared_ptr<Image> image, std::string_view symbol) {
  impl_->image = std::move(image);
  impl_->symbol = symbol;
  impl_->show();
}

// No-op: Linux panels highlight their icons themselves.
void StatusItem::setHighlightMode(bool) {}

void StatusItem::setMenu(std::unique_ptr<Menu> menu) {
  // Keeps the previous menu until the icons refer to the new one.
  const std::unique_ptr<Menu> before = std::exchange(impl_->menu, std::move(menu));
  impl_->show();
}

Menu* StatusItem::menu() const {
  return impl_->menu.get();
}

void StatusItem::popUpMenu() {
  impl_->popUpMenu();
}

void StatusItem::notifyIfHidden(std::chrono::milliseconds patience, std::string_view title,
                                std::string_view text) {
  impl_->hiddenNotice = std::make_unique<HiddenIconNotice>(patience, std::string(title), std::string(text));
  impl_->findPlace();
}

}  // namespace platform
