#include "platform/linux/tray/menu_layout.h"

namespace platform {
namespace {

// In titles on the bus an underscore marks the access key, and two are a literal underscore.
QString withoutAccessKey(QString title) {
  return title.replace(QLatin1Char('_'), QLatin1String("__"));
}

QVariantMap chosen(const QVariantMap& all, const QStringList& names) {
  if (names.isEmpty()) return all;
  QVariantMap some;
  for (auto property = all.begin(); property != all.end(); ++property) {
    if (names.contains(property.key())) some.insert(property.key(), property.value());
  }
  return some;
}

QVariantMap rootProperties() {
  return {{QStringLiteral("children-display"), QStringLiteral("submenu")}};
}

QList<int> allIds(const QList<MenuLine>& lines) {
  QList<int> ids;
  for (int id = menuRootId; id <= lines.size(); ++id) ids.append(id);
  return ids;
}

QVariantMap changedProperties(const QVariantMap& before, const QVariantMap& after) {
  QVariantMap changed;
  for (auto property = after.begin(); property != after.end(); ++property) {
    if (before.value(property.key()) != property.value()) changed.insert(property.key(), property.value());
  }
  return changed;
}

QStringList removedNames(const QVariantMap& before, const QVariantMap& after) {
  QStringList names;
  for (auto property = before.begin(); property != before.end(); ++property) {
    if (!after.contains(property.key())) names.append(property.key());
  }
  return names;
}

}  // namespace

QVariantMap propertiesOf(const MenuLine& line) {
  // Includes default values, because some hosts keep the last value of a missing property.
  QVariantMap properties{{QStringLiteral("enabled"), line.enabled},
                         {QStringLiteral("visible"), line.visible}};
  if (line.separator) {
    properties.insert(QStringLiteral("type"), QStringLiteral("separator"));
    return properties;
  }
  properties.insert(QStringLiteral("label"), withoutAccessKey(line.title));
  if (!line.picture.isEmpty()) properties.insert(QStringLiteral("icon-data"), line.picture);
  return properties;
}

bool hasItem(const QList<MenuLine>& lines, int id) {
  return id >= menuRootId && id <= lines.size();
}

QVariantMap itemProperties(const QList<MenuLine>& lines, int id, const QStringList& names) {
  return chosen(id == menuRootId ? rootProperties() : propertiesOf(lines[id - 1]), names);
}

MenuLayout layoutOf(const QList<MenuLine>& lines, int id, int depth, const QStringList& names) {
  MenuLayout layout{id, itemProperties(lines, id, names)};
  if (id != menuRootId || depth == 0) return layout;
  for (int child = 1; child <= lines.size(); ++child)
    layout.children.append({child, itemProperties(lines, child, names)});
  return layout;
}

// Includes each item once: a request that repeats an id a million times would otherwise cause a reply of
// gigabytes.
QList<MenuProperties> groupProperties(const QList<MenuLine>& lines, const QList<int>& ids,
                                      const QStringList& names) {
  QList<MenuProperties> group;
  QSet<int> seen;
  for (const int id : ids.isEmpty() ? allIds(lines) : ids) {
    if (!hasItem(lines, id) || seen.contains(id)) continue;
    seen.insert(id);
    group.append({id, itemProperties(lines, id, names)});
  }
  return group;
}

bool canBeChosen(const QList<MenuLine>& lines, int id) {
  if (id == menuRootId || !hasItem(lines, id)) return false;
  const MenuLine& line = lines[id - 1];
  return line.enabled && line.visible && !line.separator;
}

MenuChanges changesBetween(const QList<MenuLine>& before, const QList<MenuLine>& after) {
  if (before.size() != after.size()) return {.layout = true};
  MenuChanges changes;
  for (int id = 1; id <= after.size(); ++id) {
    const QVariantMap was = propertiesOf(before[id - 1]), is = propertiesOf(after[id - 1]);
    const QVariantMap changed = changedProperties(was, is);
    const QStringList removed = removedNames(was, is);
    if (!changed.isEmpty()) changes.updated.append({id, changed});
    if (!removed.isEmpty()) changes.removed.append({id, removed});
  }
  return changes;
}

}  // namespace platform
