#include "platform/linux/bezel_button.h"

#include <QApplication>
#include <QPainter>
#include <QStyleOptionButton>

namespace platform {
namespace {

constexpr const char* keptInApplication = "palette of buttons";

// Equal to this one, and the same for as long as no other is asked for.
QPalette keptPalette(const QPalette& palette) {
  const auto kept = qApp->property(keptInApplication);
  if (kept.isValid() && kept.value<QPalette>() == palette) return kept.value<QPalette>();
  qApp->setProperty(keptInApplication, palette);
  return palette;
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

}  // namespace platform
