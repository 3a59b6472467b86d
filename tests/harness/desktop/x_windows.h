#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tests/harness/processes/wait_until.h"

namespace test_support {

// A program's window, in pixels from the display's upper left.
struct XWindow {
  std::uint32_t id = 0;
  std::string name = {};
  std::string className = {};
  int x = 0;  // of the content, without the window manager's frame
  int y = 0;
  int width = 0;
  int height = 0;
  int titleHeight = 0;                   // of the frame above the content; 0 without a frame
  bool managed = true;                   // false for menus and tooltips
  std::vector<std::string> states = {};  // for example "_NET_WM_STATE_ABOVE"
};

using WindowPredicate = std::function<bool(const XWindow&)>;

[[nodiscard]] WindowPredicate windowNamed(const std::string& name);
[[nodiscard]] WindowPredicate windowOfClass(const std::string& className);

// Returns all mapped windows with a name or a class, bottom to top.
[[nodiscard]] std::vector<XWindow> windowsOn(const std::string& display);

[[nodiscard]] std::optional<XWindow> waitForWindow(const std::string& display, const WindowPredicate& fits,
                                                   std::chrono::milliseconds timeout = kPatience);
[[nodiscard]] bool waitForNoWindow(const std::string& display, const WindowPredicate& fits,
                                   std::chrono::milliseconds timeout = kPatience);

// Returns the focused window according to the window manager.
[[nodiscard]] std::optional<std::uint32_t> activeWindowOn(const std::string& display);

// Asks the window manager to close a window, as its close button does. The program may refuse.
void requestClose(const std::string& display, std::uint32_t window);
// Sends the close request that a window manager sends to the program. Returns once the program can read it.
void deliverCloseRequest(const std::string& display, std::uint32_t window);

// Waits for the program of a window to answer _NET_WM_PING. Returns whether it did; by then its toolkit has
// read all earlier X events, and the server has received the requests that the toolkit makes at once for
// them.
[[nodiscard]] bool waitForAnswerToPing(const std::string& display, std::uint32_t window,
                                       std::chrono::milliseconds timeout = kPatience);

}  // namespace test_support
