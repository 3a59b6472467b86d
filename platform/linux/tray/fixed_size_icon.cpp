#include "platform/linux/tray/fixed_size_icon.h"

#include <QIconEngine>
#include <QPainter>

namespace platform {
namespace {

class FixedSizeIconEngine : public QIconEngine {
 public:
  explicit FixedSizeIconEngine(QPixmap pixmap) : pixmap_(std::move(pixmap)) {}

  void paint(QPainter* painter, const QRect& rect, QIcon::Mode, QIcon::State) override {
    const QSize size = pixmap_.deviceIndependentSize().toSize();
    painter->drawPixmap(rect.center() - QRect(QPoint(), size).center(), pixmap_);
  }
  QPixmap pixmap(const QSize&, QIcon::Mode, QIcon::State) override { return pixmap_; }
  QPixmap scaledPixmap(const QSize&, QIcon::Mode, QIcon::State, qreal) override { return pixmap_; }
  QSize actualSize(const QSize&, QIcon::Mode, QIcon::State) override {
    return pixmap_.deviceIndependentSize().toSize();
  }
  QIconEngine* clone() const override { return new FixedSizeIconEngine(pixmap_); }

 private:
  QPixmap pixmap_;
};

}  // namespace

QIcon fixedSizeIcon(const QPixmap& pixmap) {
  return QIcon(new FixedSizeIconEngine(pixmap));
}

}  // namespace platform
