#pragma once

#include <cstdint>

namespace platform {

// Whose window the desktop's keyboard belongs to. Nobody's: none has it, or one that has just left the screen
// and after which the window manager has yet to name the next, or a panel's, a menu's or the like, which hold
// it only in passing. Unknown where the window manager doesn't tell.
enum class KeyboardHolder { ThisProgram, OtherProgram, Nobody, Unknown };

// Asks the display; some round trips to the server. Main thread.
[[nodiscard]] KeyboardHolder keyboardHolder();

// The atom of the property in which the window manager tells it; 0 where there is none.
[[nodiscard]] std::uint32_t keyboardHolderProperty();

}  // namespace platform
