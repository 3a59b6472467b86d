#pragma once

#include <QDialog>

class QPainter;
class QPushButton;

namespace platform {

// The visible part of a sheet, which hangs from the title bar: a panel with round lower corners. Assistive
// technology sees it as a modal dialog. A QDialog for its handling of Return and Escape. Main thread only.
class SheetPanel : public QDialog {
 public:
  // The button that Escape presses; nullptr if Escape has no effect.
  QPushButton* escapeButton = nullptr;

  explicit SheetPanel(QWidget& sheet);

  void reject() override;

 protected:
  void paintEvent(QPaintEvent* event) override;
};

// Draws the shadow around a panel with this geometry.
void drawShadow(QPainter& painter, const QRect& panel);

}  // namespace platform
