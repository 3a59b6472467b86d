#include "tools/tvldump/record_cursor.h"

#include <algorithm>

namespace tools {
namespace {

constexpr unsigned kHighestYear = 9999;

unsigned daysOf(unsigned month, unsigned year) {
  if (month == 2) return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0) ? 29 : 28;
  return month == 4 || month == 6 || month == 9 || month == 11 ? 30 : 31;
}

// Returns the place value of the first digit of a number with as many digits as `maximum`.
unsigned firstDigitValue(unsigned maximum) {
  unsigned value = 1;
  while (maximum / value >= 10) value *= 10;
  return value;
}

}  // namespace

void RecordCursor::takeFixed(std::string_view text, std::string_view reason) {
  for (const char character : text) {
    const auto byte = static_cast<std::uint8_t>(character);
    takeByte(byte, byte, reason);
  }
}

unsigned RecordCursor::takeNumber(unsigned minimum, unsigned maximum, std::string_view reason) {
  unsigned number = 0;
  for (unsigned value = firstDigitValue(maximum); value > 0; value /= 10) {
    // The range of this digit for which the number can still be within its bounds.
    const unsigned minDigit = minimum < number ? 0 : (minimum - number) / value;
    const unsigned maxDigit = std::min(9u, (maximum - number) / value);
    const std::uint8_t digit = takeByte(static_cast<std::uint8_t>('0' + minDigit),
                                        static_cast<std::uint8_t>('0' + maxDigit), reason);
    if (damage_) return 0;
    number += value * static_cast<unsigned>(digit - '0');
  }
  return number;
}

std::string_view RecordCursor::takeDate() {
  constexpr std::string_view kReason = "expected a date of the form YYYY-MM-DD";
  const std::size_t start = offset_;
  if (takeLastDate()) return since(start);
  const unsigned year = takeNumber(0, kHighestYear, kReason);
  takeFixed("-", kReason);
  const unsigned month = takeNumber(1, 12, kReason);
  takeFixed("-", kReason);
  takeNumber(1, daysOf(month, year), kReason);
  if (!damage_) lastDate_ = since(start);
  return since(start);
}

// Fast path: nearly all dates in a file are the same.
bool RecordCursor::takeLastDate() {
  if (lastDate_.empty() || !rest().starts_with(lastDate_)) return false;
  offset_ += lastDate_.size();
  return true;
}

void RecordCursor::takeTimeOfDay() {
  constexpr std::string_view kReason = "expected a time of the form HH:MM:SS";
  if (takeUsualTimeOfDay()) return;
  takeFixed(" ", kReason);
  takeNumber(0, 23, kReason);
  takeFixed(":", kReason);
  takeNumber(0, 59, kReason);
  takeFixed(":", kReason);
  takeNumber(0, 60, kReason);
}

// Fast path for valid times; other times need the offset of the first invalid byte.
bool RecordCursor::takeUsualTimeOfDay() {
  constexpr std::size_t length = 9;
  const std::string_view text = rest();
  if (text.size() < length) return false;
  const auto isDigit = [&text](std::size_t index, char maximum) {
    return text[index] >= '0' && text[index] <= maximum;
  };
  const bool isUsual = text[0] == ' ' && isDigit(1, '2') && isDigit(2, text[1] == '2' ? '3' : '9') &&
                       text[3] == ':' && isDigit(4, '5') && isDigit(5, '9') && text[6] == ':' &&
                       isDigit(7, '5') && isDigit(8, '9');
  if (isUsual) offset_ += length;
  return isUsual;
}

}  // namespace tools
