#include "usage/version_text.h"

#include <algorithm>
#include <limits>

namespace {

constexpr std::string_view whiteSpace = " \t\n\v\f\r";

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

}  // namespace

std::vector<std::string_view> splitAtEach(std::string_view text, std::string_view separators) {
  std::vector<std::string_view> pieces;
  std::size_t start = 0;
  for (std::size_t end; (end = text.find_first_of(separators, start)) != std::string_view::npos;
       start = end + 1) {
    pieces.push_back(text.substr(start, end - start));
  }
  pieces.push_back(text.substr(start));
  return pieces;
}

std::int64_t integerValue(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(whiteSpace), text.size()));
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) text.remove_prefix(1);

  // Accumulates negative values, because the lowest integer has no positive counterpart.
  constexpr auto lowest = std::numeric_limits<std::int64_t>::min();
  std::int64_t value = 0;
  for (; !text.empty() && isDigit(text.front()); text.remove_prefix(1)) {
    const int digit = text.front() - '0';
    value = value < (lowest + digit) / 10 ? lowest : value * 10 - digit;
  }
  if (negative) return value;
  return value == lowest ? std::numeric_limits<std::int64_t>::max() : -value;
}
