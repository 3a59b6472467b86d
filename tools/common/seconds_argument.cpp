#include "tools/common/seconds_argument.h"

#include <charconv>
#include <system_error>

namespace tools {

std::optional<std::chrono::milliseconds> secondsArgument(std::string_view text) {
  constexpr double kMax = 1'000'000;
  double seconds = 0;
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, seconds);
  if (error != std::errc() || rest != end) return std::nullopt;
  const bool inRange = seconds >= 0 && seconds <= kMax;  // false for "nan"
  if (!inRange) return std::nullopt;
  return std::chrono::round<std::chrono::milliseconds>(std::chrono::duration<double>(seconds));
}

}  // namespace tools
