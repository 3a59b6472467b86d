#include "ipc/notification_commands.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

namespace {

using Action = NotificationAction;

constexpr const char* commands[] = {"-non", "-noff", "-neon", "-neoff", "-ncdat"};

TEST(NotificationCommands, MatchesTable) {
  struct Row {
    const char* text;
    Action action;
    ShownNotices before;
    ShownNotices after;
  };
  const Row rows[] = {
      {"-non", Action::NotificationOn, {false, false}, {true, false}},
      {"-non", Action::NotificationOn, {false, true}, {true, true}},
      {"-non", Action::None, {true, false}, {true, false}},
      {"-noff", Action::NotificationOff, {true, false}, {false, false}},
      {"-noff", Action::NotificationOff, {true, true}, {false, true}},
      {"-noff", Action::None, {false, false}, {false, false}},
      {"-noff", Action::None, {false, true}, {false, true}},
      {"-neon", Action::NoticeEnumerateOn, {false, false}, {false, true}},
      {"-neon", Action::NoticeEnumerateOn, {true, false}, {true, true}},
      {"-neon", Action::None, {false, true}, {false, true}},
      {"-neoff", Action::NoticeEnumerateOff, {false, true}, {false, false}},
      {"-neoff", Action::NoticeEnumerateOff, {true, true}, {true, false}},
      {"-neoff", Action::None, {false, false}, {false, false}},
      {"-ncdat", Action::CollectData, {false, false}, {false, false}},
      {"-ncdat", Action::CollectData, {true, true}, {true, true}},
      {"", Action::UnknownCommand, {true, true}, {true, true}},
      {"-NON", Action::UnknownCommand, {false, false}, {false, false}},
      {" -non", Action::UnknownCommand, {false, false}, {false, false}},
      {"-non\n", Action::UnknownCommand, {false, false}, {false, false}},
      {"-non-noff", Action::UnknownCommand, {false, false}, {false, false}},
      {"-ton", Action::UnknownCommand, {false, false}, {false, false}},
  };
  for (const Row& row : rows) {
    ShownNotices shown = row.before;
    EXPECT_EQ(notificationActionFor(row.text, shown), row.action) << row.text;
    EXPECT_EQ(shown, row.after) << row.text;
  }
}

TEST(NotificationCommands, ProperPrefixOfCommandIsUnknown) {
  for (const std::string command : commands) {
    for (std::size_t length = 0; length < command.size(); ++length) {
      ShownNotices shown{true, false};
      EXPECT_EQ(notificationActionFor(command.substr(0, length), shown), Action::UnknownCommand);
      EXPECT_EQ(shown, (ShownNotices{true, false}));
    }
  }
}

TEST(NotificationCommands, CommandWithSuffixIsUnknown) {
  for (const std::string command : commands) {
    for (int byte = 1; byte < 256; ++byte) {
      ShownNotices shown;
      EXPECT_EQ(notificationActionFor(command + static_cast<char>(byte), shown), Action::UnknownCommand);
    }
  }
}

TEST(NotificationCommands, RepeatedOnAndOffRequestEachOnce) {
  ShownNotices shown;
  std::vector<Action> actions;
  for (const char* text : {"-non", "-non", "-noff", "-noff"})
    actions.push_back(notificationActionFor(text, shown));
  EXPECT_EQ(actions,
            (std::vector{Action::NotificationOn, Action::None, Action::NotificationOff, Action::None}));
}

TEST(TextInBuffer, EndsAtFirstNul) {
  std::array<char, notificationBufferSize> buffer{};
  std::string("-non").copy(buffer.data(), 4);
  std::string("-noff").copy(buffer.data() + 5, 5);
  EXPECT_EQ(textIn(buffer), "-non");
}

TEST(TextInBuffer, IsEmptyForEmptyBuffer) {
  const std::array<char, notificationBufferSize> buffer{};
  EXPECT_EQ(textIn(buffer), "");
}

TEST(TextInBuffer, IsWholeBufferWithoutNul) {
  // The bytes after the buffer must not be read.
  std::array<char, notificationBufferSize + 16> memory;
  memory.fill('x');
  EXPECT_EQ(textIn(std::span(memory).first(notificationBufferSize)),
            std::string(notificationBufferSize, 'x'));
}

}  // namespace
