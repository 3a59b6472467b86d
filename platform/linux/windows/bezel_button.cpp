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

constexpr const char* paletteCacheProperty = "palettes of buttons";
// Four palettes are in use at most: light and dark, each in windows with a background colour and in sheets.
constexpr qsizetype maxCachedPalettes = 8;

// Returns a palette equal to `palette`, with the same QPalette::cacheKey() for all equal palettes that are in
// the cache.
QPalette cachedPalette(const QPalette& palette) {
  auto all = qApp->property(paletteCacheProperty).value<QList<QPalette>>();
  const auto equal = std::ranges::find(all, palette);
  QPalette cached = equal == all.end() ? palette : *equal;
  if (equal == all.end()) {
    if (all.size() == maxCachedPalettes) all.removeFirst();
    all.append(cached);
    qApp->setProperty(paletteCacheProperty, QVariant::fromValue(all));
  }
  cached.setCurrentColorGroup(palette.currentColorGroup());  // operator== ignores the colour group
  return cached;
}

}  // namespace

void BezelButton::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  QStyleOptionButton option;
  initStyleOption(&option);
  option.state &= ~QStyle::State_HasFocus;  // shown by the ring instead
  option.rect = bezel();
  option.palette = cachedPalette(option.palette);
  style()->drawControl(QStyle::CE_PushButton, &option, &painter, this);
  painter.end();
  if (hasFocus()) drawFocusRing(*this, bezel().adjusted(-ringMargin, -ringMargin, ringMargin, ringMargin));
}

void BezelButton::keyPressEvent(QKeyEvent* event) {
  if (!activatesControl(event->key()) || !keyRepeat_.isRepeated(*event)) QPushButton::keyPressEvent(event);
}

void BezelButton::keyReleaseEvent(QKeyEvent* event) {
  keyRepeat_.noteRelease(*event);
  QPushButton::keyReleaseEvent(event);
}

}  // namespace platform
