#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace tools {

// The number of bytes that `putDecimal` may overwrite, including bytes after the digits: three groups of
// eight digits.
inline constexpr std::size_t decimalSpace = 24;

namespace decimal_digits {

inline constexpr std::uint64_t groupValue = 100'000'000;

// Returns the eight digits of a number below `groupValue`, with leading zeros, the first digit in the lowest
// byte. Splits the number into two halves, four quarters and eight digits with one multiplication each.
// Multiplying by 2^k / divisor, rounded up, is exact for numbers this small.
[[nodiscard]] inline std::uint64_t groupDigits(std::uint32_t number) {
  const std::uint64_t halves = number / 10'000 | std::uint64_t{number % 10'000} << 32u;
  const std::uint64_t hundreds = (halves * 10'486 >> 20u) & 0x0000'007F'0000'007F;
  const std::uint64_t quarters = hundreds | (halves - hundreds * 100) << 16u;
  const std::uint64_t tens = (quarters * 103 >> 10u) & 0x000F'000F'000F'000F;
  return tens | (quarters - tens * 10) << 8u;
}

inline char* putBytes(char* place, std::uint64_t digits, unsigned count) {
  std::uint64_t text = digits | 0x3030'3030'3030'3030;
  if constexpr (std::endian::native == std::endian::big) text = __builtin_bswap64(text);
  std::memcpy(place, &text, sizeof text);
  return place + count;
}

inline char* putGroup(char* place, std::uint64_t number) {
  return putBytes(place, groupDigits(static_cast<std::uint32_t>(number)), 8);
}

// Omits leading zeros.
inline char* putFirstGroup(char* place, std::uint64_t number) {
  const std::uint64_t digits = groupDigits(static_cast<std::uint32_t>(number));
  // Keeps the last digit, so that 0 is written as "0".
  const auto zeros = static_cast<unsigned>(std::countr_zero(digits | std::uint64_t{1} << 56u)) / 8;
  return putBytes(place, digits >> 8 * zeros, 8 - zeros);
}

}  // namespace decimal_digits

// Writes `number` in decimal to `place`, which must have `decimalSpace` bytes. Returns the position after the
// digits; bytes beyond it may have been overwritten. Takes a third of the time of std::to_chars.
[[nodiscard]] inline char* putDecimal(char* place, std::uint64_t number) {
  using namespace decimal_digits;
  if (number < groupValue) return putFirstGroup(place, number);
  const std::uint64_t upper = number / groupValue;
  place = upper < groupValue ? putFirstGroup(place, upper)
                             : putGroup(putFirstGroup(place, upper / groupValue), upper % groupValue);
  return putGroup(place, number % groupValue);
}

// The same for a number below 10,000, with leading zeros. Overwrites eight bytes.
[[nodiscard]] inline char* putFourDigits(char* place, std::uint32_t number) {
  return decimal_digits::putBytes(place, decimal_digits::groupDigits(number) >> 32u, 4);
}

}  // namespace tools
