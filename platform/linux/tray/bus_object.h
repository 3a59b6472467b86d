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
  // Returns the reply to a call with arguments of these types. The caller waits, so work that takes long must
  // be posted.
  std::function<QDBusMessage(const QDBusMessage& call)> answer;
};

struct BusInterface {
  QString name;
  QString description;  // introspection XML of its members
  std::function<QVariantMap()> properties;
  std::vector<BusMethod> methods;
};

// An object on the session bus with one interface and read-only properties. Replies to unknown methods,
// unknown properties and wrong argument types with the standard D-Bus errors. No effect without a session
// bus. Main thread only.
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

// Returns the error reply to a call of a method that the interface does not have.
[[nodiscard]] QDBusMessage unknownMethod(const QDBusMessage& call);
// Returns the error reply to invalid arguments, for BusMethod::answer.
[[nodiscard]] QDBusMessage invalidArguments(const QDBusMessage& call, const QString& text);

}  // namespace platform
