#include "support/log_rules.h"

#include <gtest/gtest.h>

namespace {

TEST(CollectionName, IsTheLocalTimeToTheSecond) {
  std::tm time{};
  time.tm_year = 126;
  time.tm_mon = 10;
  time.tm_mday = 15;
  time.tm_hour = 22;
  time.tm_min = 5;
  time.tm_sec = 12;
  EXPECT_EQ(collectionName(time), "tovalinlog_2026-11-15T22-05-12");
}

TEST(CollectionCommands, StandInTheirOrder) {
  const auto commands = collectionCommands("N");
  ASSERT_TRUE(commands.has_value());
  EXPECT_EQ((*commands)[0], "mkdir -m 700 /tmp/N || { test -O /tmp/N -a ! -L /tmp/N && chmod 700 /tmp/N; }");
  const std::string safe = "umask 077; test -O /tmp/N -a ! -L /tmp/N && ";
  EXPECT_EQ((*commands)[1], safe + "cp /var/log/Tovalin*.log /tmp/N/");
  EXPECT_EQ((*commands)[2], safe +
                                "{ journalctl -q -b --no-pager >/tmp/N/system.log; test -s "
                                "/tmp/N/system.log; } || cp /var/log/syslog /tmp/N/system.log");
  EXPECT_EQ((*commands)[3], safe + "cp ~/.local/state/Tovalin/Tovalin*.crash /tmp/N/");
  EXPECT_EQ((*commands)[4], safe + "cp /var/crash/*Tovalin*.crash /tmp/N/");
  EXPECT_EQ((*commands)[5],
            safe +
                "desktop=$(xdg-user-dir DESKTOP || echo ~/Desktop) && mkdir -p \"$desktop\" && "
                "zip -q \"$desktop\"/N.zip /tmp/N/*.*");
}

TEST(CollectionCommands, MayTake511BytesEach) {
  std::size_t longest = 0;
  for (std::size_t length = 1; collectionCommands(std::string(length, 'n')); ++length) longest = length;
  const auto commands = *collectionCommands(std::string(longest, 'n'));
  std::size_t most = 0;
  for (const auto& command : commands) most = std::max(most, command.size());
  EXPECT_LE(most, 511u);
  EXPECT_GT(most, 500u);
}

}  // namespace
