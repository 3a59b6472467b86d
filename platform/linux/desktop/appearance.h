#pragma once

namespace platform {

// Gives menus and windows dark or light colours, where the toolkit's own style leaves that to the program: a
// desktop theme that brings its own colours is left alone. Main thread.
void applyAppearance(bool dark);

}  // namespace platform
