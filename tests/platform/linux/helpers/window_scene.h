#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "tests/harness/desktop/test_display.h"
#include "tests/harness/desktop/x_connection.h"

namespace helper_test {

// A _NET_ACTIVE_WINDOW request of a program to the window manager.
struct ActivationRequest {
  xcb_window_t window = 0;
  std::uint32_t source = 0;

  bool operator==(const ActivationRequest&) const = default;
};

// Windows on a display of its own. Each call waits until the window manager has handled it and returns false,
// or 0, after the timeout.
class WindowScene {
 public:
  [[nodiscard]] bool start(bool windowManager = true);

  // Opens a window of type _NET_WM_WINDOW_TYPE_`type` on the given desktop.
  [[nodiscard]] xcb_window_t open(const std::string& type, std::uint32_t desktop = 0);
  [[nodiscard]] bool hide(xcb_window_t window);
  [[nodiscard]] bool destroy(xcb_window_t window);

  // Sets the input focus without changing the stacking order.
  [[nodiscard]] bool focus(xcb_window_t window);

  // Sets _NET_ACTIVE_WINDOW instead of the window manager.
  void claimActive(xcb_window_t window);

  [[nodiscard]] bool becomesActive(xcb_window_t window) const;
  [[nodiscard]] bool hasInputFocus(xcb_window_t window) const;
  [[nodiscard]] std::vector<xcb_window_t> stacking() const;  // bottom to top

  // Returns the requests since the last call.
  [[nodiscard]] std::vector<ActivationRequest> takeRequests();

  [[nodiscard]] test_support::TestDisplay& display() { return display_; }

 private:
  void setNumber(xcb_window_t window, const std::string& name, xcb_atom_t type, std::uint32_t value);
  [[nodiscard]] xcb_atom_t intern(const std::string& name) const;
  [[nodiscard]] bool isManaged(xcb_window_t window) const;

  test_support::TestDisplay display_;
  std::unique_ptr<test_support::XConnection> x_;
};

}  // namespace helper_test
