#include "platform/linux/images/cached_pixels.h"

#include <QGuiApplication>
#include <QPixmap>
#include <QPixmapCache>

namespace platform {

QImage cachedPixels(const QString& key, const std::function<QImage()>& make) {
  if (qGuiApp == nullptr) return make();
  const QString own = QStringLiteral("tovalin ") + key;
  QPixmap kept;
  if (!QPixmapCache::find(own, &kept)) {
    kept = QPixmap::fromImage(make());
    if (!kept.isNull()) QPixmapCache::insert(own, kept);
  }
  return kept.toImage();
}

}  // namespace platform
