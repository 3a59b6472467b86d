#include "platform/linux/keyboard_holder.h"

#include <xcb/xcb.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string_view>

#include <QGuiApplication>
#include <QWindow>

namespace platform {
namespace {

template <typename Reply>
struct Free {
  void operator()(Reply* reply) const { std::free(reply); }
};
template <typename Reply>
using Owned = std::unique_ptr<Reply, Free<Reply>>;

xcb_connection_t* connection() {
  const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  return x11 == nullptr ? nullptr : x11->connection();
}

xcb_atom_t atomNamed(std::string_view name) {
  const auto cookie = xcb_intern_atom(connection(), 1, static_cast<std::uint16_t>(name.size()), name.data());
  const Owned<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection(), cookie, nullptr));
  return reply ? reply->atom : 0;
}

// The first number of a property.
std::optional<std::uint32_t> numberIn(xcb_window_t window, xcb_atom_t property, xcb_atom_t type) {
  const auto cookie = xcb_get_property(connection(), 0, window, property, type, 0, 1);
  const Owned<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection(), cookie, nullptr));
  if (!reply || reply->format != 32 || xcb_get_property_value_length(reply.get()) == 0) return std::nullopt;
  return *static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
}

bool isOfThisProgram(xcb_window_t window) {
  const auto own = QGuiApplication::topLevelWindows();
  return std::ranges::any_of(
      own, [window](const QWindow* each) { return each->handle() != nullptr && each->winId() == window; });
}

bool holdsInPassing(xcb_window_t window) {
  constexpr std::array passing{"_NET_WM_WINDOW_TYPE_DOCK", "_NET_WM_WINDOW_TYPE_MENU",
                               "_NET_WM_WINDOW_TYPE_POPUP_MENU", "_NET_WM_WINDOW_TYPE_DROPDOWN_MENU",
                               "_NET_WM_WINDOW_TYPE_NOTIFICATION"};
  const auto type = numberIn(window, atomNamed("_NET_WM_WINDOW_TYPE"), XCB_ATOM_ATOM);
  return type && std::ranges::any_of(passing, [type](const char* name) { return atomNamed(name) == *type; });
}

}  // namespace

std::uint32_t keyboardHolderProperty() {
  return connection() == nullptr ? 0 : atomNamed("_NET_ACTIVE_WINDOW");
}

KeyboardHolder keyboardHolder() {
  if (connection() == nullptr) return KeyboardHolder::Unknown;
  const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection())).data->root;
  const auto holder = numberIn(root, keyboardHolderProperty(), XCB_ATOM_WINDOW);
  if (!holder) return KeyboardHolder::Unknown;
  if (*holder == XCB_WINDOW_NONE) return KeyboardHolder::Nobody;
  if (isOfThisProgram(*holder)) return KeyboardHolder::ThisProgram;
  return holdsInPassing(*holder) ? KeyboardHolder::Nobody : KeyboardHolder::OtherProgram;
}

}  // namespace platform
