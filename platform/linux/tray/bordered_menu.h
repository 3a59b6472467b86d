#pragma once

#include <QMenu>

namespace platform {

// A menu with a border that is visible on the menu and on a desktop of the same brightness. The Fusion
// style's own border is nearly black in the dark appearance, and a highlighted item covers it. Other styles
// draw their borders themselves. Main thread only.
class BorderedMenu : public QMenu {
 public:
  using QMenu::QMenu;

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace platform
