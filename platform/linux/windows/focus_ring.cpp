#include "platform/linux/windows/focus_ring.h"

#include <QPainter>
#include <QWidget>

#include "platform/linux/desktop/color_contrast.h"

namespace platform {
namespace {

void drawRing(QWidget& widget, const QRect& outer, const QColor& color, qreal radius) {
  constexpr qreal middle = focusRingWidth / 2.0;
  QPainter painter(&widget);
  painter.setRenderHint(QPainter::Antialiasing);
  QPen pen(color, focusRingWidth);
  pen.setJoinStyle(Qt::MiterJoin);
  painter.setPen(pen);
  painter.drawRoundedRect(QRectF(outer).adjusted(middle, middle, -middle, -middle), radius, radius);
}

// Against white, and hence against whatever has less than 3:1 to white, this contrast leaves 3:1 to the dark
// ring: (1 + 0.05) / 3 / 3 - 0.05 is the luminance that the ring must not exceed.
constexpr double contrastOfDarkRing = minControlContrast * minControlContrast;

}  // namespace

void drawFocusRing(QWidget& widget, const QRect& outer) {
  constexpr qreal radius = 3;
  const QPalette& palette = widget.palette();
  drawRing(
      widget, outer,
      withContrast(palette.color(QPalette::Highlight), palette.color(QPalette::Window), minControlContrast),
      radius);
}

void drawFocusRingOnPicture(QWidget& widget, const QRect& outer) {
  const QColor highlight = widget.palette().color(QPalette::Highlight);
  drawRing(widget, outer, withContrast(highlight, Qt::white, contrastOfDarkRing), 0);
  constexpr int width = focusRingWidth;
  drawRing(widget, outer.adjusted(width, width, -width, -width), Qt::white, 0);
}

}  // namespace platform
