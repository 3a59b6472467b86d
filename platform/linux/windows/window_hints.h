#pragma once

class QWindow;

namespace platform {

// Tells the window manager which controls the window has: it can be moved, and closed where `closable`, but
// neither be made an icon nor larger. The window has been created in the window system. To be called before
// it is mapped and after each change of the window's flags, with which the toolkit writes hints of its own.
// Main thread.
void tellControls(QWindow& window, bool closable);

// Whether the window's user has made it an icon. False where it has only left the screen with its desktop, or
// for as long as the user looks at the bare desktop. Some round trips to the server. Main thread.
[[nodiscard]] bool isMadeIcon(QWindow& window);

}  // namespace platform
