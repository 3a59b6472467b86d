#include "platform/portable/property_lists/property_list_scalars.h"

#include <locale.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <string>

namespace platform {
namespace {

constexpr std::string_view scalarBlanks = " \t\r\n";

std::string_view trimmed(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(scalarBlanks), text.size()));
  return text.substr(0, text.find_last_not_of(scalarBlanks) + 1);
}

bool accept(std::string_view& text, char c) {
  if (!text.starts_with(c)) return false;
  text.remove_prefix(1);
  return true;
}

// Skips a sign. Returns whether it is a minus.
bool acceptSign(std::string_view& text) {
  if (accept(text, '-')) return true;
  accept(text, '+');
  return false;
}

std::string lowered(std::string_view text) {
  std::string result(text);
  for (char& c : result) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return result;
}

// Sets the "C" locale for the calling thread. The destructor restores the previous one.
class PlainLocale {
 public:
  PlainLocale() : previous_(::uselocale(plain())) {}
  PlainLocale(const PlainLocale&) = delete;
  PlainLocale& operator=(const PlainLocale&) = delete;
  ~PlainLocale() { ::uselocale(previous_); }

 private:
  static locale_t plain() {
    static const locale_t locale = ::newlocale(LC_ALL_MASK, "C", nullptr);
    return locale;
  }

  locale_t previous_;
};

// Parses an unsigned number that fits a double. Uses strtod(3), because libc++ has no std::from_chars for
// double.
std::optional<double> decimalNumber(const std::string& text) {
  if (text.empty() || text.starts_with('-') || text.starts_with('+')) return std::nullopt;
  char* end = nullptr;
  errno = 0;
  const PlainLocale locale;
  const double number = std::strtod(text.c_str(), &end);
  const bool isBeyondDouble = errno == ERANGE && (number == 0 || std::isinf(number));
  if (end != text.c_str() + text.size() || isBeyondDouble) return std::nullopt;
  return number;
}

// Parses between `minDigits` and `maxDigits` digits at the start of `text` and removes them.
std::optional<int> acceptDigits(std::string_view& text, std::size_t minDigits, std::size_t maxDigits) {
  int number = 0;
  std::size_t count = 0;
  while (count < maxDigits && count < text.size() && text[count] >= '0' && text[count] <= '9') {
    number = number * 10 + (text[count] - '0');
    ++count;
  }
  if (count < minDigits) return std::nullopt;
  text.remove_prefix(count);
  return number;
}

std::optional<std::chrono::sys_days> acceptDay(std::string_view& text) {
  const bool negative = acceptSign(text);
  const auto year = acceptDigits(text, 4, 5);
  if (!year || !accept(text, '-')) return std::nullopt;
  const auto month = acceptDigits(text, 2, 2);
  if (!month || !accept(text, '-')) return std::nullopt;
  const auto day = acceptDigits(text, 2, 2);
  if (!day || *year > static_cast<int>(std::chrono::year::max())) return std::nullopt;
  const std::chrono::year_month_day date(std::chrono::year(negative ? -*year : *year),
                                         std::chrono::month(static_cast<unsigned>(*month)),
                                         std::chrono::day(static_cast<unsigned>(*day)));
  if (!date.ok()) return std::nullopt;
  return std::chrono::sys_days(date);
}

std::optional<std::chrono::seconds> acceptTimeOfDay(std::string_view& text) {
  constexpr int leapSecond = 60;
  const auto hour = acceptDigits(text, 2, 2);
  if (!hour || *hour > 23 || !accept(text, ':')) return std::nullopt;
  const auto minute = acceptDigits(text, 2, 2);
  if (!minute || *minute > 59 || !accept(text, ':')) return std::nullopt;
  const auto second = acceptDigits(text, 2, 2);
  if (!second || *second > leapSecond) return std::nullopt;
  return std::chrono::hours(*hour) + std::chrono::minutes(*minute) + std::chrono::seconds(*second);
}

// Returns the six bits that a base64 character encodes; -1 for any other character.
int base64Value(char c) {
  if (c >= 'A' && c <= 'Z') return c - 'A';
  if (c >= 'a' && c <= 'z') return c - 'a' + 26;
  if (c >= '0' && c <= '9') return c - '0' + 52;
  if (c == '+') return 62;
  return c == '/' ? 63 : -1;
}

}  // namespace

std::optional<std::int64_t> parseListInteger(std::string_view text) {
  constexpr std::uint64_t maxPositive = std::numeric_limits<std::int64_t>::max();
  text = trimmed(text);
  const bool negative = acceptSign(text);
  text = trimmed(text);
  int base = 10;
  if (text.starts_with("0x") || text.starts_with("0X")) {
    base = 16;
    text.remove_prefix(2);
  }
  std::uint64_t magnitude = 0;
  const char* const end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, magnitude, base);
  if (result.ec != std::errc() || result.ptr != end) return std::nullopt;
  if (magnitude > (negative ? maxPositive + 1 : maxPositive)) return std::nullopt;
  return static_cast<std::int64_t>(negative ? 0 - magnitude : magnitude);
}

std::optional<double> parseListReal(std::string_view text) {
  text = trimmed(text);
  const bool negative = acceptSign(text);
  const std::string name = lowered(text);
  double number = 0;
  if (name == "nan") {
    number = std::numeric_limits<double>::quiet_NaN();
  } else if (name == "inf" || name == "infinity") {
    number = std::numeric_limits<double>::infinity();
  } else {
    // Rejects what strtod(3) accepts in addition ("nan(1)", a second sign).
    if (name.find_first_not_of("0123456789.e+-") != std::string::npos) return std::nullopt;
    const auto decimal = decimalNumber(name);
    if (!decimal) return std::nullopt;
    number = *decimal;
  }
  return negative ? -number : number;
}

std::optional<PropertyList::Date> parseListDate(std::string_view text) {
  constexpr std::chrono::sys_days reference = std::chrono::year(2001) / 1 / 1;
  text = trimmed(text);
  const auto day = acceptDay(text);
  if (!day || !accept(text, 'T')) return std::nullopt;
  const auto time = acceptTimeOfDay(text);
  if (!time || text != "Z") return std::nullopt;
  const std::chrono::seconds since = *day - reference + *time;
  return PropertyList::Date{static_cast<double>(since.count())};
}

bool Base64Decoder::add(std::string_view piece) {
  return std::ranges::all_of(
      piece, [this](char c) { return scalarBlanks.find(c) != std::string_view::npos || addDigit(c); });
}

bool Base64Decoder::addDigit(char c) {
  constexpr int groupDigits = 4, groupBytes = 3;
  if (c == '=') {
    if (digits_ < 2) return false;
    ++padding_;
    c = 'A';
  } else if (padding_ > 0) {
    return false;
  }
  const int value = base64Value(c);
  if (value < 0) return false;
  group_ = group_ << 6 | static_cast<std::uint32_t>(value);
  if (++digits_ < groupDigits) return true;
  for (int i = 0; i < groupBytes - padding_; ++i) {
    data_.push_back(static_cast<std::byte>(group_ >> (8 * (groupBytes - 1 - i))));
  }
  digits_ = 0;
  group_ = 0;
  return true;
}

}  // namespace platform
