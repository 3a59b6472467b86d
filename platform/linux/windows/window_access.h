#pragma once

namespace platform {

// Describes the windows to assistive technology: a window that the user cannot close is an alert, any other
// one a dialog; the window of the innermost modal run is modal. Screen readers read the texts of an alert
// when it becomes the active window; Qt 6.4 sends no other event that they would read. Main thread only.
void describeWindowsToAccessibility();

}  // namespace platform
