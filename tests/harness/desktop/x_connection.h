#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace test_support {

// What xcb hands out is the caller's to free.
struct XcbFree {
  void operator()(void* reply) const;
};
template <typename Reply>
using XcbReply = std::unique_ptr<Reply, XcbFree>;

// One connection to an X server, closed with this object; on one thread at a time. With a server that is not
// there `valid` is false and the calls find nothing.
class XConnection {
 public:
  explicit XConnection(const std::string& display);
  XConnection(const XConnection&) = delete;
  XConnection& operator=(const XConnection&) = delete;
  ~XConnection();

  [[nodiscard]] bool valid() const;
  [[nodiscard]] xcb_connection_t* get() const { return connection_; }
  [[nodiscard]] xcb_window_t root() const { return root_; }
  [[nodiscard]] xcb_atom_t atom(const std::string& name) const;  // XCB_ATOM_NONE where no client has made it
  [[nodiscard]] std::string atomName(xcb_atom_t atom) const;
  void synchronize() const;  // returns when the server has done all requests so far

  // The bytes of a window's property of any type; nothing when it has none.
  [[nodiscard]] std::optional<std::string> property(xcb_window_t window, const std::string& name) const;
  // The first 32-bit number of a property.
  [[nodiscard]] std::optional<std::uint32_t> numberProperty(xcb_window_t window,
                                                            const std::string& name) const;

 private:
  xcb_connection_t* connection_ = nullptr;
  xcb_window_t root_ = XCB_WINDOW_NONE;
};

}  // namespace test_support
