#pragma once

#include <cstdint>

// What the status item shows, as functions of the two states behind it. Any thread.

// The four pictures of the icon; Reverse is for dark panels.
enum class StatusIcon { On, Off, OnReverse, OffReverse };

// Automount on takes an on icon, off an off icon; a dark panel takes the reverse variant.
[[nodiscard]] StatusIcon statusIconFor(std::uint32_t active, bool darkMode);

// doc/compatibility.md
inline constexpr const char* switchOffTitle = "Automount Off";
inline constexpr const char* switchOnTitle = "Automount On";

// The title of the switch names what a click will do.
[[nodiscard]] const char* switchTitleFor(std::uint32_t active);
