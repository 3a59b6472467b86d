#pragma once

#include <QPushButton>

#include "platform/linux/windows/focus_ring.h"
#include "platform/linux/windows/key_repeat.h"

namespace platform {

// A push button whose bezel may be smaller than the widget. Main thread only.
//
// Painting uses one shared palette for equal palettes: the style caches bezel images by QPalette::cacheKey(),
// and every widget in a window with its own background colour has its own key. At most eight palettes are
// cached.
class BezelButton : public QPushButton {
 public:
  using QPushButton::QPushButton;

  // Space around the bezel in which the focus ring is drawn.
  static constexpr int ringMargin = focusRingWidth + focusRingGap;
  static constexpr int bezelHeight = 32;

 protected:
  // Returns the rectangle, in widget coordinates, that is painted as the button and accepts clicks. At least
  // `ringMargin` smaller than the widget on each side.
  [[nodiscard]] virtual QRect bezel() const {
    return rect().adjusted(ringMargin, ringMargin, -ringMargin, -ringMargin);
  }

  void paintEvent(QPaintEvent* event) override;
  // A key that is held down clicks the button once.
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;
  [[nodiscard]] bool hitButton(const QPoint& point) const override { return bezel().contains(point); }

 private:
  KeyRepeat keyRepeat_;
};

}  // namespace platform
