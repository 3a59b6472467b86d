#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace platform {

// What the system keeps of a program's logs, as commands for `system` (platform/shell.h). A command follows
// no links, opens no FIFOs, and makes files that only the user can read. Any thread.

enum class LogSource {
  ProgramLogs,         // log files of the program: the newest bytes
  SystemLog,           // the log of the system since its start: the newest bytes, as "system.log"
  UserCrashReports,    // reports on the user's processes: whole ones, the newest first
  SystemCrashReports,  // reports that the system has made: whole ones, the newest first
};

// Copies what there is of `program`, `maxBytes` at most, into `folder`, an absolute path.
[[nodiscard]] std::string copyLogsCommand(LogSource source, std::string_view program, std::string_view folder,
                                          std::size_t maxBytes);

// Packs the files of `folder` into a zip archive of this name in the user's desktop folder.
[[nodiscard]] std::string archiveCommand(std::string_view folder, std::string_view name);

}  // namespace platform
