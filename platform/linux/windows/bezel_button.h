#pragma once

#include <QPushButton>

#include "platform/linux/windows/held_key.h"

namespace platform {

// A push button whose bezel may be smaller than itself. Main thread.
//
// The style keeps the picture of a bezel under the identity of the palette it was drawn with, and every
// widget of a window of its own colour has a palette of its own; here equal ones have one identity, for as
// long as few others were drawn since.
class BezelButton : public QPushButton {
 public:
  using QPushButton::QPushButton;

 protected:
  // What is drawn as the button and takes clicks.
  [[nodiscard]] virtual QRect bezel() const { return rect(); }

  void paintEvent(QPaintEvent* event) override;
  // A key that is held down presses the button once.
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;
  [[nodiscard]] bool hitButton(const QPoint& point) const override { return bezel().contains(point); }

 private:
  HeldKey heldKey_;
};

}  // namespace platform
