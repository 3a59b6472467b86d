#include "platform/linux/desktop/keyboard_holder.h"

#include <xcb/xcb.h>

#include <algorithm>
#include <array>

#include "platform/linux/desktop/x_requests.h"

namespace platform {
namespace {

// Compares the client's range of resource ids, which works for a destroyed window too.
bool isOfThisProgram(xcb_window_t window) {
  const xcb_setup_t* setup = xcb_get_setup(xConnection());
  return (window & ~setup->resource_id_mask) == setup->resource_id_base;
}

bool isOnScreen(xcb_window_t window) {
  const auto cookie = xcb_get_window_attributes(xConnection(), window);
  using Reply = xcb_get_window_attributes_reply_t;
  const XReply<Reply> reply(xcb_get_window_attributes_reply(xConnection(), cookie, nullptr));
  return reply && reply->map_state == XCB_MAP_STATE_VIEWABLE;
}

bool holdsInPassing(xcb_window_t window) {
  constexpr std::array passing{"_NET_WM_WINDOW_TYPE_DOCK", "_NET_WM_WINDOW_TYPE_MENU",
                               "_NET_WM_WINDOW_TYPE_POPUP_MENU", "_NET_WM_WINDOW_TYPE_DROPDOWN_MENU",
                               "_NET_WM_WINDOW_TYPE_NOTIFICATION"};
  const auto type = xNumber(window, xAtom(xConnection(), "_NET_WM_WINDOW_TYPE"), XCB_ATOM_ATOM);
  return type && std::ranges::any_of(
                     passing, [type](const char* name) { return xAtom(xConnection(), name) == *type; });
}

}  // namespace

std::uint32_t keyboardHolderProperty() {
  return xConnection() == nullptr ? 0 : xAtom(xConnection(), "_NET_ACTIVE_WINDOW");
}

KeyboardHolder keyboardHolder() {
  if (xConnection() == nullptr) return KeyboardHolder::Unknown;
  const auto holder = xNumber(xRoot(), keyboardHolderProperty(), XCB_ATOM_WINDOW);
  if (!holder) return KeyboardHolder::Unknown;
  if (*holder == XCB_WINDOW_NONE) return KeyboardHolder::Nobody;
  if (isOfThisProgram(*holder)) return KeyboardHolder::ThisProgram;
  // Check the type first: a menu that closes between the two requests then fails the second one.
  const bool isPrograms = !holdsInPassing(*holder) && isOnScreen(*holder);
  return isPrograms ? KeyboardHolder::OtherProgram : KeyboardHolder::Nobody;
}

}  // namespace platform
