#pragma once

#include <sys/mount.h>

#include "tests/usage/record_fixture.h"

namespace settings_test {

// A disk of two pages for the application directory; the identifier takes one.
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
