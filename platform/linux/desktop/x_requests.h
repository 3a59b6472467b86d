#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>

class QWidget;
struct xcb_connection_t;

namespace platform {

// What the parts that talk to the X server past the toolkit do so with. Main thread.

// The toolkit's own connection; nullptr on a display of another kind.
[[nodiscard]] xcb_connection_t* xConnection();

// The atom of this name, made when the server doesn't know it yet; 0 on failure. One round trip to the
// server.
[[nodiscard]] std::uint32_t xAtom(xcb_connection_t* connection, const std::string& name);

// The screen's root window. Only where there is a connection.
[[nodiscard]] std::uint32_t xRoot();

// The first number of a window's property; nullopt where there is none of this type. One round trip.
[[nodiscard]] std::optional<std::uint32_t> xNumber(std::uint32_t window, std::uint32_t property,
                                                   std::uint32_t type);

// The widget's window on the display; 0 where it has none. The widget's own number is that of an earlier
// window once the toolkit has replaced it.
[[nodiscard]] std::uint32_t xWindowOf(const QWidget& widget);

// An answer of the server's.
struct FreeXReply {
  void operator()(void* reply) const { std::free(reply); }
};
template <typename Reply>
using XReply = std::unique_ptr<Reply, FreeXReply>;

// Lets Xlib forget the requests that it has sent. The toolkit sets window titles through Xlib but takes its
// answers past it, so Xlib would keep a note of each request for good. One round trip to the server.
void settleXRequests();

}  // namespace platform
