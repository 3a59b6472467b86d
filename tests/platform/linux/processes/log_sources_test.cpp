#include "platform/log_sources.h"

#include <gtest/gtest.h>

namespace {

using platform::LogSource;

TEST(LogSources, CommandContainsProgramFolderAndByteLimit) {
  EXPECT_EQ(platform::copyLogsCommand(LogSource::ProgramLogs, "P", "/tmp/N", 7),
            "collectlogs newest 7 /var/log 'P*.log' /tmp/N");
  EXPECT_EQ(platform::copyLogsCommand(LogSource::SystemLog, "P", "/tmp/N", 7),
            "export SYSTEMD_COLORS=0 SYSTEMD_URLIFY=0; "
            "collectlogs output 7 20 /tmp/N system.log journalctl -q -b --no-pager -n || "
            "collectlogs newest 7 /var/log syslog /tmp/N system.log");
  EXPECT_EQ(platform::copyLogsCommand(LogSource::UserCrashReports, "P", "/tmp/N", 7),
            "collectlogs whole 7 ~/.local/state/P 'P*.crash' /tmp/N");
  EXPECT_EQ(platform::copyLogsCommand(LogSource::SystemCrashReports, "P", "/tmp/N", 7),
            "collectlogs whole 7 /var/crash '*P*.crash' /tmp/N");
}

TEST(LogSources, NewFolderIsPrivate) {
  EXPECT_EQ(platform::newFolderCommand("/tmp/N"), "mkdir -m 700 /tmp/N");
}

TEST(LogSources, PlaceholderInArgumentIsNotExpanded) {
  EXPECT_EQ(platform::copyLogsCommand(LogSource::ProgramLogs, "%p%f", "/tmp/%p", 7),
            "collectlogs newest 7 /var/log '%p%f*.log' /tmp/%p");
}

TEST(LogSources, ArchiveGoesToDesktopFolder) {
  EXPECT_EQ(platform::archiveCommand("/tmp/N", "N.zip"),
            "unset ZIPOPT ZIP; desktop=$(xdg-user-dir DESKTOP); "
            "case $desktop in /*) ;; *) desktop=~/Desktop;; esac; "
            "collectlogs archive /tmp/N \"$desktop\" N.zip zip -qy - /tmp/N/*.*");
}

}  // namespace
