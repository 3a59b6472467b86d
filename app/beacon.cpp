#include "app/beacon.h"

namespace {

// Written out: the C library's classes of characters follow the user's locale.
constexpr std::string_view kept =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789!$&'()*+,-./:;=?@_~";

void appendEscape(std::string& address, unsigned char byte) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  address += '%';
  address += digits[byte >> 4U];
  address += digits[byte & 0xFU];
}

}  // namespace

std::string escapedForAddress(std::string_view text) {
  std::string address;
  address.reserve(text.size());
  for (const char character : text) {
    if (kept.find(character) != std::string_view::npos) {
      address += character;
    } else {
      appendEscape(address, static_cast<unsigned char>(character));
    }
  }
  return address;
}

std::string beaconAddress(std::string_view server, std::string_view category, std::string_view value) {
  std::string address(server);
  address.append("/product/nimba/binary/GATovalin.html?category=");
  address.append(category).append("&").append(category).append("=").append(value);
  return escapedForAddress(address);
}
