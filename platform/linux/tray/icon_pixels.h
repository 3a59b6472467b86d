#pragma once

#include <QImage>
#include <QList>

#include "platform/image.h"
#include "platform/linux/tray/bus_types.h"

namespace platform {

// Returns the image in the format of StatusNotifierItem.
[[nodiscard]] IconPixels iconPixels(const QImage& picture);

// Returns the image at one, two and four pixels per point, each from the smallest representation that is
// large enough, in memory or in the image's files. Returns an empty list for nullptr or an invalid image.
[[nodiscard]] QList<IconPixels> panelPixels(const Image* image);

}  // namespace platform
