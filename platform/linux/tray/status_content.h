#pragma once

#include <memory>

#include <QString>
#include <QStringList>

#include "platform/image.h"
#include "platform/linux/tray/tray_place.h"

class QMenu;

namespace platform {

// The content of a status item, whatever panel shows it.
struct StatusContent {
  QString text = {};                  // never empty
  std::shared_ptr<Image> image = {};  // nullptr or invalid: no icon
  QString symbol = {};                // the name of a symbolic icon, or empty
  QString symbolFolder = {};          // the bundle's folder of icon themes; empty: the system's themes
  QMenu* menu = nullptr;              // not owned

  [[nodiscard]] bool hasIcon() const { return image != nullptr && image->isValid(); }
};

// Returns the signals by which a StatusNotifierItem reports the change from `before` to `after`. Pure
// function.
[[nodiscard]] QStringList signalsOfChange(const StatusContent& before, const StatusContent& after);

// Returns `symbol` if its file exists where the panel finds it, `folder` being the bundle's, else an empty
// text: hosts prefer a name to pixels and draw an empty square for an unknown one.
[[nodiscard]] QString symbolIn(SymbolSource source, const QString& folder, const QString& symbol);

}  // namespace platform
