#include "tests/platform/linux/helpers/window_scene.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "tests/harness/processes/wait_until.h"

namespace helper_test {

using test_support::waitUntil;
using test_support::XcbReply;
using test_support::XConnection;

bool WindowScene::start(bool windowManager) {
  if (!display_.start({.windowManager = windowManager})) return false;
  x_ = std::make_unique<XConnection>(display_.name());
  const std::uint32_t events = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
  xcb_change_window_attributes(x_->get(), x_->root(), XCB_CW_EVENT_MASK, &events);
  return xcb_flush(x_->get()) > 0;
}

xcb_window_t WindowScene::open(const std::string& type, std::uint32_t desktop) {
  const xcb_window_t window = xcb_generate_id(x_->get());
  xcb_create_window(x_->get(), XCB_COPY_FROM_PARENT, window, x_->root(), 10, 10, 200, 100, 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
  setNumber(window, "_NET_WM_WINDOW_TYPE", XCB_ATOM_ATOM, intern("_NET_WM_WINDOW_TYPE_" + type));
  setNumber(window, "_NET_WM_DESKTOP", XCB_ATOM_CARDINAL, desktop);
  xcb_map_window(x_->get(), window);
  xcb_flush(x_->get());
  const bool takesKeyboard = type == "NORMAL" && desktop == 0;
  const bool shown =
      waitUntil([&] { return isManaged(window); }) && (!takesKeyboard || becomesActive(window));
  return shown ? window : 0;
}

bool WindowScene::hide(xcb_window_t window) {
  xcb_unmap_window(x_->get(), window);
  xcb_flush(x_->get());
  return waitUntil([&] { return !isManaged(window); });
}

bool WindowScene::destroy(xcb_window_t window) {
  xcb_destroy_window(x_->get(), window);
  xcb_flush(x_->get());
  return waitUntil([&] { return !isManaged(window); });
}

bool WindowScene::focus(xcb_window_t window) {
  xcb_set_input_focus(x_->get(), XCB_INPUT_FOCUS_POINTER_ROOT, window, XCB_CURRENT_TIME);
  xcb_flush(x_->get());
  return becomesActive(window);
}

void WindowScene::claimActive(xcb_window_t window) {
  setNumber(x_->root(), "_NET_ACTIVE_WINDOW", XCB_ATOM_WINDOW, window);
  xcb_flush(x_->get());
}

bool WindowScene::becomesActive(xcb_window_t window) const {
  return waitUntil([&] { return x_->numberProperty(x_->root(), "_NET_ACTIVE_WINDOW") == window; });
}

bool WindowScene::hasInputFocus(xcb_window_t window) const {
  return waitUntil([&] {
    const XcbReply<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(x_->get(), xcb_get_input_focus(x_->get()), nullptr));
    return reply && reply->focus == window;
  });
}

std::vector<xcb_window_t> WindowScene::stacking() const {
  const std::string bytes = x_->property(x_->root(), "_NET_CLIENT_LIST_STACKING").value_or("");
  std::vector<xcb_window_t> windows(bytes.size() / sizeof(xcb_window_t));
  if (!windows.empty()) std::memcpy(windows.data(), bytes.data(), bytes.size());
  return windows;
}

std::vector<ActivationRequest> WindowScene::takeRequests() {
  const xcb_atom_t activation = intern("_NET_ACTIVE_WINDOW");
  std::vector<ActivationRequest> requests;
  while (const XcbReply<xcb_generic_event_t> event{xcb_poll_for_event(x_->get())}) {
    if ((event->response_type & 0x7F) != XCB_CLIENT_MESSAGE) continue;
    xcb_client_message_event_t message;
    std::memcpy(&message, event.get(), sizeof message);
    if (message.type == activation) requests.push_back({message.window, message.data.data32[0]});
  }
  return requests;
}

void WindowScene::setNumber(xcb_window_t window, const std::string& name, xcb_atom_t type,
                            std::uint32_t value) {
  xcb_change_property(x_->get(), XCB_PROP_MODE_REPLACE, window, intern(name), type, 32, 1, &value);
}

// Creates a missing atom, unlike XConnection::atom(): the window manager may not know every window type.
xcb_atom_t WindowScene::intern(const std::string& name) const {
  const auto cookie = xcb_intern_atom(x_->get(), 0, static_cast<std::uint16_t>(name.size()), name.c_str());
  const XcbReply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(x_->get(), cookie, nullptr));
  return reply ? reply->atom : 0;
}

bool WindowScene::isManaged(xcb_window_t window) const {
  const std::vector<xcb_window_t> windows = stacking();
  return std::find(windows.begin(), windows.end(), window) != windows.end();
}

}  // namespace helper_test
