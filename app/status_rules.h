#pragma once

#include <chrono>
#include <cstdint>

// Pure functions for the state of the status item. Thread-safe.

// The four icons; Reverse is for dark panels.
enum class StatusIcon { On, Off, OnReverse, OffReverse };

// Returns the icon for the automount state and the appearance.
[[nodiscard]] StatusIcon statusIconFor(std::uint32_t active, bool darkMode);

// Returns the name of the symbolic icon of the same meaning.
[[nodiscard]] const char* symbolFor(StatusIcon icon);

// Returns the automount state in words.
[[nodiscard]] const char* stateTextFor(std::uint32_t active);

// The notification on desktops without a panel for the icon.
inline constexpr std::chrono::seconds panelPatience{10};
inline constexpr const char* hiddenTitle = "Tovalin is running";
inline constexpr const char* hiddenText = "No panel shows its icon. Start Tovalin again to open its menu.";

// Frozen: doc/compatibility.md.
inline constexpr const char* switchOffTitle = "Automount Off";
inline constexpr const char* switchOnTitle = "Automount On";

// Returns the title of the switch, which names the effect of a click.
[[nodiscard]] const char* switchTitleFor(std::uint32_t active);
