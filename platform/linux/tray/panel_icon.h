#pragma once

#include <vector>

#include <QIcon>
#include <QPixmap>

namespace platform {

// Returns an icon that is drawn unscaled on each screen that one of its representations fits, and never
// larger than its size; Qt's own icon would be stretched to the panel's slot. `representations` holds bitmap
// representations of the same image in ascending order of device pixel ratio; at least one.
[[nodiscard]] QIcon panelIcon(std::vector<QPixmap> representations);

}  // namespace platform
