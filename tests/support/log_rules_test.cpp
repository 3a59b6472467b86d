#include "support/log_rules.h"

#include <gtest/gtest.h>

namespace {

TEST(CollectionName, HasLocalTimeInSeconds) {
  std::tm time{};
  time.tm_year = 126;
  time.tm_mon = 10;
  time.tm_mday = 15;
  time.tm_hour = 22;
  time.tm_min = 5;
  time.tm_sec = 12;
  EXPECT_EQ(collectionName(time), "tovalinlog_2026-11-15T22-05-12");
}

TEST(CollectionCommands, AreInOrder) {
  const auto commands = collectionCommands("N");
  ASSERT_TRUE(commands.has_value());
  EXPECT_EQ((*commands)[0].text, "mkdir -m 700 /tmp/N");
  EXPECT_EQ((*commands)[1].text, "collectlogs newest 20000000 /var/log 'Tovalin*.log' /tmp/N");
  EXPECT_EQ((*commands)[2].text,
            "export SYSTEMD_COLORS=0 SYSTEMD_URLIFY=0; "
            "collectlogs output 20000000 20 /tmp/N system.log journalctl -q -b --no-pager -n || "
            "collectlogs newest 20000000 /var/log syslog /tmp/N system.log");
  EXPECT_EQ((*commands)[3].text, "collectlogs whole 20000000 ~/.local/state/Tovalin 'Tovalin*.crash' /tmp/N");
  EXPECT_EQ((*commands)[4].text, "collectlogs whole 20000000 /var/crash '*Tovalin*.crash' /tmp/N");
  EXPECT_EQ((*commands)[5].text,
            "unset ZIPOPT ZIP; desktop=$(xdg-user-dir DESKTOP); "
            "case $desktop in /*) ;; *) desktop=~/Desktop;; esac; "
            "collectlogs archive /tmp/N \"$desktop\" N.zip zip -qy - /tmp/N/*.*");
}

TEST(CollectionCommands, LimitsSumUpToAtMostFiveMinutes) {
  const auto commands = collectionCommands("N");
  ASSERT_TRUE(commands.has_value());
  std::chrono::seconds all{};
  for (const auto& command : *commands) {
    EXPECT_GE(command.limit, std::chrono::seconds(10)) << command.text;
    all += command.limit;
  }
  EXPECT_LE(all, std::chrono::minutes(5));
}

TEST(CollectionCommands, AreLimitedTo511Bytes) {
  std::size_t maxNameLength = 0;
  for (std::size_t length = 1; collectionCommands(std::string(length, 'n')); ++length) maxNameLength = length;
  const auto commands = *collectionCommands(std::string(maxNameLength, 'n'));
  std::size_t maxCommandLength = 0;
  for (const auto& command : commands) maxCommandLength = std::max(maxCommandLength, command.text.size());
  EXPECT_LE(maxCommandLength, 511u);
  EXPECT_GT(maxCommandLength, 500u);
}

}  // namespace
