#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "tests/harness/desktop/test_display.h"
#include "tests/harness/desktop/x_connection.h"

namespace helper_test {

// What a program has asked the window manager for.
struct ActivationRequest {
  xcb_window_t window = 0;
  std::uint32_t source = 0;

  bool operator==(const ActivationRequest&) const = default;
};

// Real windows on a display of the test's own. Each call returns once the window manager has done its part;
// false when it never did.
class WindowScene {
 public:
  [[nodiscard]] bool start(bool windowManager = true);

  // A window on the desktop with this number, of this kind ("NORMAL", "DOCK" ...).
  [[nodiscard]] xcb_window_t open(const std::string& type, std::uint32_t desktop = 0);
  [[nodiscard]] bool hide(xcb_window_t window);
  [[nodiscard]] bool destroy(xcb_window_t window);

  // Gives the window the keyboard and leaves it where it stands among the others.
  [[nodiscard]] bool focus(xcb_window_t window);

  // Writes into _NET_ACTIVE_WINDOW what the window manager has not.
  void claimActive(xcb_window_t window);

  [[nodiscard]] bool becomesActive(xcb_window_t window) const;
  [[nodiscard]] bool hasKeyboard(xcb_window_t window) const;
  [[nodiscard]] std::vector<xcb_window_t> stacking() const;  // bottom to top

  // What has been asked for since the last call.
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
