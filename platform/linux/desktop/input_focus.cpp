#include "platform/linux/desktop/input_focus.h"

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

bool hasFocusTemporarily(xcb_window_t window) {
  constexpr std::array temporary{"_NET_WM_WINDOW_TYPE_DOCK", "_NET_WM_WINDOW_TYPE_MENU",
                                 "_NET_WM_WINDOW_TYPE_POPUP_MENU", "_NET_WM_WINDOW_TYPE_DROPDOWN_MENU",
                                 "_NET_WM_WINDOW_TYPE_NOTIFICATION"};
  const auto type = xNumber(window, xAtom(xConnection(), "_NET_WM_WINDOW_TYPE"), XCB_ATOM_ATOM);
  return type && std::ranges::any_of(
                     temporary, [type](const char* name) { return xAtom(xConnection(), name) == *type; });
}

}  // namespace

std::uint32_t inputFocusProperty() {
  return xConnection() == nullptr ? 0 : xAtom(xConnection(), "_NET_ACTIVE_WINDOW");
}

InputFocusOwner inputFocusOwner() {
  if (xConnection() == nullptr) return InputFocusOwner::Unknown;
  const auto focused = xNumber(xRoot(), inputFocusProperty(), XCB_ATOM_WINDOW);
  if (!focused) return InputFocusOwner::Unknown;
  if (*focused == XCB_WINDOW_NONE) return InputFocusOwner::NoProgram;
  if (isOfThisProgram(*focused)) return InputFocusOwner::ThisProgram;
  // Check the type first: a menu that closes between the two requests then fails the second one.
  const bool isOtherProgram = !hasFocusTemporarily(*focused) && isOnScreen(*focused);
  return isOtherProgram ? InputFocusOwner::OtherProgram : InputFocusOwner::NoProgram;
}

}  // namespace platform
