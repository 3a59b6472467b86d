#pragma once

#include <memory>
#include <string_view>

#include "platform/geometry.h"

namespace platform {

// A rectangle in a window that shows something or holds other views. Its parent view shares ownership.
// Clipped to its parent. Main thread only.
class View {
 public:
  // `frame` is in the parent's coordinates.
  explicit View(Rect frame);
  virtual ~View();
  View(const View&) = delete;
  View& operator=(const View&) = delete;

  [[nodiscard]] Rect frame() const;
  // The frame in the view's own coordinates, with the origin (0, 0).
  [[nodiscard]] Rect bounds() const;
  // Sets the accessible name.
  void setAccessibilityLabel(std::string_view label);
  // Adds `view` above the present subviews.
  void addSubview(std::shared_ptr<View> view);

  struct Impl;  // for implementations in platform/ only
  [[nodiscard]] Impl& impl() const { return *impl_; }

 protected:
  explicit View(std::unique_ptr<Impl> impl);

 private:
  std::unique_ptr<Impl> impl_;
};

}  // namespace platform
