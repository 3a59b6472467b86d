#pragma once

#include <functional>

#include <QImage>
#include <QString>

namespace platform {

// Returns the pixels cached under `key`, or else the result of `make`, which it caches unless it is null.
// Main thread only. The returned images share their memory until one is modified. The cache is QPixmapCache:
// it is bounded in size and drops entries not used for about 30 s. Nothing is cached without a
// QGuiApplication.
[[nodiscard]] QImage cachedPixels(const QString& key, const std::function<QImage()>& make);

}  // namespace platform
