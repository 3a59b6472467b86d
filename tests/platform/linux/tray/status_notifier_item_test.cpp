#include <gmock/gmock.h>

#include <QApplication>
#include <QDBusConnectionInterface>
#include <QDBusVariant>
#include <QMenu>

#include "platform/image.h"
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
