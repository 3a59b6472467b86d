#pragma once

#include <string_view>

namespace platform {

enum class LogPriority { Error = 3, Info = 6 };  // the values of syslog(3)

// The agent's log channels. All functions are thread-safe and never fail. Texts are never interpreted as
// format strings.

// Writes one entry with the identity "TovalinTray" to the system log.
void systemLog(LogPriority priority, std::string_view text);

// Writes the text, a colon and the description of the current errno to standard error, in the format of
// perror(3).
void errorLog(std::string_view text);

// Writes one line with date, time and process to the console log of desktop programs: standard error on
// Linux, NSLog on macOS.
void consoleLog(std::string_view text);

// Writes the reason to standard error and the system log and ends the process at once with status 1.
[[noreturn]] void fatalError(std::string_view text);

}  // namespace platform
