#include "platform/linux/x_requests.h"

#include <xcb/xcb.h>

#include <QGuiApplication>

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

void settleXRequests() {
  const auto* x11 = xApplication();
  if (x11 != nullptr) XSync(x11->display(), False);
}

}  // namespace platform
