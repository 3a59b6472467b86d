#pragma once

#include <optional>

#include <QByteArray>
#include <QList>
#include <QString>
#include <QVariant>
#include <QVariantMap>

// An item of a menu exported as com.canonical.dbusmenu.
struct MenuItem {
  int id = 0;
  int parent = 0;
  QVariantMap properties = {};

  [[nodiscard]] QString type() const;   // "standard" or "separator"
  [[nodiscard]] QString label() const;  // without access key markers
  [[nodiscard]] bool enabled() const;
  [[nodiscard]] bool visible() const;
  [[nodiscard]] QByteArray iconData() const;  // PNG; empty without an icon
  [[nodiscard]] QString describe() const;     // all of the above on one line, the label last
};

// Returns all items below the root of a layout "(ia{sv}av)", parents before children.
[[nodiscard]] QList<MenuItem> itemsOfLayout(const QVariant& layout);

// Returns the first item with this label.
[[nodiscard]] std::optional<MenuItem> itemLabelled(const QList<MenuItem>& items, const QString& label);
