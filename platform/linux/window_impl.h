#pragma once

#include <memory>

#include <QWidget>

#include "platform/view.h"
#include "platform/window.h"

namespace platform {

struct Window::Impl {
  Impl(Rect contentRect, WindowStyle style);

  // Whether this toolkit window is the window itself.
  [[nodiscard]] bool owns(const QWidget& window) const { return &window == &widget; }
  // Visible, and neither made an icon nor on another desktop.
  [[nodiscard]] bool isOnScreen() const;
  void setAboveOthers(bool above);
  // Gives up what keeps the window while it shows, once control is back in the run loop.
  void releaseOnceIdle();

  std::unique_ptr<View> content;
  QWidget& widget;
  std::shared_ptr<Window> onScreen;  // itself, while it shows
};

// Whether a toolkit window was made by Window, in contrast to menus and the panel's icon.
[[nodiscard]] bool isWindowOfProgram(const QWidget& window);

}  // namespace platform
