#pragma once

#include <functional>

#include <QAccessibleWidget>

namespace platform {

// What assistive programs are told of a link: its name, and that it can be pressed while its window takes
// input. Main thread.
class AccessibleLink : public QAccessibleWidget {
 public:
  AccessibleLink(QWidget& widget, const QString& name, std::function<void()> press);

  [[nodiscard]] QStringList actionNames() const override;
  void doAction(const QString& action) override;

 private:
  std::function<void()> press_;
};

// Shows that what is drawn in `area` of the widget has the keyboard.
void drawFocusFrame(QWidget& widget, const QRect& area);

}  // namespace platform
