#include "tools/common/clock_text.h"

#include <array>
#include <cstdio>
#include <ctime>

namespace tools {

std::string clockText(std::chrono::system_clock::time_point time) {
  const auto second = std::chrono::floor<std::chrono::seconds>(time);
  const auto rest = std::chrono::floor<std::chrono::milliseconds>(time - second);
  const std::time_t seconds = std::chrono::system_clock::to_time_t(second);
  std::tm local{};
  ::localtime_r(&seconds, &local);
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%02d:%02d:%02d.%03d", local.tm_hour, local.tm_min, local.tm_sec,
                static_cast<int>(rest.count()));
  return text.data();
}

}  // namespace tools
