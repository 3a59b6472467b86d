#pragma once

#include <string>

namespace test_support {

// Synthetic user input, in pixels from the display's upper left. Each function returns once the server has
// processed it, possibly before the program has; false if the display is gone.
[[nodiscard]] bool moveMouse(const std::string& display, int x, int y);
[[nodiscard]] bool clickMouse(const std::string& display, int x, int y, int button = 1);
[[nodiscard]] bool pressMouse(const std::string& display, int x, int y, int button = 1);
[[nodiscard]] bool releaseMouse(const std::string& display, int x, int y, int button = 1);
[[nodiscard]] bool pressKey(const std::string& display, const std::string& key);  // "Escape", "alt+F4"
// Turns off auto-repeat, because a key may be held down for long on a busy machine.
[[nodiscard]] bool stopKeyRepeat(const std::string& display);
[[nodiscard]] bool typeText(const std::string& display, const std::string& text);

}  // namespace test_support
