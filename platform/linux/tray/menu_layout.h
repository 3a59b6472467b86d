#pragma once

#include <QByteArray>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

#include "platform/linux/tray/bus_types.h"

// A menu as com.canonical.dbusmenu describes it. Item 0 is the menu itself; the lines are its items 1, 2, 3
// ... from top to bottom. Pure functions; thread-safe.
namespace platform {

inline constexpr int menuRootId = 0;

struct MenuLine {
  QString title = {};
  bool separator = false;
  bool enabled = true;
  bool visible = true;
  QByteArray picture = {};  // a PNG

  bool operator==(const MenuLine&) const = default;
};

// Returns all properties of one line.
[[nodiscard]] QVariantMap propertiesOf(const MenuLine& line);

// Returns whether the item exists; true for the menu itself.
[[nodiscard]] bool hasItem(const QList<MenuLine>& lines, int id);

// Returns the properties of an existing item: those in `names`, or all if `names` is empty.
[[nodiscard]] QVariantMap itemProperties(const QList<MenuLine>& lines, int id, const QStringList& names);

// Returns an existing item with `depth` levels of children; -1 stands for all.
[[nodiscard]] MenuLayout layoutOf(const QList<MenuLine>& lines, int id, int depth, const QStringList& names);

// Returns the properties of these items, or of all items if `ids` is empty. Each item occurs once; unknown
// ones are omitted.
[[nodiscard]] QList<MenuProperties> groupProperties(const QList<MenuLine>& lines, const QList<int>& ids,
                                                    const QStringList& names);

// Returns whether a click on this item runs an action.
[[nodiscard]] bool canBeChosen(const QList<MenuLine>& lines, int id);

// The changes that a host needs in order to show `after` instead of `before`. If lines were added or removed,
// `layout` is true and the lists are empty.
struct MenuChanges {
  bool layout = false;
  QList<MenuProperties> updated = {};
  QList<RemovedMenuProperties> removed = {};

  bool operator==(const MenuChanges&) const = default;
};
[[nodiscard]] MenuChanges changesBetween(const QList<MenuLine>& before, const QList<MenuLine>& after);

}  // namespace platform
