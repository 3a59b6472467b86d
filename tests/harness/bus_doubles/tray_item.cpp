#include "tests/harness/bus_doubles/tray_item.h"

#include <limits>
#include <utility>

#include <QDBusArgument>
#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>

#include "tests/harness/bus_doubles/command_lines.h"

namespace {

const QString kItemInterface = "org.kde.StatusNotifierItem";
const QString kMenuInterface = "com.canonical.dbusmenu";
constexpr int kNoTimeout =
    std::numeric_limits<int>::max();  // the reply to a click arrives when the menu that it opened is closed

}  // namespace

TrayItem::TrayItem(QDBusConnection bus, ItemAddress address)
    : bus_(std::move(bus)), address_(std::move(address)) {
  for (const char* name :
       {"NewTitle", "NewIcon", "NewAttentionIcon", "NewOverlayIcon", "NewToolTip", "NewStatus", "NewMenu"}) {
    bus_.connect(address_.service, address_.path, kItemInterface, name, this,
                 SLOT(printSignal(QDBusMessage)));
  }
  listenToMenu();
}

void TrayItem::listenToMenu() {
  for (const char* name : {"LayoutUpdated", "ItemsPropertiesUpdated", "ItemActivationRequested"}) {
    // Match any object path: querying the item for its menu path first would lose the signals emitted
    // meanwhile.
    bus_.connect(address_.service, {}, kMenuInterface, name, this, SLOT(printSignal(QDBusMessage)));
  }
}

void TrayItem::printSignal(const QDBusMessage& signal) {
  const bool withStatus = signal.member() == "NewStatus" && !signal.arguments().isEmpty();
  say(withStatus ? "NewStatus " + signal.arguments().constFirst().toString() : signal.member());
}

void TrayItem::fetchProperties(const std::function<void(const QVariantMap&)>& use) {
  QDBusMessage message = QDBusMessage::createMethodCall(address_.service, address_.path,
                                                        "org.freedesktop.DBus.Properties", "GetAll");
  message << kItemInterface;
  call(message, [use](const QDBusMessage& reply) {
    use(qdbus_cast<QVariantMap>(reply.arguments().value(0).value<QDBusArgument>()));
  });
}

void TrayItem::fetchMenu(const std::function<void(const QList<MenuItem>&)>& use) {
  fetchProperties([this, use](const QVariantMap& properties) {
    menuPath_ = properties.value("Menu").value<QDBusObjectPath>().path();
    if (menuPath_.isEmpty()) return say("error the item has no menu");
    fetchLayout(use);
  });
}

void TrayItem::fetchLayout(const std::function<void(const QList<MenuItem>&)>& use) {
  QDBusMessage message =
      QDBusMessage::createMethodCall(address_.service, menuPath_, kMenuInterface, "GetLayout");
  message << 0 << -1 << QStringList();
  call(message, [this, use](const QDBusMessage& reply) {
    knownMenu_ = itemsOfLayout(reply.arguments().value(1));
    use(knownMenu_);
  });
}

void TrayItem::callItem(const QString& method, const QVariantList& arguments, const QString& name) {
  QDBusMessage message =
      QDBusMessage::createMethodCall(address_.service, address_.path, kItemInterface, method);
  message.setArguments(arguments);
  callAndTell(message, name);
}

void TrayItem::callMenu(const QString& method, const QVariantList& arguments, const QString& name) {
  QDBusMessage message = QDBusMessage::createMethodCall(address_.service, menuPath_, kMenuInterface, method);
  message.setArguments(arguments);
  callAndTell(message, name);
}

void TrayItem::callAndTell(const QDBusMessage& message, const QString& name) {
  auto* watcher = new QDBusPendingCallWatcher(bus_.asyncCall(message, kNoTimeout), this);
  connect(watcher, &QDBusPendingCallWatcher::finished, this, [watcher, name] {
    const QDBusPendingCall done = *watcher;
    watcher->deleteLater();
    say(done.isError() ? "failed " + name + " " + done.error().message() : name);
  });
}

void TrayItem::call(const QDBusMessage& message, const UseReply& use) {
  auto* watcher = new QDBusPendingCallWatcher(bus_.asyncCall(message, kNoTimeout), this);
  connect(watcher, &QDBusPendingCallWatcher::finished, this, [watcher, use] {
    const QDBusPendingCall done = *watcher;
    watcher->deleteLater();
    if (done.isError()) {
      say("error " + done.error().message());
    } else {
      use(done.reply());
    }
  });
}
