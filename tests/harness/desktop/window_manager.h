#pragma once

#include <string>

namespace test_support {

// Returns once the display's window manager manages new windows and gives them the input focus, which is
// later than its announcement on the root window. Returns false if none starts.
[[nodiscard]] bool waitForWindowManager(const std::string& display);

}  // namespace test_support
