#pragma once

#include <QIcon>

namespace platform {

// The bundle's icon for windows, 48 pixels wide. It is read when the first window is created, because a
// program without windows does not need it. Main thread only.
[[nodiscard]] QIcon windowIcon();

}  // namespace platform
