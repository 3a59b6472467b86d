#pragma once

#include <cstddef>
#include <span>
#include <string_view>

// A message of the notification pipe is read into a buffer of this many bytes, zero-filled before; what is
// behind its first NUL belongs to it only in a "-ncdat" message.
inline constexpr std::size_t notificationBufferSize = 1024;

// What the listener has asked the main thread to show and not yet to hide. Not whether a window really is
// there.
struct ShownNotices {
  bool notice = false;           // the device-access notice
  bool enumerateNotice = false;  // the loading notice
  bool operator==(const ShownNotices&) const = default;
};

enum class NotificationAction {
  None,  // a command whose condition is not met
  NotificationOn,
  NotificationOff,
  NoticeEnumerateOn,
  NoticeEnumerateOff,
  CollectData,
  UnknownCommand
};

// The text in `buffer` up to its first NUL, or all of it when there is none.
[[nodiscard]] std::string_view textIn(std::span<const char> buffer);

// What a message asks for: a notice is shown only when it was not asked for before, and hidden only when it
// was. Moves `shown` along. Pure; any thread.
[[nodiscard]] NotificationAction notificationActionFor(std::string_view text, ShownNotices& shown);
