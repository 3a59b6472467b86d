#pragma once

#include <functional>
#include <memory>
#include <string_view>

#include "platform/color.h"
#include "platform/geometry.h"
#include "platform/view.h"

namespace platform {

// The controls in a window's title bar.
enum class WindowStyle { Titled, TitledClosable };

// A window of fixed size. It lives as long as somebody keeps it, it is on screen, or it is hidden while the
// program is inactive. Main thread only.
class Window : public std::enable_shared_from_this<Window> {
 public:
  // Makes a window that is not yet on screen. `contentRect` is the room inside the frame, in the screen's
  // points; its size is kept. nullptr when there is none to be had.
  [[nodiscard]] static std::shared_ptr<Window> make(Rect contentRect, WindowStyle style);
  ~Window();
  Window(const Window&) = delete;
  Window& operator=(const Window&) = delete;

  void setTitle(std::string_view title);
  // The colour behind the window's views; their texts and bezels then follow it instead of the desktop's dark
  // or light.
  void setBackgroundColor(Color color);
  // Whether the window is off the screen while the user works in another program. It goes when the program
  // has been active and another gets the keyboard, and comes back when this program is active again. No modal
  // run ends by that.
  void setHidesOnDeactivate(bool hides);
  // Called once, when the window is about to be closed by its user or by `close`.
  void setWillClose(std::function<void()> willClose);
  // The view that fills the window; it lives as long as the window.
  [[nodiscard]] View& contentView() const;
  // Puts the window in the middle of the screen; AppKit centres it a little above that.
  void center();
  // Shows the window above the program's others and asks for the keyboard. A window that was closed stays
  // away.
  void makeKeyAndOrderFront();
  // Takes the window off the screen. No modal run ends by that.
  void orderOut();
  // Takes the window off the screen for good, with the sheets on it. Its user does the same with the close
  // control or Escape, where the style has that control and no sheet hangs on the window.
  void close();
  [[nodiscard]] bool isVisible() const;

  struct Impl;  // for the bodies of platform/ alone
  [[nodiscard]] Impl& impl() const { return *impl_; }

 private:
  Window(Rect contentRect, WindowStyle style);
  std::unique_ptr<Impl> impl_;
};

}  // namespace platform
