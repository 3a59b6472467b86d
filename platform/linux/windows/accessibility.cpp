#include "platform/linux/windows/accessibility.h"

#include <utility>

#include "platform/linux/windows/modal_stack.h"
#include "platform/linux/windows/window_impl.h"

namespace platform {
namespace {

class AccessibleWindow : public QAccessibleWidget {
 public:
  AccessibleWindow(QWidget& widget, WindowStyle style)
      : QAccessibleWidget(&widget,
                          style == WindowStyle::Titled ? QAccessible::AlertMessage : QAccessible::Dialog) {}

  [[nodiscard]] QAccessible::State state() const override {
    QAccessible::State state = QAccessibleWidget::state();
    state.modal = ModalStack::shared().isInnermost(*widget());
    return state;
  }
};

QAccessibleInterface* describeWindow(const QString&, QObject* object) {
  if (!object->isWidgetType()) return nullptr;
  auto& widget = *static_cast<QWidget*>(object);
  const Window::Impl* window = implOf(widget);
  return window == nullptr ? nullptr : new AccessibleWindow(widget, window->style);
}

}  // namespace

AccessibleLink::AccessibleLink(QWidget& widget, const QString& name, std::function<void()> press)
    : QAccessibleWidget(&widget, QAccessible::Link, name), press_(std::move(press)) {}

QStringList AccessibleLink::actionNames() const {
  return QStringList(pressAction()) + QAccessibleWidget::actionNames();
}

void AccessibleLink::doAction(const QString& action) {
  if (action != pressAction()) return QAccessibleWidget::doAction(action);
  if (acceptsInput(*widget())) press_();
}

void describeWindowsToAccessibility() {
  QAccessible::installFactory(describeWindow);  // a repeated installation is ignored
}

}  // namespace platform
