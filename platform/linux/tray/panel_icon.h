#pragma once

#include <vector>

#include <QIcon>
#include <QPixmap>

namespace platform {

// An icon that is shown pixel by pixel on each screen that one of its forms fits, and never larger than they
// measure. The toolkit's own icon is stretched to all the room that the panel gives. `forms` are the same
// picture at rising numbers of pixels to the point; at least one.
[[nodiscard]] QIcon panelIcon(std::vector<QPixmap> forms);

}  // namespace platform
