#pragma once

#include <string_view>

namespace platform {

enum class LogPriority { Error = 3, Info = 6 };  // the numbers of syslog(3)

// The channels on which the agent speaks. All may be used on any thread, none fails, and a text is always
// taken as it stands: no character of it is a format.

// One entry in the system log, under the identity "TovalinTray".
void systemLog(LogPriority priority, std::string_view text);

// The text, a colon and the system's words for the current errno, on standard error, as perror(3) writes it.
void errorLog(std::string_view text);

// One line on standard error with date, time and process, the console log of desktop programs.
void consoleLog(std::string_view text);

// Says on standard error and in the system log why the process can't go on, and ends it with status 1 at
// once.
[[noreturn]] void fatalError(std::string_view text);

}  // namespace platform
