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

// A window of fixed size. It exists while a reference to it exists, while it is visible, and while it is
// hidden because the program is inactive. Main thread only.
class Window : public std::enable_shared_from_this<Window> {
 public:
  // Creates a hidden window. `contentRect` is the content area in screen coordinates; its size is fixed.
  // Returns nullptr if no window can be created.
  [[nodiscard]] static std::shared_ptr<Window> make(Rect contentRect, WindowStyle style);
  ~Window();
  Window(const Window&) = delete;
  Window& operator=(const Window&) = delete;

  void setTitle(std::string_view title);
  // Sets the background colour. Text and bezels then follow this colour instead of the desktop's appearance.
  void setBackgroundColor(Color color);
  // Whether the window is hidden while another program is active. The window is hidden when the program loses
  // the input focus after it was active, and shown again when the program becomes active. This does not end a
  // modal run.
  void setHidesOnDeactivate(bool hides);
  // Sets a function that is called once, before the user or `close` closes the window.
  void setWillClose(std::function<void()> willClose);
  // Returns the view that fills the window. The window owns it.
  [[nodiscard]] View& contentView() const;
  // Centres the window on the screen. AppKit places it slightly above the centre.
  void center();
  // Shows the window above the program's other windows and requests the input focus. Does nothing if the
  // window was closed.
  void makeKeyAndOrderFront();
  // Hides the window. This does not end a modal run.
  void orderOut();
  // Hides the window and its sheets permanently. The user can do the same with the close control or Escape if
  // the style has a close control and the window has no sheet.
  void close();
  [[nodiscard]] bool isVisible() const;

  struct Impl;  // for implementations in platform/ only
  [[nodiscard]] Impl& impl() const { return *impl_; }

 private:
  Window(Rect contentRect, WindowStyle style);
  std::unique_ptr<Impl> impl_;
};

}  // namespace platform
