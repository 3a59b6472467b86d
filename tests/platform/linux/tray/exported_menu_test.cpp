#include <gmock/gmock.h>

#include <QDBusArgument>
#include <QDBusVariant>
#include <QImage>

#include "platform/image.h"
#include "platform/menu_item.h"
#include "tests/platform/linux/tray/tray_bus_fixture.h"

namespace {

class ExportedMenu : public TrayBusTest {
 protected:
  void SetUp() override { ASSERT_NO_FATAL_FAILURE(makeRegisteredItem()); }

  struct Layout {
    uint revision = 0;
    QStringList labels = {};  // "--" for a separator
  };
  [[nodiscard]] Layout layout() {
    const QDBusMessage reply = callMenu("GetLayout", {0, -1, QStringList()});
    EXPECT_EQ(reply.signature(), "u(ia{sv}av)");
    Layout layout{reply.arguments().value(0).toUInt()};
    const auto root = reply.arguments().value(1).value<QDBusArgument>();
    root.beginStructure();
    int id = 0;
    QVariantMap properties;
    root >> id >> properties;
    root.beginArray();
    while (!root.atEnd()) {
      QDBusVariant child;
      root >> child;
      const auto structure = child.variant().value<QDBusArgument>();
      structure.beginStructure();
      structure >> id >> properties;
      layout.labels.append(properties["type"] == "separator" ? "--" : properties["label"].toString());
    }
    return layout;
  }
  [[nodiscard]] QDBusMessage sendEvent(int id, const QString& name) {
    return callMenu("Event", {id, name, QVariant::fromValue(QDBusVariant(QString())), 0U});
  }
  [[nodiscard]] QVariant property(int id, const QString& name) {
    const QDBusMessage reply = callMenu("GetProperty", {id, name});
    return reply.arguments().value(0).value<QDBusVariant>().variant();
  }
};

TEST_F(ExportedMenu, HasLinesOfMenu) {
  EXPECT_EQ(layout().labels, (QStringList{"First", "--", "Second", "Disabled"}));
  EXPECT_EQ(property(1, "enabled"), true);
  EXPECT_EQ(property(4, "enabled"), false);
}

TEST_F(ExportedMenu, ClickTriggersLine) {
  EXPECT_EQ(sendEvent(3, "clicked").type(), QDBusMessage::ReplyMessage);
  EXPECT_TRUE(serveEventsUntil([&] { return chosen_ == QStringList{"Second"}; }));
}

TEST_F(ExportedMenu, OtherEventsAndClicksOnUnclickableItemsAreIgnored) {
  for (const char* name : {"opened", "closed", "hovered", "CLICKED", "", "x-vendor-event"})
    EXPECT_EQ(sendEvent(1, name).type(), QDBusMessage::ReplyMessage) << name;
  for (const int id : {0, 2, 4}) EXPECT_EQ(sendEvent(id, "clicked").type(), QDBusMessage::ReplyMessage) << id;
  ASSERT_TRUE(isAlive());
  EXPECT_EQ(chosen_, QStringList());
}

TEST_F(ExportedMenu, ChangedTitleIsSentInSignal) {
  const uint revision = layout().revision;
  item_->menu()->itemWithTitle("First")->setTitle("Another_one & more");
  const auto signal = waitForSignal("ItemsPropertiesUpdated");
  ASSERT_TRUE(signal);
  EXPECT_EQ(signal->signature(), "a(ia{sv})a(ias)");
  EXPECT_EQ(property(1, "label"), "Another__one & more");
  EXPECT_EQ(layout().revision, revision);
}

TEST_F(ExportedMenu, AddedLineUpdatesLayout) {
  const uint revision = layout().revision;
  item_->menu()->addItem(std::make_unique<platform::MenuItem>("Third", [] {}));
  const auto signal = waitForSignal("LayoutUpdated");
  ASSERT_TRUE(signal);
  EXPECT_GT(signal->arguments()[0].toUInt(), revision);
  EXPECT_EQ(signal->arguments()[1], 0);
  EXPECT_EQ(layout().labels.last(), "Third");
  EXPECT_EQ(layout().revision, signal->arguments()[0].toUInt());
}

TEST_F(ExportedMenu, ReplacedMenuUpdatesLayout) {
  const uint revision = layout().revision;
  auto menu = std::make_unique<platform::Menu>();
  menu->addItem(std::make_unique<platform::MenuItem>("Only", [] {}));
  item_->setMenu(std::move(menu));
  EXPECT_TRUE(waitForSignal("LayoutUpdated"));
  EXPECT_EQ(layout().labels, QStringList{"Only"});
  EXPECT_GT(layout().revision, revision);
}

TEST_F(ExportedMenu, PictureIsPngOfItsOwnSize) {
  EXPECT_EQ(property(1, "icon-data"), QVariant());
  const auto picture = std::make_shared<platform::Image>(platform::Size{70, 17});
  item_->menu()->itemWithTitle("First")->setImage(picture);
  ASSERT_TRUE(waitForSignal("ItemsPropertiesUpdated"));
  EXPECT_EQ(QImage::fromData(property(1, "icon-data").toByteArray(), "PNG").size(), QSize(70, 17));
  item_->menu()->itemWithTitle("First")->setImage(nullptr);
  ASSERT_TRUE(waitForSignal("ItemsPropertiesUpdated"));
  EXPECT_EQ(property(1, "icon-data"), QVariant());
}

TEST_F(ExportedMenu, AboutToShowNeedsNoUpdate) {
  for (const int id : {0, 1}) EXPECT_EQ(callMenu("AboutToShow", {id}).arguments().value(0), false) << id;
  const QDBusMessage group = callMenu("AboutToShowGroup", {QVariant::fromValue(QList<int>{0, 1, 77})});
  EXPECT_EQ(group.signature(), "aiai");
  EXPECT_EQ(qdbus_cast<QList<int>>(group.arguments().value(0)), QList<int>());
  EXPECT_EQ(qdbus_cast<QList<int>>(group.arguments().value(1)), QList<int>{77});
}

TEST_F(ExportedMenu, GroupPropertiesReturnsRequestedItems) {
  const QDBusMessage reply =
      callMenu("GetGroupProperties", {QVariant::fromValue(QList<int>{1, 3}), QStringList{"label"}});
  EXPECT_EQ(reply.signature(), "a(ia{sv})");
}

TEST_F(ExportedMenu, HasOwnProperties) {
  const auto get = [this](const char* name) {
    return callMenu("Get", {menuInterface, name}, propertiesInterface)
        .arguments()
        .value(0)
        .value<QDBusVariant>()
        .variant();
  };
  EXPECT_EQ(get("Version"), 3U);
  EXPECT_EQ(get("TextDirection"), "ltr");
  EXPECT_EQ(get("Status"), "normal");
  EXPECT_EQ(get("IconThemePath"), QStringList());
}

}  // namespace
