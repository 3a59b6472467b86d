#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>

class QWidget;
struct xcb_connection_t;

namespace platform {

// Access to the X server for code that bypasses Qt. Main thread only.

// Returns Qt's own connection, or nullptr if the display is not X11.
[[nodiscard]] xcb_connection_t* xConnection();

// Returns the atom of this name and creates it if it does not exist; 0 on error. One round trip.
[[nodiscard]] std::uint32_t xAtom(xcb_connection_t* connection, const std::string& name);

// Returns the root window of the first screen. Requires a connection.
[[nodiscard]] std::uint32_t xRoot();

// Returns whether the X server is Xwayland. Returns false without a connection. One round trip.
[[nodiscard]] bool isXwayland();

// Returns the first 32-bit value of a window property, or nullopt if there is none of this type. One round
// trip.
[[nodiscard]] std::optional<std::uint32_t> xNumber(std::uint32_t window, std::uint32_t property,
                                                   std::uint32_t type);

// Returns the widget's native window, or 0 if it has none. Unlike QWidget::winId(), it is current after Qt
// has replaced the window.
[[nodiscard]] std::uint32_t xWindowOf(const QWidget& widget);

// Owns a reply of the server, which the caller must free.
struct FreeXReply {
  void operator()(void* reply) const { std::free(reply); }
};
template <typename Reply>
using XReply = std::unique_ptr<Reply, FreeXReply>;

// Makes Xlib discard its records of sent requests. Qt sets window titles through Xlib but reads all replies
// through XCB, so the records would accumulate for the lifetime of the process. One round trip.
void settleXRequests();

}  // namespace platform
