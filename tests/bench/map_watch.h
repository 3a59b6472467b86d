#pragma once

#include <xcb/xcb.h>

#include <string>

#include "tests/harness/desktop/x_connection.h"

namespace bench {

// Reports when a window of the given size is mapped and unmapped, from X events. A window counts as shown
// when its frame is mapped: the window manager maps the frame after the window.
class MapWatch {
 public:
  MapWatch(const std::string& display, int width, int height);

  // Discards the events so far.
  void forget();
  // Return false after the timeout.
  [[nodiscard]] bool waitUntilShown() { return waitFor(true); }
  [[nodiscard]] bool waitUntilHidden() { return waitFor(false); }

 private:
  [[nodiscard]] bool waitFor(bool shown);
  void take(const xcb_generic_event_t& event);

  test_support::XConnection display_;
  int width_;
  int height_;
  xcb_window_t window_ = XCB_WINDOW_NONE;
  xcb_window_t outermost_ = XCB_WINDOW_NONE;  // its frame, or the window itself without one
  bool shown_ = false;
};

}  // namespace bench
