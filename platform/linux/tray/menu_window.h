#pragma once

#include <QLabel>
#include <QPointer>
#include <QWidget>

#include "platform/linux/tray/status_content.h"

namespace platform {

// A small window with the icon and the state, which opens the menu below itself and closes with it. For
// Wayland, with and without Xwayland: a menu needs a window of the program as its parent there, and a grab
// needs an input event that such a window has received. Instead of a grab, the window has the input focus,
// and closes the menu when it loses the focus. Main thread only.
class MenuWindow : public QWidget {
  Q_OBJECT
 public:
  MenuWindow();

  // Opens the menu of `content` as soon as the window has the focus. The menu is not owned and may end first.
  void open(const StatusContent& content);

 protected:
  bool event(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void openMenu();
  [[nodiscard]] QPoint placeOfMenu() const;
  void closeMenu();

  QLabel icon_;
  QLabel text_;
  QPointer<QMenu> menu_;
};

}  // namespace platform
