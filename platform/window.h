#pragma once

#include <memory>
#include <string_view>

#include "platform/geometry.h"
#include "platform/view.h"

namespace platform {

// The controls in a window's title bar.
enum class WindowStyle { Titled, TitledClosable };

// A window of fixed size. Main thread only.
class Window {
 public:
  // `contentRect` is the room inside the frame, in the screen's points; its size is kept.
  Window(Rect contentRect, WindowStyle style);
  ~Window();
  Window(const Window&) = delete;
  Window& operator=(const Window&) = delete;

  void setTitle(std::string_view title);
  // The view that fills the window; it lives as long as the window.
  [[nodiscard]] View& contentView() const;
  // Puts the window in the middle of the screen.
  void center();
  void makeKeyAndOrderFront();
  void orderOut();
  [[nodiscard]] bool isVisible() const;

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace platform
