#include "ipc/notification_commands.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

namespace {

using Action = NotificationAction;

constexpr const char* commands[] = {"-non", "-noff", "-neon", "-neoff", "-ncdat"};

TEST(NotificationCommands, EachRowOfTheTable) {
  struct Row {
    const char* text;
    ShownNotices before;
    Action action;
    ShownNotices after;
  };
  const Row rows[] = {
      {"-non", {false, false}, Action::NotificationOn, {true, false}},
      {"-non", {false, true}, Action::NotificationOn, {true, true}},
      {"-non", {true, false}, Action::None, {true, false}},
      {"-noff", {true, false}, Action::NotificationOff, {false, false}},
      {"-noff", {true, true}, Action::NotificationOff, {false, true}},
      {"-noff", {false, false}, Action::None, {false, false}},
      {"-noff", {false, true}, Action::None, {false, true}},
      {"-neon", {false, false}, Action::NoticeEnumerateOn, {false, true}},
      {"-neon", {true, false}, Action::NoticeEnumerateOn, {true, true}},
      {"-neon", {false, true}, Action::None, {false, true}},
      {"-neoff", {false, true}, Action::NoticeEnumerateOff, {false, false}},
      {"-neoff", {true, true}, Action::NoticeEnumerateOff, {true, false}},
      {"-neoff", {false, false}, Action::None, {false, false}},
      {"-ncdat", {false, false}, Action::CollectData, {false, false}},
      {"-ncdat", {true, true}, Action::CollectData, {true, true}},
      {"", {true, true}, Action::UnknownCommand, {true, true}},
      {"-NON", {false, false}, Action::UnknownCommand, {false, false}},
      {" -non", {false, false}, Action::UnknownCommand, {false, false}},
      {"-non\n", {false, false}, Action::UnknownCommand, {false, false}},
      {"-non-noff", {false, false}, Action::UnknownCommand, {false, false}},
      {"-ton", {false, false}, Action::UnknownCommand, {false, false}},
  };
  for (const Row& row : rows) {
    ShownNotices shown = row.before;
    EXPECT_EQ(notificationActionFor(row.text, shown), row.action) << row.text;
    EXPECT_EQ(shown, row.after) << row.text;
  }
}

TEST(NotificationCommands, EveryTruePrefixOfACommandIsUnknown) {
  for (const std::string command : commands) {
    for (std::size_t length = 0; length < command.size(); ++length) {
      ShownNotices shown{true, false};
      EXPECT_EQ(notificationActionFor(command.substr(0, length), shown), Action::UnknownCommand);
      EXPECT_EQ(shown, (ShownNotices{true, false}));
    }
  }
}

TEST(NotificationCommands, EveryContinuationOfACommandIsUnknown) {
  for (const std::string command : commands) {
    for (int byte = 1; byte < 256; ++byte) {
      ShownNotices shown;
      EXPECT_EQ(notificationActionFor(command + static_cast<char>(byte), shown), Action::UnknownCommand);
    }
  }
}

TEST(NotificationCommands, OnTwiceThenOffTwiceAsksOnceForEach) {
  ShownNotices shown;
  std::vector<Action> actions;
  for (const char* text : {"-non", "-non", "-noff", "-noff"})
    actions.push_back(notificationActionFor(text, shown));
  EXPECT_EQ(actions,
            (std::vector{Action::NotificationOn, Action::None, Action::NotificationOff, Action::None}));
}

TEST(TextInBuffer, EndsAtTheFirstNul) {
  std::array<char, notificationBufferSize> buffer{};
  std::string("-non").copy(buffer.data(), 4);
  std::string("-noff").copy(buffer.data() + 5, 5);
  EXPECT_EQ(textIn(buffer), "-non");
}

TEST(TextInBuffer, IsEmptyWhenTheBufferIs) {
  const std::array<char, notificationBufferSize> buffer{};
  EXPECT_EQ(textIn(buffer), "");
}

TEST(TextInBuffer, IsTheWholeBufferAndNoMoreWhenNothingEndsIt) {
  // Behind it stands what must not be read.
  std::array<char, notificationBufferSize + 16> memory;
  memory.fill('x');
  EXPECT_EQ(textIn(std::span(memory).first(notificationBufferSize)),
            std::string(notificationBufferSize, 'x'));
}

}  // namespace
