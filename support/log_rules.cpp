#include "support/log_rules.h"

#include <algorithm>
#include <cstddef>

#include "usage/record_bytes.h"

namespace {

using namespace std::chrono_literals;

constexpr std::size_t commandBufferSize = 512;

// Stands for the name of the collection.
constexpr std::string_view placeholder = "%s";

struct CommandTemplate {
  std::string_view text;
  std::chrono::seconds limit;
};

// A copy of 20 MB, and the newest 200,000 entries of a journal, take seconds. A limit is what a source that
// blocks costs: a file system that does not answer, or a folder with millions of entries.
constexpr std::chrono::seconds copyLimit = 30s;

constexpr std::array<CommandTemplate, 6> commandTemplates = {{
    {"mkdir -m 700 /tmp/%s", 10s},
    {"collectlogs newest 20000000 /var/log 'Tovalin*.log' /tmp/%s", copyLimit},
    {"export SYSTEMD_COLORS=0 SYSTEMD_URLIFY=0; "
     "collectlogs output 20000000 20 /tmp/%s system.log journalctl -q -b --no-pager -n || "
     "collectlogs newest 20000000 /var/log syslog /tmp/%s system.log",
     copyLimit},
    {"collectlogs whole 20000000 ~/.local/state/Tovalin 'Tovalin*.crash' /tmp/%s", copyLimit},
    {"collectlogs whole 20000000 /var/crash '*Tovalin*.crash' /tmp/%s", copyLimit},
    // -y: a link in a folder that was there already is not followed.
    {"unset ZIPOPT ZIP; desktop=$(xdg-user-dir DESKTOP); "
     "case $desktop in /*) ;; *) desktop=~/Desktop;; esac; "
     "collectlogs archive /tmp/%s \"$desktop\" %s.zip zip -qy - /tmp/%s/*.*",
     120s},
}};

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

std::optional<std::array<CollectionCommand, 6>> collectionCommands(std::string_view name) {
  std::array<CollectionCommand, 6> commands;
  std::ranges::transform(commandTemplates, commands.begin(), [&](const CommandTemplate& command) {
    return CollectionCommand{filledIn(command.text, name), command.limit};
  });
  const bool fit = std::ranges::all_of(
      commands, [](const auto& command) { return command.text.size() < commandBufferSize; });
  return fit ? std::optional(commands) : std::nullopt;
}
