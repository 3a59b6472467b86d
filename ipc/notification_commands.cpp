#include "ipc/notification_commands.h"

#include <algorithm>

namespace {

// Sets `shown` to `wanted` and returns `action` if that is a change, else None.
NotificationAction change(bool& shown, bool wanted, NotificationAction action) {
  if (shown == wanted) return NotificationAction::None;
  shown = wanted;
  return action;
}

}  // namespace

std::string_view textIn(std::span<const char> buffer) {
  return {buffer.begin(), std::ranges::find(buffer, '\0')};
}

NotificationAction notificationActionFor(std::string_view text, ShownNotices& shown) {
  if (text == "-non") return change(shown.notice, true, NotificationAction::NotificationOn);
  if (text == "-noff") return change(shown.notice, false, NotificationAction::NotificationOff);
  if (text == "-neon") return change(shown.enumerateNotice, true, NotificationAction::NoticeEnumerateOn);
  if (text == "-neoff") return change(shown.enumerateNotice, false, NotificationAction::NoticeEnumerateOff);
  if (text == "-ncdat") return NotificationAction::CollectData;
  return NotificationAction::UnknownCommand;
}
