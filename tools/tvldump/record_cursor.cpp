#include "tools/tvldump/record_cursor.h"

#include <algorithm>

namespace tools {
namespace {

constexpr unsigned kHighestYear = 9999;

unsigned daysOf(unsigned month, unsigned year) {
  if (month == 2) return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0) ? 29 : 28;
  return month == 4 || month == 6 || month == 9 || month == 11 ? 30 : 31;
}

// The value of the first of the digits that `highest` has.
unsigned firstDigitValue(unsigned highest) {
  unsigned value = 1;
  while (highest / value >= 10) value *= 10;
  return value;
}

}  // namespace

bool RecordCursor::nextIs(std::uint8_t byte) const {
  return !atEnd() && static_cast<std::uint8_t>(bytes_[offset_]) == byte;
}

void RecordCursor::damaged(std::string_view reason) {
  if (!damage_) damage_ = Damage{offset_, reason};
}

std::string_view RecordCursor::since(std::size_t start) const {
  return {bytes_.data() + start, offset_ - start};
}

std::uint8_t RecordCursor::takeByte(std::uint8_t lowest, std::uint8_t highest, std::string_view reason) {
  if (atEnd()) damaged("the file ends too early");
  if (damage_) return 0;
  const auto byte = static_cast<std::uint8_t>(bytes_[offset_]);
  if (byte < lowest || byte > highest) {
    damaged(reason);
    return 0;
  }
  ++offset_;
  return byte;
}

void RecordCursor::takeFixed(std::string_view text, std::string_view reason) {
  for (const char character : text) {
    const auto byte = static_cast<std::uint8_t>(character);
    takeByte(byte, byte, reason);
  }
}

std::string_view RecordCursor::takeText(std::size_t length) {
  if (damage_) return {};
  const std::size_t start = offset_;
  offset_ += std::min(length, bytes_.size() - start);
  if (offset_ - start == length) return since(start);
  damaged("the file ends too early");
  return {};
}

std::string_view RecordCursor::takeCounted(std::size_t longest, std::string_view reason) {
  return takeText(takeByte(0, static_cast<std::uint8_t>(longest), reason));
}

unsigned RecordCursor::takeNumber(unsigned lowest, unsigned highest, std::string_view reason) {
  unsigned number = 0;
  for (unsigned value = firstDigitValue(highest); value > 0; value /= 10) {
    // The digits that leave the number within its range, whatever follows.
    const unsigned least = lowest < number ? 0 : (lowest - number) / value;
    const unsigned most = std::min(9u, (highest - number) / value);
    const std::uint8_t digit =
        takeByte(static_cast<std::uint8_t>('0' + least), static_cast<std::uint8_t>('0' + most), reason);
    if (damage_) return 0;
    number += value * static_cast<unsigned>(digit - '0');
  }
  return number;
}

std::string_view RecordCursor::takeDate() {
  constexpr std::string_view kReason = "no date of the form YYYY-MM-DD";
  const std::size_t start = offset_;
  const unsigned year = takeNumber(0, kHighestYear, kReason);
  takeFixed("-", kReason);
  const unsigned month = takeNumber(1, 12, kReason);
  takeFixed("-", kReason);
  takeNumber(1, daysOf(month, year), kReason);
  return since(start);
}

void RecordCursor::takeTimeOfDay() {
  constexpr std::string_view kReason = "no time of the form HH:MM:SS";
  takeFixed(" ", kReason);
  takeNumber(0, 23, kReason);
  takeFixed(":", kReason);
  takeNumber(0, 59, kReason);
  takeFixed(":", kReason);
  takeNumber(0, 60, kReason);
}

}  // namespace tools
