#pragma once

#include <string>

namespace test_support {

// What a user's hands do on a display; pixels from its upper left. Each returns once the display has taken it
// in, which is before a program has seen it; false when the display is gone.
[[nodiscard]] bool moveMouse(const std::string& display, int x, int y);
[[nodiscard]] bool clickMouse(const std::string& display, int x, int y, int button = 1);
[[nodiscard]] bool pressMouse(const std::string& display, int x, int y, int button = 1);
[[nodiscard]] bool releaseMouse(const std::string& display, int x, int y, int button = 1);
[[nodiscard]] bool pressKey(const std::string& display, const std::string& key);  // "Escape", "alt+F4"
// From now on a key that stays down is pressed once. A busy machine may hold a key down for a while.
[[nodiscard]] bool stopKeyRepeat(const std::string& display);
[[nodiscard]] bool typeText(const std::string& display, const std::string& text);

}  // namespace test_support
