#pragma once

#include <ctime>
#include <optional>
#include <string>

// Fakes of the clock and of the bundle version, linked instead of the real functions. The clock functions are
// thread-safe.
namespace record_parts {

// Sets the clock, which advances only through these calls.
void setClock(const std::tm& now);
// Format of `now`: "2024-03-07 09:05:00".
void setClock(const char* now);
[[nodiscard]] std::tm clockAt(const char* now);
// Sets the clock from the next noticeTimeZone() on, like a change of the system's time zone.
void changeZoneTo(const char* now);

// The bundle version; nullopt makes getBundleVersion() fail.
extern std::optional<std::string> bundleVersion;

}  // namespace record_parts
