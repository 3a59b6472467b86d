#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace test_support {

// Frees memory that xcb allocated for the caller.
struct XcbFree {
  void operator()(void* reply) const;
};
template <typename Reply>
using XcbReply = std::unique_ptr<Reply, XcbFree>;

// A connection to an X server, closed by the destructor. For use by one thread. Without a server `valid`
// returns false and all queries return nothing.
class XConnection {
 public:
  explicit XConnection(const std::string& display);
  XConnection(const XConnection&) = delete;
  XConnection& operator=(const XConnection&) = delete;
  ~XConnection();

  [[nodiscard]] bool valid() const;
  [[nodiscard]] xcb_connection_t* get() const { return connection_; }
  [[nodiscard]] xcb_window_t root() const { return root_; }
  [[nodiscard]] xcb_atom_t atom(const std::string& name) const;  // XCB_ATOM_NONE if the atom does not exist
  [[nodiscard]] std::string atomName(xcb_atom_t atom) const;
  void synchronize() const;  // returns once the server has processed all requests

  // Returns the bytes of a window property of any type, nullopt if it is not set.
  [[nodiscard]] std::optional<std::string> property(xcb_window_t window, const std::string& name) const;
  // Returns the first 32-bit number of a property.
  [[nodiscard]] std::optional<std::uint32_t> numberProperty(xcb_window_t window,
                                                            const std::string& name) const;

 private:
  xcb_connection_t* connection_ = nullptr;
  xcb_window_t root_ = XCB_WINDOW_NONE;
};

}  // namespace test_support
