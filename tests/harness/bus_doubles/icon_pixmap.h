#pragma once

#include <QDBusArgument>
#include <QImage>
#include <QList>
#include <QString>
#include <QVariant>

// The pictures of an "a(iiay)": width, height, and pixels as ARGB32 in network byte order. An entry whose
// bytes don't fit its size is a null image.
[[nodiscard]] QList<QImage> imagesOf(const QVariant& pixmaps);

// "22x22", or "0x0" for a null image.
[[nodiscard]] QString sizeText(const QImage& image);
