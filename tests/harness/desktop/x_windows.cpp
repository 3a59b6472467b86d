#include "tests/harness/desktop/x_windows.h"

#include <algorithm>
#include <cstring>

#include "tests/harness/desktop/x_connection.h"

namespace test_support {
namespace {

std::vector<std::uint32_t> numbersIn(const std::string& bytes) {
  std::vector<std::uint32_t> numbers(bytes.size() / sizeof(std::uint32_t));
  if (!numbers.empty()) std::memcpy(numbers.data(), bytes.data(), numbers.size() * sizeof(std::uint32_t));
  return numbers;
}

std::vector<xcb_window_t> childrenOf(const XConnection& display, xcb_window_t window) {
  const auto cookie = xcb_query_tree(display.get(), window);
  const XcbReply<xcb_query_tree_reply_t> reply(xcb_query_tree_reply(display.get(), cookie, nullptr));
  if (!reply) return {};
  const xcb_window_t* const first = xcb_query_tree_children(reply.get());
  return {first, first + xcb_query_tree_children_length(reply.get())};
}

// WM_CLASS holds two NUL-terminated texts: the instance and the class.
std::string classNameIn(const std::string& property) {
  const std::size_t end = property.find('\0');
  return end == std::string::npos ? property : std::string(property.c_str() + end + 1);
}

std::string nameOf(const XConnection& display, xcb_window_t window) {
  if (const auto name = display.property(window, "_NET_WM_NAME")) return *name;
  return display.property(window, "WM_NAME").value_or("");
}

bool fillGeometry(const XConnection& display, XWindow& window) {
  const auto sizeCookie = xcb_get_geometry(display.get(), window.id);
  const auto placeCookie = xcb_translate_coordinates(display.get(), window.id, display.root(), 0, 0);
  const XcbReply<xcb_get_geometry_reply_t> size(xcb_get_geometry_reply(display.get(), sizeCookie, nullptr));
  const XcbReply<xcb_translate_coordinates_reply_t> place(
      xcb_translate_coordinates_reply(display.get(), placeCookie, nullptr));
  if (!size || !place) return false;
  window.x = place->dst_x;
  window.y = place->dst_y;
  window.width = size->width;
  window.height = size->height;
  return true;
}

void fillManagersFacts(const XConnection& display, XWindow& window) {
  for (const std::uint32_t state : numbersIn(display.property(window.id, "_NET_WM_STATE").value_or(""))) {
    window.states.push_back(display.atomName(state));
  }
  // Left, right, top, bottom.
  const auto extents = numbersIn(display.property(window.id, "_NET_FRAME_EXTENTS").value_or(""));
  if (extents.size() == 4) window.titleHeight = static_cast<int>(extents[2]);
}

// Returns nullopt for a window that is unmapped, has no owner, or is gone.
std::optional<XWindow> describe(const XConnection& display, xcb_window_t id) {
  const auto cookie = xcb_get_window_attributes(display.get(), id);
  const XcbReply<xcb_get_window_attributes_reply_t> attributes(
      xcb_get_window_attributes_reply(display.get(), cookie, nullptr));
  if (!attributes || attributes->map_state != XCB_MAP_STATE_VIEWABLE) return std::nullopt;
  XWindow window{.id = id,
                 .name = nameOf(display, id),
                 .className = classNameIn(display.property(id, "WM_CLASS").value_or("")),
                 .managed = attributes->override_redirect == 0};
  if (window.name.empty() && window.className.empty()) return std::nullopt;
  if (!fillGeometry(display, window)) return std::nullopt;
  fillManagersFacts(display, window);
  return window;
}

void appendWindows(const XConnection& display, xcb_window_t parent, std::vector<XWindow>& windows) {
  for (const xcb_window_t child : childrenOf(display, parent)) {
    if (auto window = describe(display, child)) windows.push_back(std::move(*window));
    appendWindows(display, child, windows);
  }
}

std::vector<XWindow> windowsOn(const XConnection& display) {
  std::vector<XWindow> windows;
  if (display.valid()) appendWindows(display, display.root(), windows);
  return windows;
}

}  // namespace

WindowPredicate windowNamed(const std::string& name) {
  return [name](const XWindow& window) { return window.name == name; };
}

WindowPredicate windowOfClass(const std::string& className) {
  return [className](const XWindow& window) { return window.className == className; };
}

std::vector<XWindow> windowsOn(const std::string& display) {
  return windowsOn(XConnection(display));
}

std::optional<XWindow> waitForWindow(const std::string& display, const WindowPredicate& fits,
                                     std::chrono::milliseconds timeout) {
  const XConnection connection(display);
  std::optional<XWindow> found;
  const bool came = waitUntil(
      [&] {
        const std::vector<XWindow> windows = windowsOn(connection);
        const auto window = std::find_if(windows.begin(), windows.end(), fits);
        if (window != windows.end()) found = *window;
        return found.has_value();
      },
      timeout);
  return came ? found : std::nullopt;
}

bool waitForNoWindow(const std::string& display, const WindowPredicate& fits,
                     std::chrono::milliseconds timeout) {
  const XConnection connection(display);
  return waitUntil(
      [&] {
        const std::vector<XWindow> windows = windowsOn(connection);
        return std::none_of(windows.begin(), windows.end(), fits);
      },
      timeout);
}

std::optional<std::uint32_t> activeWindowOn(const std::string& display) {
  const XConnection connection(display);
  if (!connection.valid()) return std::nullopt;
  const auto window = connection.numberProperty(connection.root(), "_NET_ACTIVE_WINDOW");
  return window == XCB_WINDOW_NONE ? std::nullopt : window;
}

namespace {

void sendMessage(const XConnection& connection, std::uint32_t receiver, std::uint32_t events,
                 xcb_client_message_event_t message) {
  message.response_type = XCB_CLIENT_MESSAGE;
  message.format = 32;
  xcb_send_event(connection.get(), 0, receiver, events, reinterpret_cast<const char*>(&message));
  connection.synchronize();
}

}  // namespace

void requestClose(const std::string& display, std::uint32_t window) {
  const XConnection connection(display);
  xcb_client_message_event_t message{};
  message.window = window;
  message.type = connection.atom("_NET_CLOSE_WINDOW");
  sendMessage(connection, connection.root(),
              XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT, message);
}

void deliverCloseRequest(const std::string& display, std::uint32_t window) {
  const XConnection connection(display);
  xcb_client_message_event_t message{};
  message.window = window;
  message.type = connection.atom("WM_PROTOCOLS");
  message.data.data32[0] = connection.atom("WM_DELETE_WINDOW");
  sendMessage(connection, window, XCB_EVENT_MASK_NO_EVENT, message);
}

// The program sends the message back to the root window (Extended Window Manager Hints 1.5, "_NET_WM_PING"),
// Qt to those who select StructureNotify, other toolkits to those who select SubstructureNotify.
bool waitForAnswerToPing(const std::string& display, std::uint32_t window,
                         std::chrono::milliseconds timeout) {
  const XConnection connection(display);
  if (!connection.valid()) return false;
  const std::uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
  xcb_change_window_attributes(connection.get(), connection.root(), XCB_CW_EVENT_MASK, &events);
  xcb_client_message_event_t ping{};
  ping.window = window;
  ping.type = connection.atom("WM_PROTOCOLS");
  ping.data.data32[0] = connection.atom("_NET_WM_PING");
  ping.data.data32[2] = window;
  sendMessage(connection, window, XCB_EVENT_MASK_NO_EVENT, ping);
  const auto isAnswer = [&](const xcb_generic_event_t& event) {
    if ((event.response_type & 0x7f) != XCB_CLIENT_MESSAGE) return false;
    const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
    return message.window == connection.root() && message.type == ping.type &&
           std::ranges::equal(message.data.data32, ping.data.data32);
  };
  return waitUntil(
      [&] {
        while (const XcbReply<xcb_generic_event_t> event{xcb_poll_for_event(connection.get())}) {
          if (isAnswer(*event)) return true;
        }
        return false;
      },
      timeout);
}

}  // namespace test_support
