#include "platform/linux/helpers/x_desktop.h"

#include <cstdlib>

namespace helpers {
namespace {

struct Free {
  void operator()(void* memory) const { std::free(memory); }
};

template <typename Reply>
std::unique_ptr<Reply, Free> owned(Reply* reply) {
  return std::unique_ptr<Reply, Free>(reply);
}

Window rootOfScreen(xcb_connection_t* connection, int number) {
  xcb_screen_iterator_t screen = xcb_setup_roots_iterator(xcb_get_setup(connection));
  for (; number > 0 && screen.rem > 1; --number) xcb_screen_next(&screen);
  return screen.data->root;
}

}  // namespace

XDesktop::XDesktop() {
  int screen = 0;
  connection_.reset(xcb_connect(nullptr, &screen));
  if (xcb_connection_has_error(connection_.get()) == 0) root_ = rootOfScreen(connection_.get(), screen);
}

std::string XDesktop::problem() const {
  if (root_ == 0) return "cannot connect to the X display";
  if (!hasWindowManager()) return "no window manager can activate windows";
  return {};
}

// The property on the root window may survive its window manager, but the window that it names does not.
bool XDesktop::hasWindowManager() const {
  const Window proof = firstOf(root_, "_NET_SUPPORTING_WM_CHECK");
  return proof != 0 && firstOf(proof, "_NET_SUPPORTING_WM_CHECK") == proof;
}

ScreenState XDesktop::screenState() const {
  ScreenState state;
  state.active = describe(firstOf(root_, "_NET_ACTIVE_WINDOW"));
  state.currentDesktop = firstOf(root_, "_NET_CURRENT_DESKTOP");
  for (const Window window : property(root_, "_NET_CLIENT_LIST_STACKING")) {
    state.stacking.push_back(describe(window));
  }
  return state;
}

ManagedWindow XDesktop::describe(Window window) const {
  if (window == 0) return {};
  ManagedWindow result{window, isViewable(window), {}, firstOf(window, "_NET_WM_DESKTOP")};
  for (const xcb_atom_t type : property(window, "_NET_WM_WINDOW_TYPE")) result.types.push_back(nameOf(type));
  return result;
}

bool XDesktop::isViewable(Window window) const {
  const auto cookie = xcb_get_window_attributes(connection_.get(), window);
  const auto reply = owned(xcb_get_window_attributes_reply(connection_.get(), cookie, nullptr));
  return reply != nullptr && reply->map_state == XCB_MAP_STATE_VIEWABLE;
}

bool XDesktop::activate(Window window) const {
  constexpr std::uint32_t directUserAction = 2;
  constexpr std::uint32_t toWindowManager =
      XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT;
  xcb_client_message_event_t message{};
  message.response_type = XCB_CLIENT_MESSAGE;
  message.format = 32;
  message.window = window;
  message.type = atom("_NET_ACTIVE_WINDOW");
  message.data.data32[0] = directUserAction;
  message.data.data32[1] = XCB_CURRENT_TIME;

  const auto cookie = xcb_send_event_checked(connection_.get(), 0, root_, toWindowManager,
                                             reinterpret_cast<const char*>(&message));
  return owned(xcb_request_check(connection_.get(), cookie)) == nullptr &&
         xcb_connection_has_error(connection_.get()) == 0;
}

std::vector<std::uint32_t> XDesktop::property(Window window, std::string_view name) const {
  constexpr std::uint32_t maxWords = 16384;
  const auto cookie =
      xcb_get_property(connection_.get(), 0, window, atom(name), XCB_GET_PROPERTY_TYPE_ANY, 0, maxWords);
  const auto reply = owned(xcb_get_property_reply(connection_.get(), cookie, nullptr));
  if (reply == nullptr || reply->format != 32) return {};
  const auto* words = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
  return {words, words + reply->value_len};
}

std::uint32_t XDesktop::firstOf(Window window, std::string_view name) const {
  const std::vector<std::uint32_t> values = property(window, name);
  return values.empty() ? 0 : values.front();
}

xcb_atom_t XDesktop::atom(std::string_view name) const {
  const auto cookie =
      xcb_intern_atom(connection_.get(), 0, static_cast<std::uint16_t>(name.size()), name.data());
  const auto reply = owned(xcb_intern_atom_reply(connection_.get(), cookie, nullptr));
  return reply == nullptr ? 0 : reply->atom;
}

std::string XDesktop::nameOf(xcb_atom_t atom) const {
  const auto cookie = xcb_get_atom_name(connection_.get(), atom);
  const auto reply = owned(xcb_get_atom_name_reply(connection_.get(), cookie, nullptr));
  if (reply == nullptr) return {};
  return {xcb_get_atom_name_name(reply.get()),
          static_cast<std::size_t>(xcb_get_atom_name_name_length(reply.get()))};
}

}  // namespace helpers
