#include "tests/harness/bus_doubles/menu_layout.h"

#include <algorithm>

#include <QDBusArgument>
#include <QDBusVariant>
#include <QImage>

#include "tests/harness/bus_doubles/icon_pixmap.h"

namespace {

QString truth(bool value) {
  return value ? "true" : "false";
}

QString withoutAccessMarks(const QString& label) {
  QString plain;
  for (qsizetype i = 0; i < label.size(); ++i) {
    // A single underscore marks the access key; a double one is a literal underscore.
    if (label[i] == '_' && ++i == label.size()) break;
    plain.append(label[i]);
  }
  return plain;
}

void appendItems(const QDBusArgument& layout, int parent, QList<MenuItem>& items) {
  MenuItem item{.parent = parent};
  layout.beginStructure();
  layout >> item.id >> item.properties;
  const bool isRoot = parent < 0;
  if (!isRoot) items.append(item);
  layout.beginArray();
  while (!layout.atEnd()) {
    QDBusVariant child;
    layout >> child;
    appendItems(child.variant().value<QDBusArgument>(), item.id, items);
  }
  layout.endArray();
  layout.endStructure();
}

}  // namespace

QString MenuItem::type() const {
  return properties.value("type", "standard").toString();
}

QString MenuItem::label() const {
  return withoutAccessMarks(properties.value("label").toString());
}

bool MenuItem::enabled() const {
  return properties.value("enabled", true).toBool();
}

bool MenuItem::visible() const {
  return properties.value("visible", true).toBool();
}

QByteArray MenuItem::iconData() const {
  return properties.value("icon-data").toByteArray();
}

QString MenuItem::describe() const {
  const int checked = properties.value("toggle-state", -1).toInt();
  return "id=" + QString::number(id) + " parent=" + QString::number(parent) + " type=" + type() +
         " enabled=" + truth(enabled()) + " visible=" + truth(visible()) + " checked=" + truth(checked == 1) +
         " icon=" + sizeText(QImage::fromData(iconData())) + " label=" + label();
}

QList<MenuItem> itemsOfLayout(const QVariant& layout) {
  QList<MenuItem> items;
  const auto argument = layout.value<QDBusArgument>();
  if (argument.currentSignature() == "(ia{sv}av)") appendItems(argument, -1, items);
  return items;
}

std::optional<MenuItem> itemLabelled(const QList<MenuItem>& items, const QString& label) {
  const auto found =
      std::find_if(items.begin(), items.end(), [&](const MenuItem& item) { return item.label() == label; });
  if (found == items.end()) return std::nullopt;
  return *found;
}
