#pragma once

namespace platform {

// Sets a dark or light palette for menus and windows. Main thread only. Has an effect only with the Fusion
// style, which leaves the colours to the program; a desktop theme with its own colours stays unchanged.
void applyAppearance(bool dark);

}  // namespace platform
