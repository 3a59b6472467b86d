#include "platform/linux/windows/sheet_panel.h"

#include <QAccessibleWidget>
#include <QPainter>
#include <QPushButton>

namespace platform {
namespace {

constexpr qreal cornerRadius = 6;
constexpr int shadowWidth = 8;
constexpr int shadowOpacity = 7;  // of 255, of each of the layers

class AccessiblePanel : public QAccessibleWidget {
 public:
  explicit AccessiblePanel(QWidget& panel) : QAccessibleWidget(&panel, QAccessible::Dialog) {}

  [[nodiscard]] QAccessible::State state() const override {
    QAccessible::State state = QAccessibleWidget::state();
    state.modal = true;
    return state;
  }
};

QAccessibleInterface* describePanel(const QString&, QObject* object) {
  auto* panel = dynamic_cast<SheetPanel*>(object);
  return panel == nullptr ? nullptr : new AccessiblePanel(*panel);
}

}  // namespace

SheetPanel::SheetPanel(QWidget& sheet) : QDialog(&sheet) {
  QAccessible::installFactory(describePanel);  // a repeated installation is ignored
  setWindowFlags(Qt::Widget);
}

void SheetPanel::reject() {
  if (escapeButton != nullptr) escapeButton->click();
}

// The upper corners and the upper edge lie outside: the panel continues the title bar.
void SheetPanel::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(palette().color(QPalette::Dark));
  painter.setBrush(palette().color(QPalette::Window).lighter(104));
  painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, -cornerRadius - 1, -0.5, -0.5), cornerRadius,
                          cornerRadius);
}

// Layers of growing size, which add up to a shadow that fades outwards.
void drawShadow(QPainter& painter, const QRect& panel) {
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(QColor(0, 0, 0, shadowOpacity));
  for (int width = 1; width <= shadowWidth; ++width) {
    const QRectF layer = QRectF(panel).adjusted(-width, -cornerRadius, width, width);
    painter.drawRoundedRect(layer, cornerRadius + width, cornerRadius + width);
  }
}

}  // namespace platform
