#pragma once

class QWindow;

namespace platform {

// Sets _MOTIF_WM_HINTS: the window can be moved, and closed if `closable`, but neither minimised nor
// maximised. The native window must exist. Call it before the window is mapped and after each change of the
// window's flags, because Qt then writes its own hints. Main thread only.
void setMotifHints(QWindow& window, bool closable);

// Returns whether the user has minimised the window. Returns false if the window is on another desktop or the
// desktop is being shown. Main thread only. Makes several round trips to the server.
[[nodiscard]] bool isMinimizedByUser(QWindow& window);

}  // namespace platform
