#include "companions/notification/notice.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <map>
#include <optional>
#include <string_view>
#include <system_error>

namespace companions {
namespace {

using Values = std::map<std::string, std::string, std::less<>>;

constexpr std::array<std::string_view, 7> optionNames = {"-title",   "-subtitle",   "-message", "-closeLabel",
                                                         "-actions", "-bundlepath", "-timeout"};
constexpr double maxSeconds = 86'400;

// Stores the value of each option under its name. Returns an error text, empty on success.
std::string collect(const std::vector<std::string>& arguments, Values& values) {
  for (std::size_t i = 0; i < arguments.size(); i += 2) {
    const std::string& name = arguments[i];
    if (std::ranges::find(optionNames, name) == optionNames.end()) return "unknown option \"" + name + '"';
    if (i + 1 == arguments.size()) return name + " has no value";
    if (!values.emplace(name, arguments[i + 1]).second) return name + " is given twice";
  }
  return {};
}

std::string missing(const Values& values) {
  std::string names;
  for (const std::string_view name : optionNames) {
    if (!values.contains(name)) names += " " + std::string(name);
  }
  return names.empty() ? names : "missing:" + names;
}

// Returns nullopt unless the text is a number of seconds above 0 and up to one day.
std::optional<std::chrono::milliseconds> parseSeconds(std::string_view text) {
  double seconds = 0;
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, seconds);
  if (error != std::errc() || rest != end) return std::nullopt;
  const bool inRange = seconds > 0 && seconds <= maxSeconds;  // false for "nan"
  if (!inRange) return std::nullopt;
  return std::chrono::ceil<std::chrono::milliseconds>(std::chrono::duration<double>(seconds));
}

std::string escaped(std::string_view text) {
  std::string result;
  for (const char character : text) {
    switch (character) {
      case '&':
        result += "&amp;";
        break;
      case '<':
        result += "&lt;";
        break;
      case '>':
        result += "&gt;";
        break;
      default:
        result += character;
    }
  }
  return result;
}

}  // namespace

std::variant<Notice, std::string> parseNotice(const std::vector<std::string>& arguments) {
  Values values;
  if (const std::string wrong = collect(arguments, values); !wrong.empty()) return wrong;
  if (const std::string wrong = missing(values); !wrong.empty()) return wrong;
  const std::optional<std::chrono::milliseconds> timeout = parseSeconds(values["-timeout"]);
  if (!timeout) return "-timeout: \"" + values["-timeout"] + "\" is not a number of seconds above 0";
  return Notice{.title = values["-title"],
                .subtitle = values["-subtitle"],
                .message = values["-message"],
                .closeLabel = values["-closeLabel"],
                .actionLabel = values["-actions"],
                .bundlePath = values["-bundlepath"],
                .timeout = *timeout};
}

std::string bodyText(const Notice& notice, bool markup) {
  const std::string text = notice.subtitle + '\n' + notice.message;
  return markup ? escaped(text) : text;
}

std::string updaterProgram(const Notice& notice) {
  return notice.bundlePath + "/Contents/Resources/tovalinupdate.app/Contents/MacOS/tovalinupdate";
}

}  // namespace companions
