#pragma once

#include <QIcon>
#include <QPixmap>

namespace platform {

// Returns an icon that is shown at its own size. Qt requests menu icons of 16 points and would shrink a
// larger one.
[[nodiscard]] QIcon fixedSizeIcon(const QPixmap& pixmap);

}  // namespace platform
