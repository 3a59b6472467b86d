#include "platform/linux/windows/link_access.h"

#include <utility>

#include <QPainter>
#include <QStyle>
#include <QStyleOptionFocusRect>

#include "platform/linux/windows/window_impl.h"

namespace platform {

AccessibleLink::AccessibleLink(QWidget& widget, const QString& name, std::function<void()> press)
    : QAccessibleWidget(&widget, QAccessible::Link, name), press_(std::move(press)) {}

QStringList AccessibleLink::actionNames() const {
  return QStringList(pressAction()) + QAccessibleWidget::actionNames();
}

void AccessibleLink::doAction(const QString& action) {
  if (action != pressAction()) return QAccessibleWidget::doAction(action);
  if (acceptsInput(*widget())) press_();
}

void drawFocusFrame(QWidget& widget, const QRect& area) {
  QPainter painter(&widget);
  QStyleOptionFocusRect focus;
  focus.initFrom(&widget);
  focus.rect = area;
  widget.style()->drawPrimitive(QStyle::PE_FrameFocusRect, &focus, &painter, &widget);
}

}  // namespace platform
