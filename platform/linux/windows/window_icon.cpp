#include "platform/linux/windows/window_icon.h"

#include <QIconEngine>
#include <QPainter>
#include <QPixmap>

#include "platform/image.h"
#include "platform/linux/images/cached_pixels.h"
#include "platform/linux/images/image_impl.h"

namespace platform {
namespace {

// Larger ones would be sent to the X server with each window.
constexpr QSize iconSize(48, 48);

QImage scaledIcon() {
  const auto icon = imageNamed("icon.png");
  return icon == nullptr ? QImage() : icon->impl().scaledTo(iconSize);
}

class WindowIconEngine : public QIconEngine {
 public:
  void paint(QPainter* painter, const QRect& rect, QIcon::Mode, QIcon::State) override {
    painter->drawImage(rect, cachedPixels(QStringLiteral("window icon"), scaledIcon));
  }
  QList<QSize> availableSizes(QIcon::Mode, QIcon::State) override { return {iconSize}; }
  QPixmap pixmap(const QSize&, QIcon::Mode, QIcon::State) override {
    return QPixmap::fromImage(cachedPixels(QStringLiteral("window icon"), scaledIcon));
  }
  QIconEngine* clone() const override { return new WindowIconEngine; }
};

}  // namespace

QIcon windowIcon() {
  return QIcon(new WindowIconEngine);
}

}  // namespace platform
