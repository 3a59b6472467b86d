#pragma once

#include <QByteArray>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

#include "platform/linux/tray/bus_types.h"

// A menu as com.canonical.dbusmenu describes it. Item 0 is the menu itself; the lines are its items 1, 2, 3
// ... from top to bottom. Plain functions, any thread.
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

// All properties of one line.
[[nodiscard]] QVariantMap propertiesOf(const MenuLine& line);

// Whether there is such an item, the menu itself included.
[[nodiscard]] bool hasItem(const QList<MenuLine>& lines, int id);

// The properties of an item that is there. `names` chooses among them; empty chooses all.
[[nodiscard]] QVariantMap itemProperties(const QList<MenuLine>& lines, int id, const QStringList& names);

// The item that is there with `depth` levels below it, -1 for all.
[[nodiscard]] MenuLayout layoutOf(const QList<MenuLine>& lines, int id, int depth, const QStringList& names);

// The properties of the items asked for, each item once, unknown ones left out; of all for no ids.
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
