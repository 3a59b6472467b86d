#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

struct xcb_connection_t;

namespace platform {

// What the parts that talk to the X server past the toolkit do so with. Main thread.

// The toolkit's own connection; nullptr on a display of another kind.
[[nodiscard]] xcb_connection_t* xConnection();

// The atom of this name, made when the server doesn't know it yet; 0 on failure. One round trip to the
// server.
[[nodiscard]] std::uint32_t xAtom(xcb_connection_t* connection, const std::string& name);

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
