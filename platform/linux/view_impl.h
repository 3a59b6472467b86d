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

// Where a rectangle counted from the lower left of a room of this height stands for the toolkit, which counts
// from the upper left in whole pixels.
[[nodiscard]] QRect fromTop(Rect rect, double roomHeight);

}  // namespace platform
