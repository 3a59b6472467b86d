#include "platform/linux/tray/menu_window.h"

#include <algorithm>

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QMenu>
#include <QWindow>

#include "platform/linux/images/image_impl.h"

namespace platform {

MenuWindow::MenuWindow()
    : QWidget(nullptr, Qt::Tool | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowCloseButtonHint) {
  setWindowTitle(QCoreApplication::applicationName());
  auto* row = new QHBoxLayout(this);
  row->addWidget(&icon_);
  row->addWidget(&text_, 1);
}

void MenuWindow::open(const StatusContent& content) {
  menu_ = content.menu;
  if (menu_ == nullptr) return static_cast<void>(close());
  connect(menu_, &QMenu::aboutToHide, this, &QWidget::close, Qt::UniqueConnection);
  icon_.setPixmap(content.hasIcon() ? content.image->impl().pixmap() : QPixmap());
  text_.setText(content.text);
  // Tiling window managers leave a window of fixed size as it is.
  setFixedSize(std::max(menu_->sizeHint().width(), sizeHint().width()), sizeHint().height());
  show();
  activateWindow();
  if (isActiveWindow()) openMenu();
}

// The menu is a popup for Qt Widgets, which send it the keys. Qt's Wayland plugin would make a popup without
// a grab a window of its own, but not a tooltip.
void MenuWindow::openMenu() {
  if (menu_ == nullptr || menu_->isVisible()) return;
  menu_->setMinimumWidth(width());
  menu_->winId();
  menu_->windowHandle()->setTransientParent(windowHandle());
  menu_->windowHandle()->setFlags(menu_->windowFlags() | Qt::ToolTip);
  menu_->popup(placeOfMenu());
}

QPoint MenuWindow::placeOfMenu() const {
  return mapToGlobal(QPoint(0, height()));
}

void MenuWindow::closeMenu() {
  if (menu_ != nullptr) menu_->close();
}

// Without the focus the window has no menu.
void MenuWindow::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) close();
}

bool MenuWindow::event(QEvent* event) {
  if (event->type() == QEvent::WindowActivate) openMenu();
  // Window managers may place the window after they have given it the focus.
  if (event->type() == QEvent::Move && menu_ != nullptr) menu_->move(placeOfMenu());
  if (event->type() == QEvent::WindowDeactivate || event->type() == QEvent::Close) closeMenu();
  return QWidget::event(event);
}

}  // namespace platform
