#include "platform/linux/desktop/activity_watch.h"

#include <xcb/xcb.h>

#include <chrono>
#include <utility>

#include <QApplication>
#include <QWindow>

#include "platform/linux/desktop/input_focus.h"

namespace platform {
namespace {

// The input focus passes through intermediate states while it moves from one window to another.
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

// Postpones the report while a popup or a tool window has the input focus. They belong to the status menu:
// the user has not switched to a window, and Qt closes the menu when a window is shown.
void ActivityWatch::look() {
  const QWindow* window = QGuiApplication::focusWindow();
  const bool isTool = window != nullptr && window->type() == Qt::Tool;
  if (isTool || QApplication::activePopupWidget() != nullptr) return settle_.start();
  if (QGuiApplication::applicationState() == Qt::ApplicationActive) return report(true);
  focusProperty_ = inputFocusProperty();
  const InputFocusOwner owner = inputFocusOwner();
  if (owner == InputFocusOwner::OtherProgram || owner == InputFocusOwner::Unknown) report(false);
}

void ActivityWatch::report(bool active) {
  if (std::exchange(active_, active) != active) changed_(active);
}

// If Qt reports the program as inactive while no window has the input focus yet, waits for the window manager
// to update its active-window property.
bool ActivityWatch::nativeEventFilter(const QByteArray& type, void* message, qintptr*) {
  if (!active_ || QGuiApplication::applicationState() == Qt::ApplicationActive) return false;
  if (type != "xcb_generic_event_t") return false;
  const auto* event = static_cast<const xcb_generic_event_t*>(message);
  if ((event->response_type & 0x7f) != XCB_PROPERTY_NOTIFY) return false;
  const auto* change = reinterpret_cast<const xcb_property_notify_event_t*>(event);
  if (change->atom == focusProperty_) settle_.start();
  return false;
}

}  // namespace platform
