#include "platform/linux/windows/window_access.h"

#include <QAccessibleWidget>

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

void describeWindowsToAccessibility() {
  QAccessible::installFactory(describeWindow);  // a repeated installation is ignored
}

}  // namespace platform
