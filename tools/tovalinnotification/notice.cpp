#include "tools/tovalinnotification/notice.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <sstream>
#include <string_view>

#include "tools/common/escaped_text.h"
#include "tools/common/seconds_argument.h"

namespace tools {
namespace {

using Values = std::map<std::string, std::string, std::less<>>;

constexpr std::array<std::string_view, 7> kNames = {"-title",   "-subtitle",   "-message", "-closeLabel",
                                                    "-actions", "-bundlepath", "-timeout"};

// Collects the options' values. Returns an error text, empty on success.
std::string collect(const std::vector<std::string>& arguments, Values& values) {
  for (std::size_t i = 0; i < arguments.size(); i += 2) {
    const std::string& name = arguments[i];
    const bool known = std::find(kNames.begin(), kNames.end(), name) != kNames.end();
    if (!known) return "unknown option " + quotedText(name);
    if (i + 1 == arguments.size()) return name + " has no value";
    if (!values.emplace(name, arguments[i + 1]).second) return name + " is given twice";
  }
  return {};
}

std::string missing(const Values& values) {
  std::string names;
  for (const std::string_view name : kNames) {
    if (!values.contains(name)) names += " " + std::string(name);
  }
  return names.empty() ? names : "not given:" + names;
}

}  // namespace

std::variant<Notice, std::string> parseNotice(const std::vector<std::string>& arguments) {
  Values values;
  if (const std::string wrong = collect(arguments, values); !wrong.empty()) return wrong;
  if (const std::string wrong = missing(values); !wrong.empty()) return wrong;
  const std::optional<std::chrono::milliseconds> timeout = secondsArgument(values["-timeout"]);
  if (!timeout) return "-timeout: " + quotedText(values["-timeout"]) + " is not a number of seconds";
  return Notice{.title = values["-title"],
                .subtitle = values["-subtitle"],
                .message = values["-message"],
                .closeLabel = values["-closeLabel"],
                .actions = values["-actions"],
                .bundlePath = values["-bundlepath"],
                .timeout = *timeout};
}

std::string noticeText(const Notice& notice) {
  std::ostringstream text;
  text << "title:        " << notice.title << '\n'
       << "subtitle:     " << notice.subtitle << '\n'
       << "message:      " << notice.message << '\n'
       << "close button: " << notice.closeLabel << '\n'
       << "actions:      " << notice.actions << '\n'
       << "bundle:       " << notice.bundlePath << '\n'
       << "shown for:    " << std::chrono::duration<double>(notice.timeout).count() << " s\n";
  return text.str();
}

}  // namespace tools
