#include "platform/linux/windows/input_mark.h"

#include <xcb/xcb.h>

#include <QGuiApplication>
#include <QInputEvent>
#include <QWidget>

#include "platform/linux/desktop/x_requests.h"

namespace platform {

InputMark::InputMark(const QWidget& window) : window_(window) {
  qGuiApp->installNativeEventFilter(this);
}

InputMark::~InputMark() {
  qGuiApp->removeNativeEventFilter(this);
}

void InputMark::set() {
  const xcb_window_t window = xWindowOf(window_);
  if (xConnection() == nullptr || window == XCB_WINDOW_NONE) return;
  property_ = xAtom(xConnection(), "_TOVALIN_INPUT_MARK");
  xcb_change_property(xConnection(), XCB_PROP_MODE_APPEND, window, property_, XCB_ATOM_INTEGER, 32, 0,
                      nullptr);
  xcb_flush(xConnection());
  isPending_ = true;
}

bool InputMark::isAfter(const QInputEvent& input) const {
  // Synthetic events, such as those of input methods, have the timestamp CurrentTime (0).
  if (input.timestamp() == 0) return false;
  if (isPending_) return true;
  if (!time_) return false;
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(input.timestamp()) - *time_) <= 0;
}

bool InputMark::nativeEventFilter(const QByteArray& type, void* message, qintptr*) {
  if (!isPending_ || type != "xcb_generic_event_t") return false;
  const auto* event = static_cast<const xcb_generic_event_t*>(message);
  if ((event->response_type & 0x7f) != XCB_PROPERTY_NOTIFY) return false;
  const auto* change = reinterpret_cast<const xcb_property_notify_event_t*>(event);
  if (change->window != xWindowOf(window_) || change->atom != property_) return false;
  time_ = change->time;
  isPending_ = false;
  return true;
}

}  // namespace platform
