#include "platform/linux/tray/bus_object.h"

#include <algorithm>
#include <utility>

#include <QDBusConnection>
#include <QDBusError>
#include <QDBusVariant>

namespace platform {
namespace {

constexpr QLatin1StringView propertiesInterface("org.freedesktop.DBus.Properties");
constexpr QLatin1StringView introspectionInterface("org.freedesktop.DBus.Introspectable");
constexpr QLatin1StringView peerInterface("org.freedesktop.DBus.Peer");

}  // namespace

QDBusMessage unknownMethod(const QDBusMessage& call) {
  return call.createErrorReply(QDBusError::UnknownMethod,
                               QStringLiteral("There is no method %1 here").arg(call.member()));
}

QDBusMessage invalidArguments(const QDBusMessage& call, const QString& text) {
  return call.createErrorReply(QDBusError::InvalidArgs, text);
}

BusObject::BusObject(const QString& path, BusInterface interface)
    : path_(path), interface_(std::move(interface)) {
  QDBusConnection::sessionBus().registerVirtualObject(path_, this);
}

BusObject::~BusObject() {
  QDBusConnection::sessionBus().unregisterObject(path_);
}

void BusObject::emitSignal(const QString& name, const QVariantList& arguments) const {
  QDBusMessage signal = QDBusMessage::createSignal(path_, interface_.name, name);
  signal.setArguments(arguments);
  QDBusConnection::sessionBus().send(signal);
}

QString BusObject::introspect(const QString&) const {
  return QStringLiteral("<interface name=\"%1\">%2</interface>").arg(interface_.name, interface_.description);
}

bool BusObject::handleMessage(const QDBusMessage& message, const QDBusConnection& connection) {
  // Returns false so that Qt D-Bus replies itself.
  if (message.interface() == introspectionInterface || message.interface() == peerInterface) return false;
  const QDBusMessage answer = answerTo(message);
  if (message.isReplyRequired()) connection.send(answer);
  return true;
}

QDBusMessage BusObject::answerTo(const QDBusMessage& call) const {
  if (call.interface() == propertiesInterface) return answerAboutProperties(call);
  // The interface of a method call is optional in D-Bus.
  if (!call.interface().isEmpty() && call.interface() != interface_.name) return unknownMethod(call);
  const auto method = std::ranges::find_if(
      interface_.methods, [&](const BusMethod& known) { return call.member() == known.name; });
  if (method == interface_.methods.end()) return unknownMethod(call);
  if (call.signature() != method->signature) {
    return invalidArguments(call, QStringLiteral("%1 takes \"%2\" and not \"%3\"")
                                      .arg(method->name, method->signature, call.signature()));
  }
  return method->answer(call);
}

QDBusMessage BusObject::answerAboutProperties(const QDBusMessage& call) const {
  const bool isGet = call.member() == QLatin1String("Get") && call.signature() == QLatin1String("ss");
  const bool isGetAll = call.member() == QLatin1String("GetAll") && call.signature() == QLatin1String("s");
  const bool isSet = call.member() == QLatin1String("Set") && call.signature() == QLatin1String("ssv");
  if (!isGet && !isGetAll && !isSet) return unknownMethod(call);
  const QString interface = call.arguments().constFirst().toString();
  if (!interface.isEmpty() && interface != interface_.name) {
    return call.createErrorReply(QDBusError::UnknownInterface,
                                 QStringLiteral("There is no interface %1 here").arg(interface));
  }
  const QVariantMap properties = interface_.properties();
  if (isGetAll) return call.createReply(QVariant(properties));
  const QString name = call.arguments()[1].toString();
  if (!properties.contains(name)) {
    return call.createErrorReply(QDBusError::UnknownProperty,
                                 QStringLiteral("There is no property %1 here").arg(name));
  }
  if (isGet) return call.createReply(QVariant::fromValue(QDBusVariant(properties.value(name))));
  return call.createErrorReply(QDBusError::PropertyReadOnly,
                               QStringLiteral("The property %1 can't be written").arg(name));
}

}  // namespace platform
