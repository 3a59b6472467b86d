#pragma once

#include <string>

namespace test_support {

// Returns when the window manager of this display takes windows in and gives them the keyboard, which is a
// while after it names itself there. False when none comes up.
[[nodiscard]] bool waitForWindowManager(const std::string& display);

}  // namespace test_support
