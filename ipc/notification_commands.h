#pragma once

#include <cstddef>
#include <span>
#include <string_view>

// The size of the zero-filled buffer into which a message is read. Only in a "-ncdat" message do the bytes
// after the first NUL belong to the message.
inline constexpr std::size_t notificationBufferSize = 1024;

// The notices that the listener has requested to show and not yet to hide. The windows may lag behind.
struct ShownNotices {
  bool notice = false;           // the device-access notice
  bool enumerateNotice = false;  // the loading notice
  bool operator==(const ShownNotices&) const = default;
};

enum class NotificationAction {
  None,  // the command changes nothing
  NotificationOn,
  NotificationOff,
  NoticeEnumerateOn,
  NoticeEnumerateOff,
  CollectData,
  UnknownCommand
};

// Returns the text in `buffer` up to its first NUL; the whole buffer if there is none.
[[nodiscard]] std::string_view textIn(std::span<const char> buffer);

// Returns the action for a message and updates `shown`. A notice is shown only if it is not shown yet, and
// hidden only if it is. Thread-safe.
[[nodiscard]] NotificationAction notificationActionFor(std::string_view text, ShownNotices& shown);
