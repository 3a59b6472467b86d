#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/helpers/front_window.h"

namespace helpers {

// The windows of the X display that DISPLAY names, as its window manager tells of them.
class XDesktop {
 public:
  XDesktop();

  // In a sentence for the user why nothing can be asked or done here; empty when all is well.
  [[nodiscard]] std::string problem() const;

  [[nodiscard]] ScreenState screenState() const;

  // Asks the window manager to bring the window forward. False when the display has gone.
  [[nodiscard]] bool activate(Window window) const;

 private:
  struct Disconnect {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
  };

  [[nodiscard]] bool hasWindowManager() const;
  [[nodiscard]] ManagedWindow describe(Window window) const;
  [[nodiscard]] bool isViewable(Window window) const;
  [[nodiscard]] std::vector<std::uint32_t> property(Window window, std::string_view name) const;
  [[nodiscard]] std::uint32_t firstOf(Window window, std::string_view name) const;
  [[nodiscard]] xcb_atom_t atom(std::string_view name) const;
  [[nodiscard]] std::string nameOf(xcb_atom_t atom) const;

  std::unique_ptr<xcb_connection_t, Disconnect> connection_;
  Window root_ = 0;
};

}  // namespace helpers
