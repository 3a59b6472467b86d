#include "platform/linux/helpers/activation_script.h"

namespace helpers {
namespace {

constexpr std::string_view activateFront =
    "tell application \"System Events\" "
    "set frontApp to name of first application whose frontmost is true "
    "tell application frontApp "
    "activate "
    "end tell "
    "end tell";

// Returns the words of a script, separated by single spaces.
std::string normalized(std::string_view script) {
  constexpr std::string_view whiteSpace = " \t\r\n";
  std::string words;
  while (true) {
    const std::size_t begin = script.find_first_not_of(whiteSpace);
    if (begin == std::string_view::npos) return words;
    script.remove_prefix(begin);
    const std::string_view word = script.substr(0, script.find_first_of(whiteSpace));
    script.remove_prefix(word.size());
    if (!words.empty()) words += ' ';
    words += word;
  }
}

}  // namespace

std::variant<ShowUsage, Refusal, ActivateFrontApplication> parseScript(const Arguments& arguments) {
  if (arguments.size() == 1 && arguments[0] == "--help") return ShowUsage{};
  if (arguments.empty() || arguments[0] != "-e") return Refusal{"no script: -e is missing"};
  if (arguments.size() == 1) return Refusal{"-e: the script is missing"};
  if (arguments.size() > 2) return Refusal{"unexpected argument \"" + arguments[2] + "\""};
  if (normalized(arguments[1]) != activateFront) return Refusal{"unknown script"};
  return ActivateFrontApplication{};
}

}  // namespace helpers
