#pragma once

#include <QDBusArgument>
#include <QImage>
#include <QList>
#include <QString>
#include <QVariant>

// Decodes the images of an "a(iiay)": width, height, and pixels as ARGB32 in network byte order. An entry
// whose byte count does not match its size gives a null image.
[[nodiscard]] QList<QImage> imagesOf(const QVariant& pixmaps);

// Returns for example "22x22"; "0x0" for a null image.
[[nodiscard]] QString sizeText(const QImage& image);
