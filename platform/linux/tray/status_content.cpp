#include "platform/linux/tray/status_content.h"

#include <QFileInfo>
#include <QStandardPaths>

namespace platform {
namespace {

QString symbolPath(const QString& symbol) {
  return QLatin1String("/hicolor/symbolic/apps/") + symbol + QLatin1String(".svg");
}

}  // namespace

QStringList signalsOfChange(const StatusContent& before, const StatusContent& after) {
  QStringList names;
  if (before.image != after.image || before.symbol != after.symbol) names.append(QStringLiteral("NewIcon"));
  if (before.text != after.text) names.append({QStringLiteral("NewTitle"), QStringLiteral("NewToolTip")});
  return names;
}

QString symbolIn(SymbolSource source, const QString& folder, const QString& symbol) {
  if (source == SymbolSource::Nowhere || symbol.isEmpty()) return {};
  const QString file = source == SymbolSource::Folder
                           ? folder + symbolPath(symbol)
                           : QStandardPaths::locate(QStandardPaths::GenericDataLocation,
                                                    QLatin1String("icons") + symbolPath(symbol));
  return QFileInfo(file).isReadable() ? symbol : QString();
}

}  // namespace platform
