#include "platform/uuid.h"

#include <array>
#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace platform {
namespace {

using Bytes = std::array<std::uint8_t, 16>;

// RFC 4122, section 4.4: all bits are random except version and variant.
Bytes randomUuid() {
  Bytes bytes{};
  ::arc4random_buf(bytes.data(), bytes.size());
  bytes[6] = static_cast<std::uint8_t>((bytes[6] & 0x0FU) | 0x40U);
  bytes[8] = static_cast<std::uint8_t>((bytes[8] & 0x3FU) | 0x80U);
  return bytes;
}

}  // namespace

std::string createUuidString() {
  constexpr std::string_view digits = "0123456789ABCDEF";
  const Bytes bytes = randomUuid();
  std::string text;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
    text += digits[bytes[i] >> 4U];
    text += digits[bytes[i] & 0x0FU];
  }
  return text;
}

}  // namespace platform
