#include "platform/linux/desktop/activity_watch.h"

#include <xcb/xcb.h>

#include <chrono>
#include <utility>

#include <QApplication>

#include "platform/linux/desktop/keyboard_holder.h"

namespace platform {
namespace {

// For as long as the keyboard is handed from one window to another.
constexpr std::chrono::milliseconds settleTime{100};

}  // namespace

ActivityWatch::ActivityWatch(std::function<void(bool active)> changed)
    : changed_(std::move(changed)), active_(QGuiApplication::applicationState() == Qt::ApplicationActive) {
  settle_.setSingleShot(true);
  settle_.setInterval(settleTime);
  connect(&settle_, &QTimer::timeout, this, [this] { look(); });
  connect(qGuiApp, &QGuiApplication::applicationStateChanged, this, &ActivityWatch::stateChanged);
  qGuiApp->installNativeEventFilter(this);
}

ActivityWatch::~ActivityWatch() {
  qGuiApp->removeNativeEventFilter(this);
}

void ActivityWatch::stateChanged(Qt::ApplicationState state) {
  if (state != Qt::ApplicationActive) return settle_.start();
  settle_.stop();
  look();
}

// The menu of the panel's icon takes the keyboard although the user has not turned to a window, and Qt closes
// it when a window is shown: nothing is told while it is open.
void ActivityWatch::look() {
  if (QApplication::activePopupWidget() != nullptr) return settle_.start();
  if (QGuiApplication::applicationState() == Qt::ApplicationActive) return tell(true);
  holderProperty_ = keyboardHolderProperty();
  const KeyboardHolder holder = keyboardHolder();
  if (holder == KeyboardHolder::OtherProgram || holder == KeyboardHolder::Unknown) tell(false);
}

void ActivityWatch::tell(bool active) {
  if (std::exchange(active_, active) != active) changed_(active);
}

// While the program is inactive and nobody has taken the keyboard yet, the window manager's word is awaited.
bool ActivityWatch::nativeEventFilter(const QByteArray& type, void* message, qintptr*) {
  if (!active_ || QGuiApplication::applicationState() == Qt::ApplicationActive) return false;
  if (type != "xcb_generic_event_t") return false;
  const auto* event = static_cast<const xcb_generic_event_t*>(message);
  if ((event->response_type & 0x7f) != XCB_PROPERTY_NOTIFY) return false;
  const auto* change = reinterpret_cast<const xcb_property_notify_event_t*>(event);
  if (change->atom == holderProperty_) settle_.start();
  return false;
}

}  // namespace platform
