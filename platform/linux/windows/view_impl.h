#pragma once

#include <chrono>
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
  std::chrono::steady_clock::time_point madeAt = std::chrono::steady_clock::now();
};

// Has the Tab key go through the views below `root` in the order in which they were made, and gives the
// keyboard to the first that takes it, unless one has it already.
void orderTabsAsMade(const View& root);

// Where a rectangle counted from the lower left of a room of this height stands for the toolkit, which counts
// from the upper left in whole pixels.
[[nodiscard]] QRect fromTop(Rect rect, double roomHeight);

}  // namespace platform
