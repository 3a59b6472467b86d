#pragma once

#include <memory>

#include <QString>
#include <QStringList>

#include "platform/image.h"
#include "platform/linux/tray/tray_place.h"

class QMenu;

namespace platform {

// What a status item shows, in whatever panel.
struct StatusContent {
  QString text = {};                  // never empty
  std::shared_ptr<Image> image = {};  // nullptr or invalid: no icon
  QString symbol = {};                // the name of a symbolic icon there, or empty
  QString symbolFolder = {};          // the folder with the icon themes of the bundle; empty: the system's
  QMenu* menu = nullptr;              // the caller's

  [[nodiscard]] bool hasIcon() const { return image != nullptr && image->isValid(); }
};

// The signals by which a StatusNotifierItem reports the change from one content to the other. Plain function.
[[nodiscard]] QStringList signalsOfChange(const StatusContent& before, const StatusContent& after);

// The symbol where its file is in the folder, else empty: hosts show an empty square for a name that they
// can't find, and prefer a name to pixels.
[[nodiscard]] QString symbolInFolder(const QString& folder, const QString& symbol);

// The symbol where the panel finds it, else empty.
[[nodiscard]] QString symbolIn(SymbolSource source, const QString& folder, const QString& symbol);

}  // namespace platform
