#include "platform/linux/desktop/desktop_watch.h"

#include <xcb/xcb.h>

#include <chrono>

#include <QGuiApplication>

#include "platform/linux/desktop/x_requests.h"

namespace platform {
namespace {

constexpr std::chrono::milliseconds settleTime{100};

}  // namespace

DesktopWatch::DesktopWatch(const std::function<void()>& changed) {
  if (xConnection() == nullptr) return;
  settle_.setSingleShot(true);
  settle_.setInterval(settleTime);
  QObject::connect(&settle_, &QTimer::timeout, &settle_, changed);
  currentDesktop_ = xAtom(xConnection(), "_NET_CURRENT_DESKTOP");
  showingDesktop_ = xAtom(xConnection(), "_NET_SHOWING_DESKTOP");
  windowsDesktop_ = xAtom(xConnection(), "_NET_WM_DESKTOP");
  qGuiApp->installNativeEventFilter(this);
}

DesktopWatch::~DesktopWatch() {
  if (qGuiApp != nullptr) qGuiApp->removeNativeEventFilter(this);
}

// Qt selects PropertyChangeMask on the root window and on its own windows.
bool DesktopWatch::nativeEventFilter(const QByteArray& type, void* message, qintptr*) {
  if (type != "xcb_generic_event_t") return false;
  const auto* event = static_cast<const xcb_generic_event_t*>(message);
  if ((event->response_type & 0x7f) != XCB_PROPERTY_NOTIFY) return false;
  const auto* change = reinterpret_cast<const xcb_property_notify_event_t*>(event);
  for (const std::uint32_t property : {currentDesktop_, showingDesktop_, windowsDesktop_}) {
    if (change->atom == property) settle_.start();
  }
  return false;
}

}  // namespace platform
