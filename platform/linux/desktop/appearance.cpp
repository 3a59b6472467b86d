#include "platform/linux/desktop/appearance.h"

#include <QApplication>
#include <QPalette>
#include <QStyle>

namespace platform {
namespace {

QPalette darkPalette() {
  const QColor window(0x2b, 0x2d, 0x30), base(0x1f, 0x20, 0x23), text(0xec, 0xed, 0xee),
      dimmed(0x85, 0x88, 0x8c), accent(0x3d, 0x8e, 0xe0);
  QPalette palette(window);
  palette.setColor(QPalette::Window, window);
  palette.setColor(QPalette::Base, base);
  palette.setColor(QPalette::AlternateBase, window);
  palette.setColor(QPalette::ToolTipBase, base);
  palette.setColor(QPalette::Highlight, accent);
  palette.setColor(QPalette::HighlightedText, Qt::white);
  palette.setColor(QPalette::Link, accent.lighter(130));
  // The Fusion style draws disabled text with a shadow in this colour, which suits light windows only.
  palette.setColor(QPalette::Disabled, QPalette::Light, Qt::transparent);
  for (const auto role :
       {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
    palette.setColor(role, text);
    palette.setColor(QPalette::Disabled, role, dimmed);
  }
  return palette;
}

}  // namespace

void applyAppearance(bool dark) {
  auto* application = qobject_cast<QApplication*>(QCoreApplication::instance());
  if (application == nullptr || QApplication::style()->name() != QLatin1StringView("fusion")) return;
  QApplication::setPalette(dark ? darkPalette() : QApplication::style()->standardPalette());
}

}  // namespace platform
