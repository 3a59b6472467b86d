#include "platform/linux/windows/link_access.h"

#include <utility>

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

}  // namespace platform
