#include "platform/linux/tray/status_notifier_item.h"

#include <gmock/gmock.h>

#include <QApplication>
#include <QCursor>
#include <QDBusConnectionInterface>
#include <QDBusVariant>
#include <QDir>
#include <QMenu>
#include <QTimer>

#include "platform/image.h"
#include "platform/linux/tray/host_menu_wait.h"
#include "tests/harness/bus_doubles/icon_pixmap.h"
#include "tests/platform/linux/tray/tray_bus_fixture.h"

namespace {

using platform::Image;
using platform::Size;

QStringList sizesOf(const QVariant& pixmaps) {
  QStringList sizes;
  for (const QImage& image : imagesOf(pixmaps)) sizes.append(sizeText(image));
  return sizes;
}

QString ownName(int number) {
  return QString("org.kde.StatusNotifierItem-%1-%2").arg(QCoreApplication::applicationPid()).arg(number);
}

TEST_F(TrayBusTest, HasPropertiesOfStatusNotifierItem) {
  ASSERT_NO_FATAL_FAILURE(makeRegisteredItem());
  const QVariantMap all = properties();
  EXPECT_EQ(all["Category"], "ApplicationStatus");
  EXPECT_EQ(all["Id"], QCoreApplication::applicationName());
  EXPECT_EQ(all["Title"], "All is well");
  EXPECT_EQ(all["Status"], "Active");
  EXPECT_EQ(all["ItemIsMenu"], true);
  EXPECT_EQ(all["Menu"].value<QDBusObjectPath>().path(), "/MenuBar");
  EXPECT_EQ(all["IconName"], "");
  EXPECT_EQ(all["IconThemePath"], "");
  EXPECT_EQ(sizesOf(all["IconPixmap"]), (QStringList{"20x20", "40x40", "80x80"}));
  EXPECT_EQ(sizesOf(all["AttentionIconPixmap"]), QStringList());
  EXPECT_EQ(all["ToolTip"].value<QDBusArgument>().currentSignature(), "(sa(iiay)ss)");
}

TEST_F(TrayBusTest, EachPropertyCanBeReadAlone) {
  ASSERT_NO_FATAL_FAILURE(makeRegisteredItem());
  const QVariantMap all = properties();
  EXPECT_EQ(all.size(), 16);
  for (auto property = all.begin(); property != all.end(); ++property) {
    const QDBusMessage one = callItem(propertiesInterface, "Get", {itemInterface, property.key()});
    ASSERT_EQ(one.signature(), "v") << property.key().toStdString();
    const QVariant value = one.arguments()[0].value<QDBusVariant>().variant();
    if (!value.canConvert<QString>()) continue;
    EXPECT_EQ(value, property.value()) << property.key().toStdString();
  }
}

TEST_F(TrayBusTest, TextDefaultsToTitleThenToProgramName) {
  ASSERT_NO_FATAL_FAILURE(makeRegisteredItem());
  item_->setTitle("Named");
  EXPECT_EQ(properties()["Title"], "All is well");
  item_->setToolTip("");
  EXPECT_EQ(properties()["Title"], "Named");
  item_->setTitle("");
  EXPECT_EQ(properties()["Title"], QCoreApplication::applicationName());
}

TEST_F(TrayBusTest, ActivateAndSecondaryActivateAreUnknownMethods) {
  ASSERT_NO_FATAL_FAILURE(makeRegisteredItem());
  for (const char* method : {"Activate", "SecondaryActivate"}) {
    const QDBusMessage reply = callItem(itemInterface, method, {10, 20});
    EXPECT_EQ(reply.errorName(), "org.freedesktop.DBus.Error.UnknownMethod") << method;
  }
  EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
}

// MATE's and LXQt's panels. MATE's sends coordinates of its own window.
TEST_F(TrayBusTest, ActivateOpensMenuAtPointerIfHostDoesNot) {
  ASSERT_NO_FATAL_FAILURE(makeRegisteredItem());
  QCursor::setPos(100, 200);
  ASSERT_TRUE(serveEventsUntil([] { return QCursor::pos() == QPoint(100, 200); }));
  for (const auto expected : {QDBusMessage::ErrorMessage, QDBusMessage::ReplyMessage}) {
    EXPECT_EQ(callItem(itemInterface, "Activate", {0, 26}).type(), expected);
    ASSERT_TRUE(serveEventsUntil([] { return QApplication::activePopupWidget() != nullptr; }));
    EXPECT_EQ(QApplication::activePopupWidget()->pos(), QPoint(100, 200));
    QApplication::activePopupWidget()->close();
  }
}

// Plasma and GNOME.
TEST_F(TrayBusTest, ActivateOpensNoMenuIfHostDoes) {
  ASSERT_NO_FATAL_FAILURE(makeRegisteredItem());
  for (int times = 0; times < 2; ++times) {
    EXPECT_EQ(callItem(itemInterface, "Activate", {100, 200}).type(), QDBusMessage::ErrorMessage);
    EXPECT_EQ(callMenu("AboutToShow", {0}).type(), QDBusMessage::ReplyMessage);
    bool isLate = false;
    QTimer::singleShot(2 * platform::hostMenuPatience, [&] { isLate = true; });
    ASSERT_TRUE(serveEventsUntil([&] { return isLate; }));
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
  }
}

// GNOME at a double click.
TEST_F(TrayBusTest, ActivateOpensNoMenuShortlyAfterHostOpenedIt) {
  ASSERT_NO_FATAL_FAILURE(makeRegisteredItem());
  EXPECT_EQ(callMenu("AboutToShow", {0}).type(), QDBusMessage::ReplyMessage);
  EXPECT_EQ(callItem(itemInterface, "Activate", {100, 200}).type(), QDBusMessage::ErrorMessage);
  bool isLate = false;
  QTimer::singleShot(2 * platform::hostMenuPatience, [&] { isLate = true; });
  ASSERT_TRUE(serveEventsUntil([&] { return isLate; }));
  EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
}

TEST_F(TrayBusTest, ActivateFailsAgainAfterSlowHostHasOpenedMenu) {
  ASSERT_NO_FATAL_FAILURE(makeRegisteredItem());
  EXPECT_EQ(callItem(itemInterface, "Activate", {100, 200}).type(), QDBusMessage::ErrorMessage);
  ASSERT_TRUE(serveEventsUntil([] { return QApplication::activePopupWidget() != nullptr; }));
  QApplication::activePopupWidget()->close();
  EXPECT_EQ(callMenu("AboutToShow", {0}).type(), QDBusMessage::ReplyMessage);
  EXPECT_EQ(callItem(itemInterface, "Activate", {100, 200}).type(), QDBusMessage::ErrorMessage);
}

TEST_F(TrayBusTest, FirstActivateOfNewHostFails) {
  ASSERT_NO_FATAL_FAILURE(makeRegisteredItem());
  EXPECT_EQ(callItem(itemInterface, "Activate", {100, 200}).type(), QDBusMessage::ErrorMessage);
  ASSERT_TRUE(serveEventsUntil([] { return QApplication::activePopupWidget() != nullptr; }));
  QApplication::activePopupWidget()->close();
  BusClient second("second");
  const ItemAddress item = watcher_->items().constLast();
  EXPECT_EQ(second.call(item.service, item.path, itemInterface, "Activate", {100, 200}).type(),
            QDBusMessage::ErrorMessage);
}

TEST_F(TrayBusTest, ContextMenuOpensMenuAtPosition) {
  ASSERT_NO_FATAL_FAILURE(makeRegisteredItem());
  EXPECT_EQ(callItem(itemInterface, "ContextMenu", {100, 200}).type(), QDBusMessage::ReplyMessage);
  ASSERT_TRUE(serveEventsUntil([] { return QApplication::activePopupWidget() != nullptr; }));
  EXPECT_EQ(QApplication::activePopupWidget()->pos(), QPoint(100, 200));
  QApplication::activePopupWidget()->close();
}

TEST_F(TrayBusTest, ActivationTokenIsAccepted) {
  ASSERT_NO_FATAL_FAILURE(makeRegisteredItem());
  EXPECT_EQ(callItem(itemInterface, "ProvideXdgActivationToken", {"token"}).type(),
            QDBusMessage::ReplyMessage);
}

TEST_F(TrayBusTest, ChangesAreSignalledOnceEach) {
  ASSERT_NO_FATAL_FAILURE(makeRegisteredItem());
  const auto image = std::make_shared<Image>(Size{20, 20});
  item_->setImage(image);
  EXPECT_TRUE(waitForSignal("NewIcon"));
  item_->setToolTip("All is lost");
  EXPECT_TRUE(waitForSignal("NewTitle"));
  EXPECT_TRUE(waitForSignal("NewToolTip"));
  EXPECT_EQ(properties()["Title"], "All is lost");
  item_->setToolTip("All is lost");
  item_->setImage(image);
  ASSERT_TRUE(isAlive());
  EXPECT_EQ(host_.signalNames(), QStringList());
}

// xfce4-panel paints the icon in the colours that it has when it loads it, and loads it again only if a
// property has changed.
TEST_F(TrayBusTest, IconChangeIsSignalledAgainWithOtherThemePath) {
  ASSERT_NO_FATAL_FAILURE(startWatcher());
  platform::StatusContent content{.text = "All is well",
                                  .image = std::make_shared<Image>(Size{20, 20}),
                                  .symbol = "none",
                                  .symbolFolder = "/tmp/symbols"};
  platform::StatusNotifierItem item([](auto) {});
  item.show(content, 1);
  ASSERT_TRUE(waitForItems(1));
  for (const char* name : {"one", "other"}) {
    content.symbol = name;
    item.show(content, 1);
    ASSERT_TRUE(waitForSignal("NewIcon"));
    const QVariantMap before = properties();
    EXPECT_EQ(before["IconName"], name);
    ASSERT_TRUE(waitForSignal("NewIcon"));
    const QVariantMap after = properties();
    EXPECT_EQ(after["IconName"], name);
    EXPECT_NE(after["IconThemePath"], before["IconThemePath"]);
    EXPECT_EQ(QDir(after["IconThemePath"].toString()), QDir("/tmp/symbols"));
  }
}

TEST_F(TrayBusTest, RegistersWithRestartedWatcher) {
  ASSERT_NO_FATAL_FAILURE(makeRegisteredItem());
  stopWatcher();
  ASSERT_NO_FATAL_FAILURE(startWatcher());
  EXPECT_TRUE(waitForItems(1));
  EXPECT_EQ(properties()["Title"], "All is well");
}

// The bus may transfer the name from one watcher to the next without an interval in which it has no owner.
TEST_F(TrayBusTest, RegistersWithReplacementWatcher) {
  constexpr auto service = "org.kde.StatusNotifierWatcher";
  ASSERT_NO_FATAL_FAILURE(startWatcher());
  host_.bus().unregisterService(service);
  ASSERT_TRUE(host_.bus().interface()->registerService(service, QDBusConnectionInterface::DontQueueService,
                                                       QDBusConnectionInterface::AllowReplacement));
  makeItem();
  ASSERT_TRUE(waitForItems(1));
  BusClient second("second");
  StatusNotifierWatcher successor(second.bus());
  ASSERT_TRUE(
      second.bus().registerObject("/StatusNotifierWatcher", &successor, QDBusConnection::ExportAllContents));
  ASSERT_TRUE(
      second.bus().interface()->registerService(service, QDBusConnectionInterface::ReplaceExistingService));
  EXPECT_TRUE(serveEventsUntil([&] { return successor.items().size() == 1; }));
}

TEST_F(TrayBusTest, HostRestartedWithoutWatcherFindsOneItem) {
  ASSERT_NO_FATAL_FAILURE(makeRegisteredItem());
  watcher_->setHostRegistered(false);
  watcher_->setHostRegistered(true);
  ASSERT_TRUE(isAlive());
  EXPECT_EQ(watcher_->items().size(), 1);
}

TEST_F(TrayBusTest, ItemIsUnregisteredWithoutImageAndRegisteredWithOne) {
  ASSERT_NO_FATAL_FAILURE(makeRegisteredItem());
  for (int times = 0; times < 3; ++times) {
    item_->setImage(nullptr);
    EXPECT_TRUE(waitForItems(0));
    item_->setImage(std::make_shared<Image>(Size{20, 20}));
    EXPECT_TRUE(waitForItems(1));
  }
}

TEST_F(TrayBusTest, QuickImageChangesEndInLastState) {
  ASSERT_NO_FATAL_FAILURE(makeRegisteredItem());
  const auto image = std::make_shared<Image>(Size{20, 20});
  item_->setImage(nullptr);
  item_->setImage(image);
  item_->setImage(nullptr);
  EXPECT_TRUE(waitForItems(0));
  item_->setImage(image);
  item_->setImage(nullptr);
  item_->setImage(image);
  EXPECT_TRUE(waitForItems(1));
  EXPECT_EQ(properties()["Title"], "All is well");
}

TEST_F(TrayBusTest, DestructionUnregistersItem) {
  ASSERT_NO_FATAL_FAILURE(makeRegisteredItem());
  item_.reset();
  EXPECT_TRUE(waitForItems(0));
}

// A process of another PID namespace on the bus may have the same process id.
TEST_F(TrayBusTest, UsesNextNameIfFirstOneIsOwned) {
  ASSERT_NO_FATAL_FAILURE(startWatcher());
  ASSERT_TRUE(host_.bus().registerService(ownName(1)));
  makeItem();
  ASSERT_TRUE(waitForItems(1));
  EXPECT_EQ(watcher_->items()[0].service, ownName(2));
  EXPECT_EQ(properties()["Title"], "All is well");
  host_.bus().unregisterService(ownName(1));
}

}  // namespace
