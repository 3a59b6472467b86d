#pragma once

#include <string_view>

#include <QFont>
#include <QString>

#include "platform/text_style.h"

namespace platform {

[[nodiscard]] inline QString textOf(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

// Sets the size in pixels, so that the text fits its frame whatever resolution the screen reports.
[[nodiscard]] inline QFont systemFont(QFont base, Font font) {
  base.setPixelSize(qRound(font.size));
  base.setBold(font.bold);
  return base;
}

// Escapes ampersands, which Qt would turn into keyboard mnemonics in titles of buttons and menu items.
[[nodiscard]] inline QString withoutMnemonic(QString title) {
  return title.replace(QLatin1Char('&'), QLatin1String("&&"));
}

[[nodiscard]] inline Qt::Alignment alignmentFromTop(TextAlignment alignment) {
  return Qt::AlignTop | (alignment == TextAlignment::Center ? Qt::AlignHCenter : Qt::AlignLeft);
}

}  // namespace platform
