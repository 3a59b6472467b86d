#include <gmock/gmock.h>

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusVariant>

#include "platform/linux/tray/bus_types.h"
#include "tests/platform/linux/tray/tray_bus_fixture.h"

namespace {

const QString invalidArgs = "org.freedesktop.DBus.Error.InvalidArgs";
const QString unknownMethod = "org.freedesktop.DBus.Error.UnknownMethod";

// Calls from the session bus that no tray host makes.
class HostileCalls : public TrayBusTest {
 protected:
  void SetUp() override {
    platform::registerTrayTypes();
    ASSERT_NO_FATAL_FAILURE(makeRegisteredItem());
  }
  void TearDown() override { EXPECT_TRUE(isAlive()); }

  [[nodiscard]] static QVariant events(int number, int id) {
    QList<platform::MenuEvent> all;
    for (int i = 0; i < number; ++i) all.append({id, "clicked", QDBusVariant(QString()), 0});
    return QVariant::fromValue(all);
  }
};

TEST_F(HostileCalls, ArgumentsOfWrongTypesAreRefused) {
  struct Row {
    const char* method;
    QVariantList arguments;
  };
  for (const Row& row :
       {Row{"GetLayout", {}}, Row{"GetLayout", {"0", -1, QStringList()}},
        Row{"GetLayout", {0, -1, QStringList(), 7}}, Row{"GetGroupProperties", {1, QStringList()}},
        Row{"GetProperty", {1}}, Row{"GetProperty", {"1", "label"}}, Row{"Event", {1, "clicked"}},
        Row{"Event", {1, "clicked", "data", 0U}}, Row{"EventGroup", {1}}, Row{"EventGroup", {QStringList()}},
        Row{"AboutToShow", {"0"}}, Row{"AboutToShowGroup", {0}}})
    EXPECT_EQ(callMenu(row.method, row.arguments).errorName(), invalidArgs) << row.method;
  for (const Row& row :
       {Row{"ContextMenu", {}}, Row{"ContextMenu", {"0", "0"}}, Row{"ProvideXdgActivationToken", {1}}})
    EXPECT_EQ(callItem(itemInterface, row.method, row.arguments).errorName(), invalidArgs) << row.method;
  EXPECT_EQ(chosen_, QStringList());
}

TEST_F(HostileCalls, UnknownItemsAreRefused) {
  const QVariant data = QVariant::fromValue(QDBusVariant(QString()));
  for (const int id : {-1, 5, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
    EXPECT_EQ(callMenu("GetLayout", {id, -1, QStringList()}).errorName(), invalidArgs) << id;
    EXPECT_EQ(callMenu("GetProperty", {id, "label"}).errorName(), invalidArgs) << id;
    EXPECT_EQ(callMenu("Event", {id, "clicked", data, 0U}).errorName(), invalidArgs) << id;
    EXPECT_EQ(callMenu("EventGroup", {events(3, id)}).errorName(), invalidArgs) << id;
    EXPECT_EQ(callMenu("AboutToShow", {id}).errorName(), invalidArgs) << id;
  }
  EXPECT_EQ(callMenu("GetProperty", {1, "nonsense"}).errorName(), invalidArgs);
  EXPECT_EQ(callMenu("EventGroup", {events(0, 0)}).type(), QDBusMessage::ReplyMessage);
}

TEST_F(HostileCalls, UnknownMethodsInterfacesAndPropertiesAreRefused) {
  EXPECT_EQ(callItem(itemInterface, "Nonsense").errorName(), unknownMethod);
  EXPECT_EQ(callItem("org.example.Nonsense", "ContextMenu", {1, 2}).errorName(), unknownMethod);
  EXPECT_EQ(callMenu("Nonsense").errorName(), unknownMethod);
  EXPECT_EQ(callItem(propertiesInterface, "Get", {itemInterface, "Nonsense"}).errorName(),
            "org.freedesktop.DBus.Error.UnknownProperty");
  EXPECT_EQ(callItem(propertiesInterface, "GetAll", {"org.example.Nonsense"}).errorName(),
            "org.freedesktop.DBus.Error.UnknownInterface");
  EXPECT_EQ(callItem(propertiesInterface, "Get", {1, 2}).errorName(), unknownMethod);
  const QVariant value = QVariant::fromValue(QDBusVariant("Bad"));
  EXPECT_EQ(callItem(propertiesInterface, "Set", {itemInterface, "Title", value}).errorName(),
            "org.freedesktop.DBus.Error.PropertyReadOnly");
  EXPECT_EQ(properties()["Title"], "All is well");
}

TEST_F(HostileCalls, ItemRequestedMillionTimesIsReturnedOnce) {
  const QDBusMessage reply =
      callMenu("GetGroupProperties", {QVariant::fromValue(QList<int>(1'000'000, 1)), QStringList()});
  const auto array = reply.arguments().value(0).value<QDBusArgument>();
  EXPECT_EQ(qdbus_cast<QList<platform::MenuProperties>>(array).size(), 1);
}

TEST_F(HostileCalls, FloodOfClicksIsLimitedAndLaterClicksWork) {
  EXPECT_EQ(callMenu("EventGroup", {events(100'000, 1)}).type(), QDBusMessage::ReplyMessage);
  ASSERT_TRUE(serveEventsUntil([&] { return !chosen_.isEmpty(); }));
  ASSERT_TRUE(isAlive());
  EXPECT_LE(chosen_.size(), 64);
  chosen_.clear();
  ASSERT_EQ(callMenu("EventGroup", {events(1, 3)}).type(), QDBusMessage::ReplyMessage);
  EXPECT_TRUE(serveEventsUntil([&] { return chosen_ == QStringList{"Second"}; }));
}

TEST_F(HostileCalls, CallsWithoutReplyExpectedGetNone) {
  const QString service = watcher_->items()[0].service;
  for (const char* method : {"GetLayout", "Nonsense"}) {
    QDBusMessage call = QDBusMessage::createMethodCall(service, "/MenuBar", menuInterface, method);
    ASSERT_TRUE(host_.bus().send(call));
  }
}

}  // namespace
