#pragma once

#include <optional>

#include <QByteArray>
#include <QList>
#include <QString>
#include <QVariant>
#include <QVariantMap>

// One item of a menu exported as com.canonical.dbusmenu.
struct MenuItem {
  int id = 0;
  int parent = 0;
  QVariantMap properties = {};

  [[nodiscard]] QString type() const;   // "standard" or "separator"
  [[nodiscard]] QString label() const;  // without the marks of its keyboard access
  [[nodiscard]] bool enabled() const;
  [[nodiscard]] bool visible() const;
  [[nodiscard]] QByteArray iconData() const;  // a PNG, or nothing
  [[nodiscard]] QString describe() const;     // all of the above in one line, the label last
};

// All items below the root of a layout "(ia{sv}av)", each before its children.
[[nodiscard]] QList<MenuItem> itemsOfLayout(const QVariant& layout);

// The first item with this label.
[[nodiscard]] std::optional<MenuItem> itemLabelled(const QList<MenuItem>& items, const QString& label);
