#include "platform/linux/tray/tray_host_watch.h"

#include <xcb/xcb.h>

#include <cstdlib>
#include <string>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>

#include "platform/linux/desktop/x_requests.h"

namespace platform {
namespace {

constexpr QLatin1StringView watcherService("org.kde.StatusNotifierWatcher");
constexpr QLatin1StringView watcherPath("/StatusNotifierWatcher");

// The screen that DISPLAY names.
int screenNumber() {
  char* host = nullptr;
  int display = 0, screen = 0;
  if (xcb_parse_display(nullptr, &host, &display, &screen) == 0) return 0;
  std::free(host);
  return screen;
}

}  // namespace

TrayHostWatch::TrayHostWatch(std::function<void()> found)
    : found_(std::move(found)),
      watcherName_(watcherService, QDBusConnection::sessionBus(), QDBusServiceWatcher::WatchForRegistration) {
  connect(&watcherName_, &QDBusServiceWatcher::serviceRegistered, this, &TrayHostWatch::askWatcher);
  QDBusConnection::sessionBus().connect(watcherService, watcherPath, watcherService,
                                        QStringLiteral("StatusNotifierHostRegistered"), this,
                                        SLOT(askWatcher()));
  askWatcher();
  askScreen();
}

TrayHostWatch::~TrayHostWatch() {
  QCoreApplication::instance()->removeNativeEventFilter(this);
}

void TrayHostWatch::askWatcher() {
  auto bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) return;
  QDBusMessage call = QDBusMessage::createMethodCall(
      watcherService, watcherPath, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
  call << QString(watcherService) << QStringLiteral("IsStatusNotifierHostRegistered");
  call.setAutoStartService(false);
  auto* answer = new QDBusPendingCallWatcher(bus.asyncCall(call), this);
  connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
    answer->deleteLater();
    const QDBusPendingReply<QDBusVariant> reply = *answer;
    if (reply.isValid() && reply.value().variant().toBool()) report();
  });
}

void TrayHostWatch::askScreen() {
  xcb_connection_t* connection = xConnection();
  if (connection == nullptr) return;
  managerMessage_ = xAtom(connection, "MANAGER");
  traySelection_ = xAtom(connection, "_NET_SYSTEM_TRAY_S" + std::to_string(screenNumber()));
  if (managerMessage_ == XCB_ATOM_NONE || traySelection_ == XCB_ATOM_NONE) return;
  QCoreApplication::instance()->installNativeEventFilter(this);
  const auto cookie = xcb_get_selection_owner(connection, traySelection_);
  const XReply<xcb_get_selection_owner_reply_t> owner(
      xcb_get_selection_owner_reply(connection, cookie, nullptr));
  if (owner == nullptr || owner->owner == XCB_WINDOW_NONE) return;
  // The toolkit itself looks for a host on the bus first, and prefers it.
  QMetaObject::invokeMethod(
      this, [this] { report(); }, Qt::QueuedConnection);
}

// A new tray announces itself with a MANAGER message to the root window, which names its selection.
bool TrayHostWatch::nativeEventFilter(const QByteArray&, void* message, qintptr*) {
  const auto* event = static_cast<const xcb_generic_event_t*>(message);
  if ((event->response_type & 0x7f) != XCB_CLIENT_MESSAGE) return false;
  const auto* client = reinterpret_cast<const xcb_client_message_event_t*>(event);
  if (client->type == managerMessage_ && client->data.data32[1] == traySelection_) {
    QMetaObject::invokeMethod(
        this, [this] { report(); }, Qt::QueuedConnection);
  }
  return false;
}

void TrayHostWatch::report() {
  if (const auto found = std::exchange(found_, nullptr)) found();
}

}  // namespace platform
