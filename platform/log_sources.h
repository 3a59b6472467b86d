#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace platform {

// Builds commands for `system` (platform/shell.h) that collect a program's logs. On Linux the commands follow
// no symbolic links, open no FIFOs, and create files that only the user can read. On macOS they copy whole
// files with the user's umask. Thread-safe.

enum class LogSource {
  ProgramLogs,         // the program's log files: the newest bytes
  SystemLog,           // the system log since boot: the newest bytes, as "system.log"
  UserCrashReports,    // crash reports of the user's processes: whole reports, newest first
  SystemCrashReports,  // crash reports made by the system: whole reports, newest first
};

// Returns a command that creates `folder`, an absolute path, for the copies.
[[nodiscard]] std::string newFolderCommand(std::string_view folder);

// Returns a command that copies the logs of `program`, at most `maxBytes`, into `folder`, an absolute path.
[[nodiscard]] std::string copyLogsCommand(LogSource source, std::string_view program, std::string_view folder,
                                          std::size_t maxBytes);

// Returns a command that packs the files of `folder` into a zip archive called `name` in the user's desktop
// folder.
[[nodiscard]] std::string archiveCommand(std::string_view folder, std::string_view name);

}  // namespace platform
