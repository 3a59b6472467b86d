#pragma once

#include <QIcon>
#include <QPixmap>

namespace platform {

// An icon that is shown at its own size. The toolkit asks menu icons for 16 points and would shrink a larger
// one.
[[nodiscard]] QIcon fixedSizeIcon(const QPixmap& pixmap);

}  // namespace platform
