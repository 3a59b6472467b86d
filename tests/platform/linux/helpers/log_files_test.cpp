#include "platform/linux/helpers/log_files.h"

#include <gtest/gtest.h>

namespace helpers {
namespace {

constexpr uid_t kRoot = 0, kUser = 1000, kAnother = 1001, kLogger = 104;
constexpr mode_t kRegular = S_IFREG | 0644, kClosed = S_IFDIR | 0775, kOpen = S_IFDIR | 01777;

struct stat entry(mode_t mode, uid_t owner, nlink_t links = 1) {
  struct stat status {};
  status.st_mode = mode;
  status.st_uid = owner;
  status.st_nlink = links;
  return status;
}

TEST(LogFiles, MayBeCopiedDependsOnOwnerTypeAndFolder) {
  const struct {
    struct stat file, folder;
    bool allowed;
  } cases[] = {
      {entry(kRegular, kUser), entry(kOpen, kRoot), true},
      {entry(kRegular, kRoot), entry(kOpen, kRoot), false},
      {entry(kRegular, kRoot), entry(kClosed, kRoot), true},
      {entry(kRegular, kRoot), entry(kClosed, kUser), false},
      {entry(kRegular, kAnother), entry(kOpen, kRoot), false},
      {entry(kRegular, kUser, 2), entry(kOpen, kRoot), false},
      {entry(kRegular, kUser, 2), entry(kClosed, kUser), false},
      {entry(kRegular, kLogger), entry(kClosed, kRoot), true},
      {entry(kRegular, kLogger, 2), entry(kClosed, kRoot), false},
      {entry(kRegular, kUser), entry(kClosed, kUser), true},
      {entry(kRegular, kAnother), entry(kClosed, kUser), false},
      {entry(kRegular, kAnother), entry(kClosed, kAnother), false},
      {entry(S_IFIFO | 0666, kUser), entry(kClosed, kRoot), false},
      {entry(S_IFLNK | 0777, kUser), entry(kClosed, kRoot), false},
      {entry(S_IFDIR | 0700, kUser), entry(kClosed, kRoot), false},
      {entry(S_IFSOCK | 0700, kUser), entry(kClosed, kRoot), false},
      {entry(S_IFCHR | 0666, kRoot), entry(kClosed, kRoot), false},
      {entry(S_IFBLK | 0666, kRoot), entry(kClosed, kRoot), false},
  };
  for (const auto& [file, folder, allowed] : cases) {
    EXPECT_EQ(isCopyAllowed(file, folder, kUser), allowed)
        << std::oct << file.st_mode << " of " << std::dec << file.st_uid << " with " << file.st_nlink
        << " names in " << std::oct << folder.st_mode << " of " << std::dec << folder.st_uid;
  }
}

}  // namespace
}  // namespace helpers
