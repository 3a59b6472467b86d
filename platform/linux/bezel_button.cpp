#include "platform/linux/bezel_button.h"

#include <QApplication>
#include <QPainter>
#include <QStyleOptionButton>

namespace platform {
namespace {

constexpr const char* keptInApplication = "palette of buttons";

// Equal to this one, and the same for as long as no other is asked for.
QPalette keptPalette(const QPalette& palette) {
  auto kept = qApp->property(keptInApplication).value<QPalette>();
  if (kept != palette) {
    qApp->setProperty(keptInApplication, palette);
    kept = palette;
  }
  kept.setCurrentColorGroup(palette.currentColorGroup());  // which equal palettes may differ in
  return kept;
}

}  // namespace

void BezelButton::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  QStyleOptionButton option;
  initStyleOption(&option);
  option.rect = bezel();
  option.palette = keptPalette(option.palette);
  style()->drawControl(QStyle::CE_PushButton, &option, &painter, this);
}

void BezelButton::keyPressEvent(QKeyEvent* event) {
  if (!pressesControl(event->key()) || !heldKey_.isRepeated(*event)) QPushButton::keyPressEvent(event);
}

void BezelButton::keyReleaseEvent(QKeyEvent* event) {
  heldKey_.noteRelease(*event);
  QPushButton::keyReleaseEvent(event);
}

}  // namespace platform
