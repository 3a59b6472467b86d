#pragma once

#include <string_view>

#include <QFont>
#include <QString>

#include "platform/text_style.h"

namespace platform {

[[nodiscard]] inline QString textOf(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

// By pixels, so that the text fits its frame at any resolution that the screen reports.
[[nodiscard]] inline QFont systemFont(QFont base, Font font) {
  base.setPixelSize(qRound(font.size));
  base.setBold(font.bold);
  return base;
}

// An ampersand in the title of a button or a menu's line would mark a letter for the keyboard.
[[nodiscard]] inline QString withoutMnemonic(QString title) {
  return title.replace(QLatin1Char('&'), QLatin1String("&&"));
}

[[nodiscard]] inline Qt::Alignment alignmentFromTop(TextAlignment alignment) {
  return Qt::AlignTop | (alignment == TextAlignment::Center ? Qt::AlignHCenter : Qt::AlignLeft);
}

}  // namespace platform
