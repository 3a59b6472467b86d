#include "platform/linux/helpers/web_view/options.h"

#include <charconv>
#include <optional>

namespace helpers {
namespace {

std::optional<std::chrono::seconds> parseSeconds(const std::string& text) {
  constexpr int maxSeconds = 24 * 60 * 60;
  int seconds = 0;
  const char* end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, seconds);
  if (error != std::errc() || rest != end || seconds < 1 || seconds > maxSeconds) return std::nullopt;
  return std::chrono::seconds(seconds);
}

}  // namespace

WebViewRequest parseWebViewRequest(const Arguments& arguments) {
  ServeAddresses request;
  for (auto argument = arguments.begin(); argument != arguments.end(); ++argument) {
    if (*argument == "--help") return ShowUsage{};
    if (*argument != "--idle-seconds") return Refusal{"unknown argument " + *argument};
    if (++argument == arguments.end()) return Refusal{"--idle-seconds needs a number"};
    const auto seconds = parseSeconds(*argument);
    if (!seconds) return Refusal{"--idle-seconds takes a number from 1 to 86400, not " + *argument};
    request.idle = *seconds;
  }
  return request;
}

}  // namespace helpers
