#pragma once

#include <memory>
#include <string_view>

#include "platform/geometry.h"

namespace platform {

// A rectangle in a window that shows something or holds other views. Shared by whoever keeps it and by the
// view that it was added to. What lies outside its parent is clipped. Main thread only.
class View {
 public:
  // `frame` is in the parent's points.
  explicit View(Rect frame);
  virtual ~View();
  View(const View&) = delete;
  View& operator=(const View&) = delete;

  [[nodiscard]] Rect frame() const;
  // The same room in its own points: origin (0, 0).
  [[nodiscard]] Rect bounds() const;
  // What people who can't see the view are told it is.
  void setAccessibilityLabel(std::string_view label);
  // Puts `view` above those already there.
  void addSubview(std::shared_ptr<View> view);

  struct Impl;  // for the bodies of platform/ alone
  [[nodiscard]] Impl& impl() const { return *impl_; }

 protected:
  explicit View(std::unique_ptr<Impl> impl);

 private:
  std::unique_ptr<Impl> impl_;
};

}  // namespace platform
