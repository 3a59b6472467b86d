#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/property_list.h"

namespace platform {

// Parse the values of XML lists. White space around a number or a date is ignored. Return nullopt if the text
// is not exactly one such value or the value does not fit its type. Thread-safe.

// Decimal or, after "0x", hexadecimal digits with an optional sign.
[[nodiscard]] std::optional<std::int64_t> parseListInteger(std::string_view text);

// A decimal number with optional fraction and exponent, or "nan", "inf", "infinity" in any case. The decimal
// separator is a point in every locale.
[[nodiscard]] std::optional<double> parseListReal(std::string_view text);

// ISO 8601 in UTC: "2001-01-01T00:00:00Z". The year may have a sign and more than four digits.
[[nodiscard]] std::optional<PropertyList::Date> parseListDate(std::string_view text);

// Decodes base64 data in pieces. Ignores white space.
class Base64Decoder {
 public:
  // Appends to `data`, which must outlive this object.
  explicit Base64Decoder(PropertyList::Data& data) : data_(data) {}

  // Returns false if the piece is not valid base64 after the previous ones.
  [[nodiscard]] bool add(std::string_view piece);
  // Returns whether the pieces so far form complete groups of four characters.
  [[nodiscard]] bool complete() const { return digits_ == 0; }

 private:
  bool addDigit(char c);

  PropertyList::Data& data_;
  std::uint32_t group_ = 0;
  int digits_ = 0;
  int padding_ = 0;
};

}  // namespace platform
