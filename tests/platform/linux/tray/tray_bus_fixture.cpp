#include "tests/platform/linux/tray/tray_bus_fixture.h"

#include <QDBusArgument>
#include <QDBusPendingCall>

#include "platform/image.h"
#include "platform/menu_item.h"

namespace {

std::unique_ptr<platform::MenuItem> menuItem(QStringList& chosen, const char* title) {
  return std::make_unique<platform::MenuItem>(title, [&chosen, title] { chosen.append(title); });
}

}  // namespace

BusClient::BusClient(const QString& name)
    : name_(name), bus_(QDBusConnection::connectToBus(QDBusConnection::SessionBus, name)) {
  for (const QString& interface : {itemInterface, menuInterface})
    bus_.connect({}, {}, interface, {}, this, SLOT(note(QDBusMessage)));
}

BusClient::~BusClient() {
  QDBusConnection::disconnectFromBus(name_);
}

QDBusMessage BusClient::call(const QString& service, const QString& path, const QString& interface,
                             const QString& method, const QVariantList& arguments) {
  QDBusMessage message = QDBusMessage::createMethodCall(service, path, interface, method);
  message.setArguments(arguments);
  const QDBusPendingCall pending = bus_.asyncCall(message);
  EXPECT_TRUE(serveEventsUntil([&] { return pending.isFinished(); })) << method.toStdString();
  return pending.reply();
}

std::optional<QDBusMessage> BusClient::takeSignal(const QString& name) {
  for (qsizetype i = 0; i < signals_.size(); ++i) {
    if (signals_[i].member() == name) return signals_.takeAt(i);
  }
  return std::nullopt;
}

QStringList BusClient::signalNames() const {
  QStringList names;
  for (const QDBusMessage& signal : signals_) names.append(signal.member());
  return names;
}

void TrayBusTest::startWatcher() {
  watcher_ = std::make_unique<StatusNotifierWatcher>(host_.bus());
  ASSERT_TRUE(watcher_->publish());
}

void TrayBusTest::stopWatcher() {
  host_.bus().unregisterObject("/StatusNotifierWatcher");
  host_.bus().unregisterService("org.kde.StatusNotifierWatcher");
  watcher_.reset();
}

void TrayBusTest::makeItem() {
  item_ = std::make_unique<platform::StatusItem>(platform::StatusItem::variableLength);
  item_->setToolTip("All is well");
  item_->setImage(std::make_shared<platform::Image>(platform::Size{20, 20}));
  auto menu = std::make_unique<platform::Menu>();
  menu->addItem(menuItem(chosen_, "First"));
  menu->addItem(platform::MenuItem::separatorItem());
  menu->addItem(menuItem(chosen_, "Second"));
  menu->addItem(std::make_unique<platform::MenuItem>("Disabled", nullptr));
  item_->setMenu(std::move(menu));
}

void TrayBusTest::makeRegisteredItem() {
  ASSERT_NO_FATAL_FAILURE(startWatcher());
  makeItem();
  ASSERT_TRUE(waitForItems(1));
  host_.forgetSignals();
}

bool TrayBusTest::waitForItems(qsizetype number) {
  return serveEventsUntil([&] { return watcher_->items().size() == number; });
}

QDBusMessage TrayBusTest::callItem(const QString& interface, const QString& method,
                                   const QVariantList& arguments) {
  const ItemAddress address = watcher_->items().constLast();
  return host_.call(address.service, address.path, interface, method, arguments);
}

QDBusMessage TrayBusTest::callMenu(const QString& method, const QVariantList& arguments,
                                   const QString& interface) {
  return host_.call(watcher_->items().constLast().service, "/MenuBar", interface, method, arguments);
}

QVariantMap TrayBusTest::properties() {
  const QDBusMessage reply = callItem(propertiesInterface, "GetAll", {itemInterface});
  return qdbus_cast<QVariantMap>(reply.arguments().value(0).value<QDBusArgument>());
}

std::optional<QDBusMessage> TrayBusTest::waitForSignal(const QString& name) {
  std::optional<QDBusMessage> signal;
  static_cast<void>(serveEventsUntil([&] { return (signal = host_.takeSignal(name)).has_value(); }));
  return signal;
}

bool TrayBusTest::isAlive() {
  return callMenu("AboutToShow", {0}).type() == QDBusMessage::ReplyMessage;
}
