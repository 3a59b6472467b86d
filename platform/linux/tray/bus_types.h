#pragma once

#include <QByteArray>
#include <QDBusArgument>
#include <QDBusVariant>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVariantMap>

// The D-Bus types of the tray icon and menu protocols, each with its signature.
namespace platform {

// (iiay): an image; rows from top to bottom, four bytes per pixel: alpha, red, green, blue, not
// premultiplied.
struct IconPixels {
  int width = 0;
  int height = 0;
  QByteArray bytes = {};

  bool operator==(const IconPixels&) const = default;
};

// (sa(iiay)ss)
struct ItemToolTip {
  QString iconName = {};
  QList<IconPixels> pixels = {};
  QString title = {};
  QString text = {};
};

// (ia{sv}av): a menu item and its children.
struct MenuLayout {
  int id = 0;
  QVariantMap properties = {};
  QList<MenuLayout> children = {};
};

// (ia{sv})
struct MenuProperties {
  int id = 0;
  QVariantMap properties = {};

  bool operator==(const MenuProperties&) const = default;
};

// (ias)
struct RemovedMenuProperties {
  int id = 0;
  QStringList names = {};

  bool operator==(const RemovedMenuProperties&) const = default;
};

// (isvu)
struct MenuEvent {
  int id = 0;
  QString name = {};
  QDBusVariant data = {};
  uint time = 0;
};

// Qt D-Bus calls these to write and read the types. Reading a MenuLayout omits the children: layouts are only
// sent.
QDBusArgument& operator<<(QDBusArgument& argument, const IconPixels& value);
const QDBusArgument& operator>>(const QDBusArgument& argument, IconPixels& value);
QDBusArgument& operator<<(QDBusArgument& argument, const ItemToolTip& value);
const QDBusArgument& operator>>(const QDBusArgument& argument, ItemToolTip& value);
QDBusArgument& operator<<(QDBusArgument& argument, const MenuLayout& value);
const QDBusArgument& operator>>(const QDBusArgument& argument, MenuLayout& value);
QDBusArgument& operator<<(QDBusArgument& argument, const MenuProperties& value);
const QDBusArgument& operator>>(const QDBusArgument& argument, MenuProperties& value);
QDBusArgument& operator<<(QDBusArgument& argument, const RemovedMenuProperties& value);
const QDBusArgument& operator>>(const QDBusArgument& argument, RemovedMenuProperties& value);
QDBusArgument& operator<<(QDBusArgument& argument, const MenuEvent& value);
const QDBusArgument& operator>>(const QDBusArgument& argument, MenuEvent& value);

// Registers these types with Qt D-Bus. Call it before the first of them is sent or received. Main thread
// only.
void registerTrayTypes();

}  // namespace platform
