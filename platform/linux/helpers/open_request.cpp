#include "platform/linux/helpers/open_request.h"

#include <algorithm>

namespace helpers {
namespace {

bool isLetter(char character) {
  return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

bool isSchemeCharacter(char character) {
  return isLetter(character) || (character >= '0' && character <= '9') || character == '+' ||
         character == '-' || character == '.';
}

bool isUrl(std::string_view text) {
  const auto colon = std::find_if_not(text.begin(), text.end(), isSchemeCharacter);
  return colon != text.end() && *colon == ':' && isLetter(text.front());
}

OpenRequest openBundle(const Arguments& arguments) {
  if (arguments.size() < 2) return Refusal{"-a: the bundle is missing"};
  const std::string& path = arguments[1];
  if (path.starts_with('-') || bundleName(path).empty())
    return Refusal{"-a: \"" + path + "\" is not a bundle"};
  if (arguments.size() == 2) return OpenBundle{path, {}};
  if (arguments[2] != "--args") return Refusal{"expected --args instead of \"" + arguments[2] + "\""};
  return OpenBundle{path, {arguments.begin() + 3, arguments.end()}};
}

}  // namespace

std::string bundleName(std::string_view path) {
  constexpr std::string_view suffix = ".app";
  path = path.substr(0, path.find_last_not_of('/') + 1);
  path = path.substr(path.rfind('/') + 1);
  if (path.size() <= suffix.size() || !path.ends_with(suffix)) return {};
  return std::string(path.substr(0, path.size() - suffix.size()));
}

OpenRequest parseOpenRequest(const Arguments& arguments) {
  if (arguments.empty()) return Refusal{"nothing to open"};
  const std::string& first = arguments[0];
  if (first == "--help") return ShowUsage{};
  if (first == "-a") return openBundle(arguments);
  if (first.empty()) return Refusal{"nothing to open"};
  if (first.starts_with('-')) return Refusal{"unknown option \"" + first + "\""};
  if (arguments.size() > 1) return Refusal{"unexpected argument \"" + arguments[1] + "\""};

  if (isUrl(first)) return OpenUrl{first};
  if (!bundleName(first).empty()) return OpenBundle{first, {}};
  return OpenFile{first};
}

}  // namespace helpers
