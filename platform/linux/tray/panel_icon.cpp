#include "platform/linux/tray/panel_icon.h"

#include <utility>

#include <QIconEngine>
#include <QPainter>

#include "platform/linux/images/image_impl.h"

namespace platform {
namespace {

class PanelIconEngine : public QIconEngine {
 public:
  explicit PanelIconEngine(std::vector<QPixmap> representations)
      : representations_(std::move(representations)) {}

  void paint(QPainter* painter, const QRect& room, QIcon::Mode, QIcon::State) override {
    const QSize shown = measure().scaled(measure().boundedTo(room.size()), Qt::KeepAspectRatio);
    const QRect place(
        room.topLeft() + QPoint(room.width() - shown.width(), room.height() - shown.height()) / 2, shown);
    painter->setRenderHint(QPainter::SmoothPixmapTransform);
    painter->drawPixmap(place, representationFor(shown.width() * painter->device()->devicePixelRatioF()));
  }

  // Returns the sizes in pixels that Qt offers to hosts on the bus.
  QList<QSize> availableSizes(QIcon::Mode, QIcon::State) override {
    QList<QSize> sizes;
    for (const QPixmap& representation : representations_) sizes.append(representation.size());
    return sizes;
  }
  QPixmap pixmap(const QSize& size, QIcon::Mode, QIcon::State) override {
    QPixmap representation = representationFor(size.width());
    representation.setDevicePixelRatio(1);
    if (representation.width() <= size.width() && representation.height() <= size.height())
      return representation;
    return representation.scaled(size, Qt::KeepAspectRatio, Qt::SmoothTransformation);
  }

  QSize actualSize(const QSize& room, QIcon::Mode, QIcon::State) override {
    return measure().boundedTo(room);
  }
  QIconEngine* clone() const override { return new PanelIconEngine(representations_); }

 private:
  [[nodiscard]] QSize measure() const { return representations_.back().deviceIndependentSize().toSize(); }

  [[nodiscard]] const QPixmap& representationFor(double pixels) const {
    return selectRepresentation(representations_, pixels);
  }

  std::vector<QPixmap> representations_;
};

}  // namespace

QIcon panelIcon(std::vector<QPixmap> representations) {
  return QIcon(new PanelIconEngine(std::move(representations)));
}

}  // namespace platform
