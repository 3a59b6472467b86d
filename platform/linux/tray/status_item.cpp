#include "platform/status_item.h"

#include <QCoreApplication>
#include <QCursor>
#include <QSystemTrayIcon>

#include "platform/application.h"
#include "platform/linux/images/image_impl.h"
#include "platform/linux/tray/menu_impl.h"
#include "platform/linux/tray/panel_icon.h"
#include "platform/linux/tray/tray_host_watch.h"

namespace platform {

struct StatusItem::Impl {
  std::string title;
  std::shared_ptr<Image> image;
  std::unique_ptr<Menu> menu;
  bool panelFound = false;
  std::unique_ptr<QSystemTrayIcon> icon;
  std::unique_ptr<TrayHostWatch> watch;

  void show();
  void popUpMenu();
};

// Brings the panel's icon in line with what is to be shown.
void StatusItem::Impl::show() {
  if (!panelFound) return;
  if (icon == nullptr) {
    icon = std::make_unique<QSystemTrayIcon>();
    QObject::connect(icon.get(), &QSystemTrayIcon::activated, icon.get(),
                     [this](QSystemTrayIcon::ActivationReason reason) {
                       if (reason == QSystemTrayIcon::Trigger) popUpMenu();
                     });
  }
  const QString text = QString::fromStdString(title);
  icon->setToolTip(text.isEmpty() ? QCoreApplication::applicationName() : text);
  if (menu != nullptr) icon->setContextMenu(&menu->impl().widget);
  const bool hasPicture = image != nullptr && image->isValid();
  icon->setIcon(hasPicture ? panelIcon(image->impl().pixmaps()) : QIcon());
  icon->setVisible(hasPicture);
}

void StatusItem::Impl::popUpMenu() {
  if (menu == nullptr) return;
  QMenu& widget = menu->impl().widget;
  // A tray of the X screen tells where the icon is: the menu opens beside it and not over the panel.
  const QRect place = icon == nullptr ? QRect() : icon->geometry();
  if (place.isEmpty()) return widget.popup(QCursor::pos());
  const int height = widget.sizeHint().height();
  widget.popup(place.topLeft() + QPoint(0, place.top() >= height ? -height : place.height()));
}

StatusItem::StatusItem(double) : impl_(std::make_unique<Impl>()) {
  impl_->watch = std::make_unique<TrayHostWatch>([this] {
    impl_->panelFound = true;
    impl_->show();
  });
}

StatusItem::~StatusItem() {
  // Without a display there is nothing left to take the icon off, and touching the toolkit would end the
  // process here.
  if (!Application::sharedApplication().hasDisplay()) static_cast<void>(impl_.release());
}

void StatusItem::setTitle(std::string_view title) {
  impl_->title = title;
  impl_->show();
}

void StatusItem::setImage(std::shared_ptr<Image> image) {
  impl_->image = std::move(image);
  impl_->show();
}

// Panels of Linux desktops highlight their icons as they like.
void StatusItem::setHighlightMode(bool) {}

void StatusItem::setMenu(std::unique_ptr<Menu> menu) {
  impl_->menu = std::move(menu);
  impl_->show();
}

Menu* StatusItem::menu() const {
  return impl_->menu.get();
}

void StatusItem::popUpMenu() {
  impl_->popUpMenu();
}

}  // namespace platform
