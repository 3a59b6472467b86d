#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

// Little-endian integers of the usage record file and the "-ncdat" message. Thread-safe.

// Returns the first bytes as an integer. `bytes` must be at least that long. Written as a fold expression,
// which compilers turn into a single load.
template <std::unsigned_integral Integer>
[[nodiscard]] constexpr Integer littleEndian(std::string_view bytes) {
  return [bytes]<std::size_t... places>(std::index_sequence<places...>) {
    return ((static_cast<Integer>(static_cast<std::uint8_t>(bytes[places])) << 8 * places) | ...);
  }
  (std::make_index_sequence<sizeof(Integer)>());
}

// Writes the lowest `width` bytes of `value` at `offset` of `bytes`, which must be long enough.
inline void putLittleEndian(std::string& bytes, std::size_t offset, std::uint64_t value, std::size_t width) {
  for (std::size_t i = 0; i < width; ++i) bytes[offset + i] = static_cast<char>(value >> 8 * i);
}
