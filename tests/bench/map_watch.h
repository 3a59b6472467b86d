#pragma once

#include <xcb/xcb.h>

#include <string>

#include "tests/harness/desktop/x_connection.h"

namespace bench {

// Sees a window of one size come and go on a display, by the server's own notices. A window counts as shown
// once its frame is: the window manager maps the frame behind the window, and nothing is to be seen before.
class MapWatch {
 public:
  MapWatch(const std::string& display, int width, int height);

  // Forgets what has happened so far.
  void forget();
  // False when it did not happen within a generous time.
  [[nodiscard]] bool waitUntilShown() { return waitFor(true); }
  [[nodiscard]] bool waitUntilHidden() { return waitFor(false); }

 private:
  [[nodiscard]] bool waitFor(bool shown);
  void take(const xcb_generic_event_t& event);

  test_support::XConnection display_;
  int width_;
  int height_;
  xcb_window_t window_ = XCB_WINDOW_NONE;
  xcb_window_t outermost_ = XCB_WINDOW_NONE;  // its frame, or itself as long as it has none
  bool shown_ = false;
};

}  // namespace bench
