#pragma once

#include <cstdint>

namespace platform {

// Owner of the window with the input focus. `NoProgram`: no window has it; or the focused window has just
// left the screen and the window manager has not set the next one; or a panel, a menu or the like holds it
// temporarily. `Unknown`: the window manager does not set _NET_ACTIVE_WINDOW.
enum class InputFocusOwner { ThisProgram, OtherProgram, NoProgram, Unknown };

// Returns the current owner. Main thread only. Makes several round trips to the X server.
[[nodiscard]] InputFocusOwner inputFocusOwner();

// Returns the atom _NET_ACTIVE_WINDOW, the root-window property that names the focused window; 0 without an X
// connection. Main thread only. One round trip.
[[nodiscard]] std::uint32_t inputFocusProperty();

}  // namespace platform
