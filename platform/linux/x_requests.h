#pragma once

namespace platform {

// Lets Xlib forget the requests that it has sent. The toolkit sets window titles through Xlib but takes its
// answers past it, so Xlib would keep a note of each request for good. One round trip to the server. Main
// thread.
void settleXRequests();

}  // namespace platform
