#include "platform/linux/tray/bus_types.h"

#include <QDBusMetaType>

namespace platform {
namespace {

template <typename... Fields>
QDBusArgument& writeStructure(QDBusArgument& argument, const Fields&... fields) {
  argument.beginStructure();
  (argument << ... << fields);
  argument.endStructure();
  return argument;
}

template <typename... Fields>
const QDBusArgument& readStructure(const QDBusArgument& argument, Fields&... fields) {
  argument.beginStructure();
  (argument >> ... >> fields);
  argument.endStructure();
  return argument;
}

}  // namespace

QDBusArgument& operator<<(QDBusArgument& argument, const IconPixels& value) {
  return writeStructure(argument, value.width, value.height, value.bytes);
}
const QDBusArgument& operator>>(const QDBusArgument& argument, IconPixels& value) {
  return readStructure(argument, value.width, value.height, value.bytes);
}

QDBusArgument& operator<<(QDBusArgument& argument, const ItemToolTip& value) {
  return writeStructure(argument, value.iconName, value.pixels, value.title, value.text);
}
const QDBusArgument& operator>>(const QDBusArgument& argument, ItemToolTip& value) {
  return readStructure(argument, value.iconName, value.pixels, value.title, value.text);
}

QDBusArgument& operator<<(QDBusArgument& argument, const MenuLayout& value) {
  argument.beginStructure();
  argument << value.id << value.properties;
  argument.beginArray(QMetaType::fromType<QDBusVariant>());
  for (const MenuLayout& child : value.children) argument << QDBusVariant(QVariant::fromValue(child));
  argument.endArray();
  argument.endStructure();
  return argument;
}
const QDBusArgument& operator>>(const QDBusArgument& argument, MenuLayout& value) {
  QVariantList children;
  return readStructure(argument, value.id, value.properties, children);
}

QDBusArgument& operator<<(QDBusArgument& argument, const MenuProperties& value) {
  return writeStructure(argument, value.id, value.properties);
}
const QDBusArgument& operator>>(const QDBusArgument& argument, MenuProperties& value) {
  return readStructure(argument, value.id, value.properties);
}

QDBusArgument& operator<<(QDBusArgument& argument, const RemovedMenuProperties& value) {
  return writeStructure(argument, value.id, value.names);
}
const QDBusArgument& operator>>(const QDBusArgument& argument, RemovedMenuProperties& value) {
  return readStructure(argument, value.id, value.names);
}

QDBusArgument& operator<<(QDBusArgument& argument, const MenuEvent& value) {
  return writeStructure(argument, value.id, value.name, value.data, value.time);
}
const QDBusArgument& operator>>(const QDBusArgument& argument, MenuEvent& value) {
  return readStructure(argument, value.id, value.name, value.data, value.time);
}

void registerTrayTypes() {
  qDBusRegisterMetaType<IconPixels>();
  qDBusRegisterMetaType<QList<IconPixels>>();
  qDBusRegisterMetaType<ItemToolTip>();
  qDBusRegisterMetaType<MenuLayout>();
  qDBusRegisterMetaType<MenuProperties>();
  qDBusRegisterMetaType<QList<MenuProperties>>();
  qDBusRegisterMetaType<RemovedMenuProperties>();
  qDBusRegisterMetaType<QList<RemovedMenuProperties>>();
  qDBusRegisterMetaType<MenuEvent>();
  qDBusRegisterMetaType<QList<MenuEvent>>();
}

}  // namespace platform
