#include "platform/linux/tray/tray_host_watch.h"

#include <xcb/xcb.h>

#include <cstdlib>
#include <fstream>
#include <string>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
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

QDBusPendingCall askForWatchersProcess() {
  QDBusMessage call = QDBusMessage::createMethodCall(
      QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
      QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetConnectionUnixProcessID"));
  call << QString(watcherService);
  return QDBusConnection::sessionBus().asyncCall(call, answerLimitMs);
}

// Returns an empty text for a process of another PID namespace.
std::string processName(uint id) {
  std::ifstream file("/proc/" + std::to_string(id) + "/comm");
  std::string name;
  std::getline(file, name);
  return name;
}

}  // namespace

TrayHostWatch::TrayHostWatch(std::function<void()> changed)
    : changed_(std::move(changed)),
      watcherName_(watcherService, QDBusConnection::sessionBus(), QDBusServiceWatcher::WatchForOwnerChange),
      processQuestion_(QDBusPendingCall::fromCompletedCall({})) {
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
  // The bus itself answers this request, before the watcher's answer to the next one.
  processQuestion_ = askForWatchersProcess();
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
  const QDBusPendingReply<uint> process = processQuestion_;
  symbolSource_ = process.isValid() ? symbolSourceOf(processName(process.value())) : SymbolSource::Nowhere;
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

bool TrayHostWatch::trayOnScreen() {
  xcb_connection_t* connection = xConnection();
  if (connection == nullptr || traySelection_ == XCB_ATOM_NONE) return false;
  const auto cookie = xcb_get_selection_owner(connection, traySelection_);
  const XReply<xcb_get_selection_owner_reply_t> owner(
      xcb_get_selection_owner_reply(connection, cookie, nullptr));
  trayWindow_ = owner == nullptr ? 0 : owner->owner;
  if (trayWindow_ == XCB_WINDOW_NONE) return false;
  // The event mask that Qt, too, sets for the tray.
  constexpr quint32 structure = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
  xcb_change_window_attributes(connection, trayWindow_, XCB_CW_EVENT_MASK, &structure);
  return true;
}

// A new tray announces itself with a MANAGER message to the root window, which names its selection. The end
// of a tray destroys its window.
bool TrayHostWatch::isTrayEvent(const xcb_generic_event_t& event) const {
  const int type = event.response_type & 0x7f;
  if (type == XCB_DESTROY_NOTIFY)
    return reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window == trayWindow_;
  if (type != XCB_CLIENT_MESSAGE) return false;
  const auto& client = reinterpret_cast<const xcb_client_message_event_t&>(event);
  return client.type == managerMessage_ && client.data.data32[1] == traySelection_;
}

bool TrayHostWatch::nativeEventFilter(const QByteArray&, void* message, qintptr*) {
  if (isTrayEvent(*static_cast<const xcb_generic_event_t*>(message)))
    QMetaObject::invokeMethod(
        this, [this] { changed_(); }, Qt::QueuedConnection);
  return false;
}

}  // namespace platform
