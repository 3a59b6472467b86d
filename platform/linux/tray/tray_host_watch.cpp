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
// A watcher that hangs must not keep the icon out of an X tray.
constexpr int answerLimitMs = 2000;

// Returns the number of the screen that DISPLAY names.
int screenNumber() {
  char* host = nullptr;
  int display = 0, screen = 0;
  if (xcb_parse_display(nullptr, &host, &display, &screen) == 0) return 0;
  std::free(host);
  return screen;
}

}  // namespace

TrayHostWatch::TrayHostWatch(std::function<void()> changed)
    : changed_(std::move(changed)),
      watcherName_(watcherService, QDBusConnection::sessionBus(), QDBusServiceWatcher::WatchForOwnerChange) {
  connect(&watcherName_, &QDBusServiceWatcher::serviceOwnerChanged, this, [this] {
    ++watcherNumber_;
    askWatcher();
  });
  for (const char* change : {"StatusNotifierHostRegistered", "StatusNotifierHostUnregistered"}) {
    QDBusConnection::sessionBus().connect(watcherService, watcherPath, watcherService,
                                          QString::fromLatin1(change), this, SLOT(askWatcher()));
  }
  askWatcher();
  watchScreen();
}

TrayHostWatch::~TrayHostWatch() {
  QCoreApplication::instance()->removeNativeEventFilter(this);
}

void TrayHostWatch::askWatcher() {
  auto bus = QDBusConnection::sessionBus();
  QDBusMessage call = QDBusMessage::createMethodCall(
      watcherService, watcherPath, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
  call << QString(watcherService) << QStringLiteral("IsStatusNotifierHostRegistered");
  call.setAutoStartService(false);
  // Replaces an earlier request, whose reply is outdated. Without a bus the reply is an error.
  question_ = std::make_unique<QDBusPendingCallWatcher>(bus.asyncCall(call, answerLimitMs));
  connect(question_.get(), &QDBusPendingCallWatcher::finished, this, &TrayHostWatch::takeAnswer,
          Qt::QueuedConnection);
}

void TrayHostWatch::takeAnswer() {
  if (question_ == nullptr || !question_->isFinished()) return;
  const QDBusPendingReply<QDBusVariant> answer = *question_;
  const bool present = answer.isValid() && answer.value().variant().toBool();
  question_.reset();
  busHost_ = present ? BusHost::Present : BusHost::Absent;
  changed_();
}

void TrayHostWatch::watchScreen() {
  xcb_connection_t* connection = xConnection();
  if (connection == nullptr) return;
  managerMessage_ = xAtom(connection, "MANAGER");
  traySelection_ = xAtom(connection, "_NET_SYSTEM_TRAY_S" + std::to_string(screenNumber()));
  if (managerMessage_ == XCB_ATOM_NONE || traySelection_ == XCB_ATOM_NONE) return;
  QCoreApplication::instance()->installNativeEventFilter(this);
}

bool TrayHostWatch::trayOnScreen() const {
  xcb_connection_t* connection = xConnection();
  if (connection == nullptr || traySelection_ == XCB_ATOM_NONE) return false;
  const auto cookie = xcb_get_selection_owner(connection, traySelection_);
  const XReply<xcb_get_selection_owner_reply_t> owner(
      xcb_get_selection_owner_reply(connection, cookie, nullptr));
  return owner != nullptr && owner->owner != XCB_WINDOW_NONE;
}

// A new tray announces itself with a MANAGER message to the root window, which names its selection.
bool TrayHostWatch::nativeEventFilter(const QByteArray&, void* message, qintptr*) {
  const auto* event = static_cast<const xcb_generic_event_t*>(message);
  if ((event->response_type & 0x7f) != XCB_CLIENT_MESSAGE) return false;
  const auto* client = reinterpret_cast<const xcb_client_message_event_t*>(event);
  if (client->type == managerMessage_ && client->data.data32[1] == traySelection_) {
    QMetaObject::invokeMethod(
        this, [this] { changed_(); }, Qt::QueuedConnection);
  }
  return false;
}

}  // namespace platform
