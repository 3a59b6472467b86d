#include "platform/linux/tray/status_content.h"

#include <QFileInfo>

namespace platform {

QStringList signalsOfChange(const StatusContent& before, const StatusContent& after) {
  QStringList names;
  if (before.image != after.image || before.symbol != after.symbol) names.append(QStringLiteral("NewIcon"));
  if (before.text != after.text) names.append({QStringLiteral("NewTitle"), QStringLiteral("NewToolTip")});
  return names;
}

QString symbolInFolder(const QString& folder, const QString& symbol) {
  const QString file = folder + QLatin1String("/hicolor/symbolic/apps/") + symbol + QLatin1String(".svg");
  return !symbol.isEmpty() && QFileInfo(file).isReadable() ? symbol : QString();
}

}  // namespace platform
