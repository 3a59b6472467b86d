#pragma once

#include <memory>
#include <vector>

#include <QWidget>

#include "platform/view.h"

namespace platform {

struct View::Impl {
  Impl(Rect rect, std::unique_ptr<QWidget> body);
  ~Impl();

  Rect frame;
  std::vector<std::shared_ptr<View>> subviews;
  std::unique_ptr<QWidget> widget;
};

// Sets the Tab order of the views below `root` to their order on the screen: top to bottom, then left to
// right. Focuses the first enabled button, or without one the first enabled view that accepts the focus,
// unless a widget of the window already has it.
void setTabOrderByPlace(const View& root);

// Converts a rectangle with its origin at the lower left of a parent of this height to Qt's coordinates:
// origin at the upper left, whole pixels.
[[nodiscard]] QRect toQtRect(Rect rect, double parentHeight);

}  // namespace platform
