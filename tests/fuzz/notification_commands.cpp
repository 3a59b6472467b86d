// Input: messages, one per line. Each action must change the requested state of a notice.

#include "ipc/notification_commands.h"

#include <algorithm>
#include <span>
#include <string_view>

#include "tests/fuzz/requirement.h"
#include "tests/fuzz/target.h"

namespace {

using fuzz::require;

// Second implementation of the command table.
NotificationAction expected(std::string_view text, const ShownNotices& before) {
  const auto when = [](bool condition, NotificationAction action) {
    return condition ? action : NotificationAction::None;
  };
  if (text == "-non") return when(!before.notice, NotificationAction::NotificationOn);
  if (text == "-noff") return when(before.notice, NotificationAction::NotificationOff);
  if (text == "-neon") return when(!before.enumerateNotice, NotificationAction::NoticeEnumerateOn);
  if (text == "-neoff") return when(before.enumerateNotice, NotificationAction::NoticeEnumerateOff);
  return text == "-ncdat" ? NotificationAction::CollectData : NotificationAction::UnknownCommand;
}

void checkMessage(std::span<const char> bytes, ShownNotices& shown) {
  const std::string_view text = textIn(bytes);
  require(text.data() == bytes.data(), "the text begins where the message does");
  require(text.find('\0') == std::string_view::npos, "the text holds no NUL");
  require(text.size() == bytes.size() || bytes[text.size()] == '\0', "the text ends at a NUL or at the end");

  const ShownNotices before = shown;
  const NotificationAction action = notificationActionFor(text, shown);
  require(action == expected(text, before), "the action is that of the command");
  require((shown.notice != before.notice) ==
              (action == NotificationAction::NotificationOn || action == NotificationAction::NotificationOff),
          "the notice changes with its actions");
  require(
      (shown.enumerateNotice != before.enumerateNotice) == (action == NotificationAction::NoticeEnumerateOn ||
                                                            action == NotificationAction::NoticeEnumerateOff),
      "the loading notice changes with its actions");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view rest(reinterpret_cast<const char*>(data), size);
  ShownNotices shown;
  while (!rest.empty()) {
    const std::string_view line = rest.substr(0, rest.find('\n'));
    checkMessage(line, shown);
    rest.remove_prefix(std::min(line.size() + 1, rest.size()));
  }
  return 0;
}
