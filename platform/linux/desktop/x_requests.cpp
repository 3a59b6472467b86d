#include "platform/linux/desktop/x_requests.h"

#include <xcb/xcb.h>

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>
#include <QWindow>

#include <X11/Xlib.h>

namespace platform {
namespace {

auto* xApplication() {
  return qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
}

}  // namespace

xcb_connection_t* xConnection() {
  const auto* x11 = xApplication();
  return x11 == nullptr ? nullptr : x11->connection();
}

std::uint32_t xAtom(xcb_connection_t* connection, const std::string& name) {
  const auto cookie =
      xcb_intern_atom(connection, false, static_cast<std::uint16_t>(name.size()), name.c_str());
  const XReply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection, cookie, nullptr));
  if (reply == nullptr) return XCB_ATOM_NONE;
  return reply->atom;
}

std::uint32_t xRoot() {
  return xcb_setup_roots_iterator(xcb_get_setup(xConnection())).data->root;
}

// The extension exists since Xwayland 23.1. Earlier versions name the screens so.
bool isXwayland() {
  xcb_connection_t* connection = xConnection();
  if (connection == nullptr) return false;
  constexpr std::string_view name = "XWAYLAND";
  const QScreen* screen = QGuiApplication::primaryScreen();
  if (screen != nullptr && screen->name().startsWith(QLatin1StringView(name.data(), name.size())))
    return true;
  const auto cookie = xcb_query_extension(connection, name.size(), name.data());
  const XReply<xcb_query_extension_reply_t> reply(xcb_query_extension_reply(connection, cookie, nullptr));
  return reply != nullptr && reply->present != 0;
}

std::optional<std::uint32_t> xNumber(std::uint32_t window, std::uint32_t property, std::uint32_t type) {
  const auto cookie = xcb_get_property(xConnection(), 0, window, property, type, 0, 1);
  const XReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(xConnection(), cookie, nullptr));
  if (!reply || reply->format != 32 || xcb_get_property_value_length(reply.get()) == 0) return std::nullopt;
  return *static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
}

std::uint32_t xWindowOf(const QWidget& widget) {
  const QWindow* window = widget.windowHandle();
  if (window == nullptr || window->handle() == nullptr) return XCB_WINDOW_NONE;
  return static_cast<std::uint32_t>(window->winId());
}

void settleXRequests() {
  const auto* x11 = xApplication();
  if (x11 != nullptr) XSync(x11->display(), False);
}

}  // namespace platform
