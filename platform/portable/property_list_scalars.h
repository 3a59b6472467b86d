#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/property_list.h"

namespace platform {

// The texts that XML lists write single values in. White space around a number or a date is passed over. Each
// is nothing when the text is not wholly such a value or the value does not fit its type.

// Decimal or, after "0x", hexadecimal digits, after a sign or none.
[[nodiscard]] std::optional<std::int64_t> parseListInteger(std::string_view text);

// A decimal number with a fraction and exponent or without, or "nan", "inf", "infinity" in any case; always
// with a point, whatever the locale.
[[nodiscard]] std::optional<double> parseListReal(std::string_view text);

// ISO 8601 in UTC: "2001-01-01T00:00:00Z"; the year may have a sign and more digits.
[[nodiscard]] std::optional<PropertyList::Date> parseListDate(std::string_view text);

// Data in base64, as it comes in pieces. White space counts for nothing.
class Base64Decoder {
 public:
  // Appends to `data`, which must outlive this object.
  explicit Base64Decoder(PropertyList::Data& data) : data_(data) {}

  // False when the piece cannot go on what came before it.
  [[nodiscard]] bool add(std::string_view piece);
  // Whether the pieces so far make whole groups of four characters.
  [[nodiscard]] bool complete() const { return digits_ == 0; }

 private:
  bool addDigit(char c);

  PropertyList::Data& data_;
  std::uint32_t group_ = 0;
  int digits_ = 0;
  int padding_ = 0;
};

}  // namespace platform
