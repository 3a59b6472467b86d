#include "platform/linux/tray/panel_icon.h"

#include <utility>

#include <QIconEngine>
#include <QPainter>

#include "platform/linux/images/image_impl.h"

namespace platform {
namespace {

class PanelIconEngine : public QIconEngine {
 public:
  explicit PanelIconEngine(std::vector<QPixmap> forms) : forms_(std::move(forms)) {}

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
    for (const QPixmap& form : forms_) sizes.append(form.size());
    return sizes;
  }
  QPixmap pixmap(const QSize& size, QIcon::Mode, QIcon::State) override {
    QPixmap form = representationFor(size.width());
    form.setDevicePixelRatio(1);
    if (form.width() <= size.width() && form.height() <= size.height()) return form;
    return form.scaled(size, Qt::KeepAspectRatio, Qt::SmoothTransformation);
  }

  QSize actualSize(const QSize& room, QIcon::Mode, QIcon::State) override {
    return measure().boundedTo(room);
  }
  QIconEngine* clone() const override { return new PanelIconEngine(forms_); }

 private:
  [[nodiscard]] QSize measure() const { return forms_.back().deviceIndependentSize().toSize(); }

  [[nodiscard]] const QPixmap& representationFor(double pixels) const {
    return selectRepresentation(forms_, pixels);
  }

  std::vector<QPixmap> forms_;
};

}  // namespace

QIcon panelIcon(std::vector<QPixmap> forms) {
  return QIcon(new PanelIconEngine(std::move(forms)));
}

}  // namespace platform
