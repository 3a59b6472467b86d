#pragma once

#include <memory>
#include <string_view>

#include "platform/geometry.h"
#include "platform/view.h"

namespace platform {

// The controls in a window's title bar.
enum class WindowStyle { Titled, TitledClosable };

// A window of fixed size. It lives as long as somebody keeps it or it is on screen. Main thread only.
class Window : public std::enable_shared_from_this<Window> {
 public:
  // Makes a window that is not yet on screen. `contentRect` is the room inside the frame, in the screen's
  // points; its size is kept. nullptr when there is none to be had.
  [[nodiscard]] static std::shared_ptr<Window> make(Rect contentRect, WindowStyle style);
  ~Window();
  Window(const Window&) = delete;
  Window& operator=(const Window&) = delete;

  void setTitle(std::string_view title);
  // The view that fills the window; it lives as long as the window.
  [[nodiscard]] View& contentView() const;
  // Puts the content in the middle of the screen.
  void center();
  // Shows the window above the program's others and asks for the keyboard.
  void makeKeyAndOrderFront();
  // Takes the window off the screen. No modal run ends by that.
  void orderOut();
  [[nodiscard]] bool isVisible() const;

  struct Impl;  // for the bodies of platform/ alone
  [[nodiscard]] Impl& impl() const { return *impl_; }

 private:
  Window(Rect contentRect, WindowStyle style);
  std::unique_ptr<Impl> impl_;
};

}  // namespace platform
