#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/helpers/front_window.h"

namespace helpers {

// The X display that DISPLAY names: windows as the window manager reports them.
class XDesktop {
 public:
  XDesktop();

  // Returns a message for the user if there is no display or no usable window manager; otherwise an empty
  // string.
  [[nodiscard]] std::string problem() const;

  [[nodiscard]] ScreenState screenState() const;

  // Asks the window manager to activate the window. Returns false if the connection is lost.
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
