#pragma once

#include <QImage>
#include <QList>

#include "platform/image.h"
#include "platform/linux/tray/bus_types.h"

namespace platform {

// A picture as StatusNotifierItem sends it.
[[nodiscard]] IconPixels iconPixels(const QImage& picture);

// The image at one, two and four pixels to the point, each from the bitmap that is nearest above it; empty
// for nullptr and for an invalid image.
[[nodiscard]] QList<IconPixels> panelPixels(const Image* image);

}  // namespace platform
