#include "platform/log_sources.h"

namespace platform {
namespace {

// Command templates. Placeholders: maximum bytes (%b), program (%p), folder (%f), archive name (%n).
constexpr std::string_view programLogs = "collectlogs newest %b /var/log '%p*.log' %f";
// collectlogs appends the number of entries to -n, at most 200,000. Printing these takes seconds; printing a
// whole journal can take half a minute.
constexpr std::string_view systemLog =
    "export SYSTEMD_COLORS=0 SYSTEMD_URLIFY=0; "
    "collectlogs output %b 20 %f system.log journalctl -q -b --no-pager -n || "
    "collectlogs newest %b /var/log syslog %f system.log";
constexpr std::string_view userCrashReports = "collectlogs whole %b ~/.local/state/%p '%p*.crash' %f";
constexpr std::string_view systemCrashReports = "collectlogs whole %b /var/crash '*%p*.crash' %f";
// zip -y stores links instead of following them.
constexpr std::string_view archive =
    "unset ZIPOPT ZIP; desktop=$(xdg-user-dir DESKTOP); "
    "case $desktop in /*) ;; *) desktop=~/Desktop;; esac; "
    "collectlogs archive %f \"$desktop\" %n zip -qy - %f/*.*";

std::string_view templateOf(LogSource source) {
  switch (source) {
    case LogSource::ProgramLogs:
      return programLogs;
    case LogSource::SystemLog:
      return systemLog;
    case LogSource::UserCrashReports:
      return userCrashReports;
    case LogSource::SystemCrashReports:
      return systemCrashReports;
  }
  return {};
}

struct Values {
  std::string bytes = {};
  std::string_view program = {};
  std::string_view folder = {};
  std::string_view name = {};

  [[nodiscard]] std::string_view of(char mark) const {
    return mark == 'b' ? std::string_view(bytes) : mark == 'p' ? program : mark == 'f' ? folder : name;
  }
};

std::string filledIn(std::string_view command, const Values& values) {
  std::string text;
  for (std::size_t mark = command.find('%'); mark != std::string_view::npos; mark = command.find('%')) {
    text.append(command.substr(0, mark)).append(values.of(command[mark + 1]));
    command.remove_prefix(mark + 2);
  }
  return text.append(command);
}

}  // namespace

std::string newFolderCommand(std::string_view folder) {
  return "mkdir -m 700 " + std::string(folder);
}

std::string copyLogsCommand(LogSource source, std::string_view program, std::string_view folder,
                            std::size_t maxBytes) {
  return filledIn(templateOf(source),
                  {.bytes = std::to_string(maxBytes), .program = program, .folder = folder});
}

std::string archiveCommand(std::string_view folder, std::string_view name) {
  return filledIn(archive, {.folder = folder, .name = name});
}

}  // namespace platform
