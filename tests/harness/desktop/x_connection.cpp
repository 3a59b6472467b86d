#include "tests/harness/desktop/x_connection.h"

#include <cstdlib>
#include <cstring>

namespace test_support {

void XcbFree::operator()(void* reply) const {
  std::free(reply);
}

XConnection::XConnection(const std::string& display) : connection_(xcb_connect(display.c_str(), nullptr)) {
  if (valid()) root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
}

XConnection::~XConnection() {
  xcb_disconnect(connection_);
}

bool XConnection::valid() const {
  return xcb_connection_has_error(connection_) == 0;
}

xcb_atom_t XConnection::atom(const std::string& name) const {
  const auto cookie = xcb_intern_atom(connection_, 1, static_cast<std::uint16_t>(name.size()), name.c_str());
  const XcbReply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection_, cookie, nullptr));
  return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

std::string XConnection::atomName(xcb_atom_t atom) const {
  const auto cookie = xcb_get_atom_name(connection_, atom);
  const XcbReply<xcb_get_atom_name_reply_t> reply(xcb_get_atom_name_reply(connection_, cookie, nullptr));
  if (!reply) return {};
  return {xcb_get_atom_name_name(reply.get()),
          static_cast<std::size_t>(xcb_get_atom_name_name_length(reply.get()))};
}

void XConnection::synchronize() const {
  const auto cookie = xcb_get_input_focus(connection_);
  const XcbReply<xcb_get_input_focus_reply_t> reply(xcb_get_input_focus_reply(connection_, cookie, nullptr));
}

std::optional<std::string> XConnection::property(xcb_window_t window, const std::string& name) const {
  const xcb_atom_t wanted = atom(name);
  if (wanted == XCB_ATOM_NONE) return std::nullopt;
  const auto cookie =
      xcb_get_property(connection_, 0, window, wanted, XCB_GET_PROPERTY_TYPE_ANY, 0, 1U << 16U);
  const XcbReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection_, cookie, nullptr));
  if (!reply || reply->type == XCB_ATOM_NONE) return std::nullopt;
  return std::string(static_cast<const char*>(xcb_get_property_value(reply.get())),
                     static_cast<std::size_t>(xcb_get_property_value_length(reply.get())));
}

std::optional<std::uint32_t> XConnection::numberProperty(xcb_window_t window, const std::string& name) const {
  const std::optional<std::string> bytes = property(window, name);
  std::uint32_t number = 0;
  if (!bytes || bytes->size() < sizeof number) return std::nullopt;
  std::memcpy(&number, bytes->data(), sizeof number);
  return number;
}

}  // namespace test_support
