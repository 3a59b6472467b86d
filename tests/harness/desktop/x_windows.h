#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tests/harness/processes/wait_until.h"

namespace test_support {

// A program's window on a display, in pixels from the display's upper left.
struct XWindow {
  std::uint32_t id = 0;
  std::string name = {};
  std::string className = {};
  int x = 0;  // of the content, without the window manager's frame
  int y = 0;
  int width = 0;
  int height = 0;
  int titleHeight = 0;                   // of the frame above the content; 0 without one
  bool managed = true;                   // menus and tips are not
  std::vector<std::string> states = {};  // "_NET_WM_STATE_ABOVE" and the like
};

using WindowPredicate = std::function<bool(const XWindow&)>;

[[nodiscard]] WindowPredicate windowNamed(const std::string& name);
[[nodiscard]] WindowPredicate windowOfClass(const std::string& className);

// All windows with a name or a class that are on the screen, the lowest first.
[[nodiscard]] std::vector<XWindow> windowsOn(const std::string& display);

[[nodiscard]] std::optional<XWindow> waitForWindow(const std::string& display, const WindowPredicate& fits,
                                                   std::chrono::milliseconds timeout = kPatience);
[[nodiscard]] bool waitForNoWindow(const std::string& display, const WindowPredicate& fits,
                                   std::chrono::milliseconds timeout = kPatience);

// The window that has the keyboard, as the window manager tells it.
[[nodiscard]] std::optional<std::uint32_t> activeWindowOn(const std::string& display);

// Asks the window manager to close a window, as its close button does; the program may refuse.
void requestClose(const std::string& display, std::uint32_t window);
// What the window manager then tells the program; returns when the program has it to read.
void deliverCloseRequest(const std::string& display, std::uint32_t window);

}  // namespace test_support
