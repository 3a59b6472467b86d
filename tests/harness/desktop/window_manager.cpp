#include "tests/harness/desktop/window_manager.h"

#include "tests/harness/desktop/x_connection.h"
#include "tests/harness/processes/wait_until.h"

namespace test_support {
namespace {

class ProbeWindow {
 public:
  explicit ProbeWindow(const XConnection& display) : display_(display), id_(xcb_generate_id(display.get())) {
    xcb_create_window(display.get(), XCB_COPY_FROM_PARENT, id_, display.root(), 0, 0, 10, 10, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_map_window(display.get(), id_);
  }
  ProbeWindow(const ProbeWindow&) = delete;
  ProbeWindow& operator=(const ProbeWindow&) = delete;
  ~ProbeWindow() { xcb_destroy_window(display_.get(), id_); }

  [[nodiscard]] xcb_window_t id() const { return id_; }

 private:
  const XConnection& display_;
  xcb_window_t id_;
};

// A running window manager sets this property to a window that has the same property (EWMH).
bool hasAnnouncedItself(const XConnection& display) {
  const auto window = display.numberProperty(display.root(), "_NET_SUPPORTING_WM_CHECK");
  return window && display.numberProperty(*window, "_NET_SUPPORTING_WM_CHECK") == window;
}

// Sends a message without effect: openbox processes messages that it read during its start only when another
// one arrives.
void nudge(const XConnection& display) {
  xcb_client_message_event_t message{};
  message.response_type = XCB_CLIENT_MESSAGE;
  message.format = 32;
  message.window = display.root();
  message.type = XCB_ATOM_STRING;
  xcb_send_event(display.get(), 0, display.root(),
                 XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                 reinterpret_cast<const char*>(&message));
}

template <typename Predicate>
bool nudgeUntil(const XConnection& display, Predicate predicate) {
  const bool came = waitUntil([&] {
    nudge(display);
    return predicate() || !display.valid();
  });
  return came && display.valid();
}

}  // namespace

bool waitForWindowManager(const std::string& display) {
  const XConnection connection(display);
  if (!nudgeUntil(connection, [&] { return hasAnnouncedItself(connection); })) return false;
  const auto number = [&](const char* name) { return connection.numberProperty(connection.root(), name); };
  {
    const ProbeWindow probe(connection);
    if (!nudgeUntil(connection, [&] { return number("_NET_ACTIVE_WINDOW") == probe.id(); })) return false;
  }
  return nudgeUntil(connection, [&] { return !number("_NET_CLIENT_LIST"); });
}

}  // namespace test_support
