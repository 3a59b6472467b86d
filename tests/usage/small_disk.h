#pragma once

#include <sys/mount.h>

#include "tests/usage/record_fixture.h"

namespace settings_test {

// Mounts a tmpfs of two pages at the application directory; the identifier occupies one page.
class SmallDisk : public Records {
 protected:
  void SetUp() override {
    Records::SetUp();
    ASSERT_EQ(::mount("tmpfs", kFolder, "tmpfs", 0, "size=8k"), 0);
    write("/tmp/support/Tovalin/TovalinUUID.txt", "00112233-4455-6677-8899-AABBCCDDEEFF");
  }
  void TearDown() override {
    ::umount(kFolder);
    Records::TearDown();
  }
};

}  // namespace settings_test
