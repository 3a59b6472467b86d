#pragma once

#include <functional>

#include <QAccessibleWidget>

namespace platform {

// Accessibility interface of a link: its name, and a press action that works while its window accepts input.
// Main thread only.
class AccessibleLink : public QAccessibleWidget {
 public:
  AccessibleLink(QWidget& widget, const QString& name, std::function<void()> press);

  [[nodiscard]] QStringList actionNames() const override;
  void doAction(const QString& action) override;

 private:
  std::function<void()> press_;
};

// Describes the windows to assistive technology: a window that the user cannot close is an alert, any other
// one a dialog; the window of the innermost modal run is modal. Screen readers read the texts of an alert
// when it becomes the active window; Qt 6.4 sends no other event that they would read. Main thread only.
void describeWindowsToAccessibility();

}  // namespace platform
