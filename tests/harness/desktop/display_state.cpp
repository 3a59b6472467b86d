#include "tests/harness/desktop/display_state.h"

#include <algorithm>

namespace test_support {
namespace {

constexpr const char* activeWindow = "_NET_ACTIVE_WINDOW";

std::map<std::string, std::string> rootPropertiesOf(const XConnection& display) {
  std::map<std::string, std::string> properties;
  const auto cookie = xcb_list_properties(display.get(), display.root());
  const XcbReply<xcb_list_properties_reply_t> reply(
      xcb_list_properties_reply(display.get(), cookie, nullptr));
  if (!reply) return properties;
  const xcb_atom_t* const first = xcb_list_properties_atoms(reply.get());
  std::for_each(first, first + xcb_list_properties_atoms_length(reply.get()), [&](xcb_atom_t atom) {
    const std::string name = display.atomName(atom);
    if (name != activeWindow) properties[name] = display.property(display.root(), name).value_or("");
  });
  return properties;
}

std::vector<xcb_window_t> windowsOf(const XConnection& display) {
  const auto cookie = xcb_query_tree(display.get(), display.root());
  const XcbReply<xcb_query_tree_reply_t> reply(xcb_query_tree_reply(display.get(), cookie, nullptr));
  if (!reply) return {};
  const xcb_window_t* const first = xcb_query_tree_children(reply.get());
  std::vector<xcb_window_t> windows(first, first + xcb_query_tree_children_length(reply.get()));
  std::ranges::sort(windows);
  return windows;
}

std::string allowedHostsOn(const XConnection& display) {
  const auto cookie = xcb_list_hosts(display.get());
  const XcbReply<xcb_list_hosts_reply_t> reply(xcb_list_hosts_reply(display.get(), cookie, nullptr));
  if (!reply) return {};
  const auto* first = reinterpret_cast<const char*>(reply.get() + 1);
  return {first, std::size_t{reply->length} * 4};
}

}  // namespace

DisplayState stateOf(const XConnection& display) {
  DisplayState state{.rootProperties = rootPropertiesOf(display), .windows = windowsOf(display)};
  const auto keysCookie = xcb_query_keymap(display.get());
  const auto pointerCookie = xcb_query_pointer(display.get(), display.root());
  const XcbReply<xcb_query_keymap_reply_t> keys(xcb_query_keymap_reply(display.get(), keysCookie, nullptr));
  const XcbReply<xcb_query_pointer_reply_t> pointer(
      xcb_query_pointer_reply(display.get(), pointerCookie, nullptr));
  if (!keys || !pointer) return {};
  std::ranges::copy(keys->keys, state.pressedKeys.begin());
  state.buttonsAndModifiers = pointer->mask;
  state.allowedHosts = allowedHostsOn(display);
  return state;
}

void makeFresh(const XConnection& display) {
  const std::uint32_t repeats = XCB_AUTO_REPEAT_MODE_ON;
  xcb_change_keyboard_control(display.get(), XCB_KB_AUTO_REPEAT_MODE, &repeats);
  const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(display.get())).data;
  xcb_warp_pointer(display.get(), XCB_WINDOW_NONE, display.root(), 0, 0, 0, 0,
                   static_cast<std::int16_t>(screen->width_in_pixels / 2),
                   static_cast<std::int16_t>(screen->height_in_pixels / 2));
  if (const xcb_atom_t property = display.atom(activeWindow); property != XCB_ATOM_NONE)
    xcb_delete_property(display.get(), display.root(), property);
  display.synchronize();
}

}  // namespace test_support
