#include "platform/linux/windows/bezel_button.h"

#include <algorithm>

#include <QApplication>
#include <QList>
#include <QPainter>
#include <QPalette>
#include <QStyleOptionButton>
#include <QVariant>

namespace platform {
namespace {

constexpr const char* keptInApplication = "palettes of buttons";
// Four palettes are in use at most: light and dark, each in windows with a background colour and in sheets.
constexpr qsizetype mostKept = 8;

// Returns a palette equal to `palette`, with the same QPalette::cacheKey() for all equal palettes that are in
// the cache.
QPalette keptPalette(const QPalette& palette) {
  auto all = qApp->property(keptInApplication).value<QList<QPalette>>();
  const auto equal = std::ranges::find(all, palette);
  QPalette kept = equal == all.end() ? palette : *equal;
  if (equal == all.end()) {
    if (all.size() == mostKept) all.removeFirst();
    all.append(kept);
    qApp->setProperty(keptInApplication, QVariant::fromValue(all));
  }
  kept.setCurrentColorGroup(palette.currentColorGroup());  // operator== ignores the colour group
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
