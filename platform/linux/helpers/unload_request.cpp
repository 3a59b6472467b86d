#include "platform/linux/helpers/unload_request.h"

#include <algorithm>

namespace helpers {
namespace {

constexpr std::string_view folder = "/Library/LaunchAgents/";
constexpr std::string_view suffix = ".plist";

bool isUnloadOption(const std::string& argument) {
  return argument == "-w" || argument == "-F";
}

// Returns the LABEL of /Library/LaunchAgents/LABEL.plist; empty for other paths.
std::string labelOf(std::string_view path) {
  if (!path.starts_with(folder) || !path.ends_with(suffix)) return {};
  path.remove_prefix(folder.size());
  if (path.size() <= suffix.size() || path.find('/') != std::string_view::npos) return {};
  path.remove_suffix(suffix.size());
  return std::string(path);
}

bool isUnescaped(char character) {
  return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
         (character >= '0' && character <= '9') || character == ':' || character == '_' || character == '.';
}

std::string escaped(char character) {
  constexpr std::string_view digits = "0123456789abcdef";
  const auto byte = static_cast<unsigned char>(character);
  return {'\\', 'x', digits[byte >> 4], digits[byte & 15]};
}

// Same escaping as systemd-escape(1). A label contains no slash.
std::string escapeForUnitName(std::string_view label) {
  std::string name;
  for (const char character : label) {
    const bool leadingDot = character == '.' && name.empty();
    name += isUnescaped(character) && !leadingDot ? std::string(1, character) : escaped(character);
  }
  return name;
}

}  // namespace

std::variant<ShowUsage, Refusal, UnloadRequest> parseUnloadRequest(const Arguments& arguments) {
  if (arguments.empty()) return Refusal{"a subcommand is missing"};
  if (arguments[0] == "--help") return ShowUsage{};
  if (arguments[0] != "unload") return Refusal{"unknown subcommand \"" + arguments[0] + "\""};

  const auto path = std::find_if_not(arguments.begin() + 1, arguments.end(), isUnloadOption);
  if (path == arguments.end()) return Refusal{"unload: the launch agent's property list is missing"};
  if (path + 1 != arguments.end()) return Refusal{"unload: unexpected argument \"" + *(path + 1) + "\""};

  std::string label = labelOf(*path);
  if (label.empty()) return Refusal{"unload: \"" + *path + "\" is not a launch agent's property list"};
  return UnloadRequest{std::move(label)};
}

std::string autostartUnit(std::string_view label) {
  return "app-" + escapeForUnitName(label) + "@autostart.service";
}

}  // namespace helpers
