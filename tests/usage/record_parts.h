#pragma once

#include <ctime>
#include <optional>
#include <string>

// This program's own bodies of the clock and of the bundle's version, linked in place of the agent's.
namespace record_parts {

// What the clock shows; steps only when a case steps it.
void setClock(const std::tm& now);
// "2024-03-07 09:05:00"
void setClock(const char* now);
[[nodiscard]] std::tm clockAt(const char* now);
// What the clock shows from the next noticeTimeZone on, as after a change of the system's time zone.
void changeZoneTo(const char* now);

// The bundle's version; nothing: it can't be had.
extern std::optional<std::string> bundleVersion;

}  // namespace record_parts
