#include "platform/linux/tray/bordered_menu.h"

#include <QPainter>
#include <QStyle>

#include "platform/linux/desktop/color_contrast.h"

namespace platform {

void BorderedMenu::paintEvent(QPaintEvent* event) {
  QMenu::paintEvent(event);
  if (style()->name() != QLatin1StringView("fusion")) return;
  const QColor background = palette().color(QPalette::Window);
  QPainter painter(this);
  painter.setPen(withContrast(background, background, minControlContrast));
  painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

}  // namespace platform
