#include "tests/bench/map_watch.h"

#include <poll.h>

#include <chrono>

#include "tests/harness/processes/wait_until.h"

namespace bench {

using test_support::XcbReply;

MapWatch::MapWatch(const std::string& display, int width, int height)
    : display_(display), width_(width), height_(height) {
  const std::uint32_t events = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
  xcb_change_window_attributes(display_.get(), display_.root(), XCB_CW_EVENT_MASK, &events);
  display_.synchronize();
}

void MapWatch::forget() {
  while (const XcbReply<xcb_generic_event_t> event{xcb_poll_for_event(display_.get())}) {
  }
  window_ = outermost_ = XCB_WINDOW_NONE;
  shown_ = false;
}

bool MapWatch::waitFor(bool shown) {
  const auto deadline = std::chrono::steady_clock::now() + test_support::kPatience;
  while (shown_ != shown) {
    if (const XcbReply<xcb_generic_event_t> event{xcb_poll_for_event(display_.get())}) {
      take(*event);
      continue;
    }
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    pollfd readable{xcb_get_file_descriptor(display_.get()), POLLIN, 0};
    if (left.count() <= 0 || ::poll(&readable, 1, static_cast<int>(left.count())) <= 0) return false;
  }
  return true;
}

void MapWatch::take(const xcb_generic_event_t& event) {
  switch (event.response_type & 0x7F) {
    case XCB_CREATE_NOTIFY: {
      const auto& created = reinterpret_cast<const xcb_create_notify_event_t&>(event);
      if (created.width == width_ && created.height == height_) window_ = outermost_ = created.window;
      return;
    }
    case XCB_REPARENT_NOTIFY: {
      const auto& moved = reinterpret_cast<const xcb_reparent_notify_event_t&>(event);
      if (moved.window == window_ && moved.parent != display_.root()) outermost_ = moved.parent;
      return;
    }
    case XCB_MAP_NOTIFY:
      if (reinterpret_cast<const xcb_map_notify_event_t&>(event).window == outermost_) shown_ = true;
      return;
    case XCB_UNMAP_NOTIFY:
      if (reinterpret_cast<const xcb_unmap_notify_event_t&>(event).window == outermost_) shown_ = false;
      return;
    default:
      return;
  }
}

}  // namespace bench
