#include "support/log_rules.h"

#include <algorithm>
#include <cstddef>

#include "usage/record_bytes.h"

namespace {

constexpr std::size_t commandBufferSize = 512;

// Stands for the name of the collection.
constexpr std::string_view placeholder = "%s";

// A folder of the user's own that is there already is shut to others too.
constexpr std::string_view makeFolder =
    "mkdir -m 700 /tmp/%s || { test -O /tmp/%s -a ! -L /tmp/%s && chmod 700 /tmp/%s; }";

// Copies of logs are the user's alone, and go into no folder that somebody else has put there.
constexpr std::string_view whereSafe = "umask 077; test -O /tmp/%s -a ! -L /tmp/%s && ";

constexpr std::array<std::string_view, 5> copiesAndArchive = {
    "cp /var/log/Tovalin*.log /tmp/%s/",
    "{ journalctl -q -b --no-pager >/tmp/%s/system.log; test -s /tmp/%s/system.log; } || "
    "cp /var/log/syslog /tmp/%s/system.log",
    "cp ~/.local/state/Tovalin/Tovalin*.crash /tmp/%s/",
    "cp /var/crash/*Tovalin*.crash /tmp/%s/",
    "desktop=$(xdg-user-dir DESKTOP || echo ~/Desktop) && mkdir -p \"$desktop\" && "
    "zip -q \"$desktop\"/%s.zip /tmp/%s/*.*",
};

std::string filledIn(std::string_view command, std::string_view name) {
  std::string text(command);
  for (std::size_t at = text.find(placeholder); at != std::string::npos; at = text.find(placeholder, at))
    text.replace(at, placeholder.size(), name);
  return text;
}

}  // namespace

std::string collectionName(const std::tm& now) {
  std::string time = recordTime(now);
  std::ranges::replace(time, ' ', 'T');
  std::ranges::replace(time, ':', '-');
  return "tovalinlog_" + time;
}

std::optional<std::array<std::string, 6>> collectionCommands(std::string_view name) {
  std::array<std::string, 6> commands = {filledIn(makeFolder, name)};
  for (std::size_t i = 0; i < copiesAndArchive.size(); ++i)
    commands[i + 1] = filledIn(whereSafe, name) + filledIn(copiesAndArchive[i], name);
  const bool fit =
      std::ranges::all_of(commands, [](const auto& command) { return command.size() < commandBufferSize; });
  return fit ? std::optional(commands) : std::nullopt;
}
