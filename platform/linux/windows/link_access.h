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

}  // namespace platform
