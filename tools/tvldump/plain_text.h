#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace tools {
namespace plain_text {

inline constexpr std::uint64_t onesInEachByte = 0x0101'0101'0101'0101;

// Sets the highest bit of each zero byte; may also set that of bytes above a zero byte.
[[nodiscard]] constexpr std::uint64_t zeroBytes(std::uint64_t word) {
  return (word - onesInEachByte) & ~word;
}

// Returns whether all eight bytes are ASCII and can be part of a JSON string without escapes.
[[nodiscard]] constexpr bool isPlain(std::uint64_t word) {
  const std::uint64_t controls = (word - onesInEachByte * ' ') & ~word;
  const std::uint64_t bad = word | controls | zeroBytes(word ^ onesInEachByte * '"') |
                            zeroBytes(word ^ onesInEachByte * '\\') | zeroBytes(word ^ onesInEachByte * 0x7F);
  return (bad & onesInEachByte * 0x80) == 0;
}

[[nodiscard]] inline std::uint64_t copyWord(char* place, const char* bytes) {
  std::uint64_t word = 0;
  std::memcpy(&word, bytes, sizeof word);
  std::memcpy(place, &word, sizeof word);
  return word;
}

// The last eight bytes may overlap the previous ones.
[[nodiscard]] inline bool copyLong(char* place, std::string_view text) {
  const std::size_t last = text.size() - sizeof(std::uint64_t);
  bool plain = true;
  for (std::size_t i = 0; i < last; i += sizeof(std::uint64_t))
    plain = isPlain(copyWord(place + i, text.data() + i)) && plain;
  return isPlain(copyWord(place + last, text.data() + last)) && plain;
}

[[nodiscard]] constexpr std::array<bool, 256> plainBytes() {
  std::array<bool, 256> plain{};
  for (std::size_t byte = 0; byte < plain.size(); ++byte) plain[byte] = isPlain(onesInEachByte * byte);
  return plain;
}

[[nodiscard]] inline bool copyShort(char* place, std::string_view text) {
  static constexpr std::array<bool, 256> table = plainBytes();
  bool plain = true;
  for (const char character : text) {
    *place++ = character;
    plain = table[static_cast<std::uint8_t>(character)] && plain;
  }
  return plain;
}

}  // namespace plain_text

// Copies `text` to `place`. Returns whether all bytes are printable ASCII that JSON does not escape.
[[nodiscard]] inline bool copyIfPlain(char* place, std::string_view text) {
  return text.size() < sizeof(std::uint64_t) ? plain_text::copyShort(place, text)
                                             : plain_text::copyLong(place, text);
}

}  // namespace tools
