#pragma once

#include <functional>
#include <vector>

#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QString>
#include <QVariantMap>

namespace platform {

struct BusMethod {
  QLatin1StringView name;
  QLatin1StringView signature;  // of its arguments
  // Returns what is sent back to a call with arguments of these types. Work that takes its time is posted, as
  // the caller waits.
  std::function<QDBusMessage(const QDBusMessage& call)> answer;
};

struct BusInterface {
  QString name;
  QString description;  // what introspection says is in it, as XML
  std::function<QVariantMap()> properties;
  std::vector<BusMethod> methods;
};

// An object on the session bus with one interface, whose properties can be read and not written. Calls of
// unknown methods and properties and arguments of other types get the errors that D-Bus has for them. Without
// a bus it is reached by nobody. Main thread.
class BusObject : private QDBusVirtualObject {
 public:
  BusObject(const QString& path, BusInterface interface);
  ~BusObject() override;

  void emitSignal(const QString& name, const QVariantList& arguments = {}) const;

 private:
  QString introspect(const QString& path) const override;
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;
  [[nodiscard]] QDBusMessage answerTo(const QDBusMessage& call) const;
  [[nodiscard]] QDBusMessage answerAboutProperties(const QDBusMessage& call) const;

  QString path_;
  BusInterface interface_;
};

// The caller's mistake, for a BusMethod's answer.
[[nodiscard]] QDBusMessage invalidArguments(const QDBusMessage& call, const QString& text);

}  // namespace platform
