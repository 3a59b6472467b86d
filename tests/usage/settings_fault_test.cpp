#include <sys/syscall.h>

#include <array>
#include <cerrno>

#include "tests/usage/failing_parts.h"
#include "tests/usage/settings_fixture.h"
#include "usage/installation_identity.h"
#include "usage/server_option.h"

namespace settings_test {
namespace {

using failing_parts::insteadOfRead;
using failing_parts::memoryIsShort;

constexpr const char* kIdentity = "/tmp/support/Tovalin/TovalinUUID.txt";
constexpr const char* kOption = "/tmp/support/Tovalin/TovalinServerOption.txt";
constexpr const char* kStored = "00112233-4455-6677-8899-AABBCCDDEEFF";

class SettingsFault : public Settings {
 protected:
  void TearDown() override {
    insteadOfRead = nullptr;
    memoryIsShort = false;
    Settings::TearDown();
  }
};

ssize_t readReally(int descriptor, void* bytes, std::size_t size) {
  return ::syscall(SYS_read, descriptor, bytes, size);
}

// Gets the stored identifier into a buffer of 50 "#"; returns the buffer, and in `errors` what was reported.
std::string fill(std::string& errors) {
  std::array<char, 50> buffer;
  buffer.fill('#');
  errors = errorsOf([&] { GetTovalinUUID(buffer); });
  insteadOfRead = nullptr;
  return {buffer.data(), buffer.size()};
}

const std::string kUntouched(50, '#');

TEST_F(SettingsFault, IdentityThatEndsEarlyLeavesBufferAndFileAsTheyAre) {
  write(kIdentity, kStored);
  int calls = 0;
  insteadOfRead = [&](int descriptor, void* bytes, std::size_t) -> ssize_t {
    return ++calls == 1 ? readReally(descriptor, bytes, 35) : 0;
  };
  std::string errors;
  EXPECT_EQ(fill(errors), kUntouched);
  EXPECT_THAT(errors, testing::MatchesRegex("file read failed: [^\n]+\n"));
  EXPECT_EQ(contentsOf(kIdentity), kStored);
}

TEST_F(SettingsFault, IdentityThatCannotBeReadIsReportedWithTheReason) {
  write(kIdentity, kStored);
  insteadOfRead = [](int, void*, std::size_t) -> ssize_t {
    errno = EIO;
    return -1;
  };
  std::string errors;
  EXPECT_EQ(fill(errors), kUntouched);
  EXPECT_EQ(errors, "file read failed: Input/output error\n");
  EXPECT_EQ(contentsOf(kIdentity), kStored);
}

TEST_F(SettingsFault, IdentityThatComesInPiecesIsWhole) {
  write(kIdentity, kStored);
  insteadOfRead = [](int descriptor, void* bytes, std::size_t) { return readReally(descriptor, bytes, 1); };
  std::string errors;
  EXPECT_EQ(fill(errors), kStored + std::string(14, '#'));
  EXPECT_EQ(errors, "");
}

TEST_F(SettingsFault, SignalDoesNotEndTheReadingOfTheIdentity) {
  write(kIdentity, kStored);
  int calls = 0;
  insteadOfRead = [&](int descriptor, void* bytes, std::size_t size) -> ssize_t {
    errno = EINTR;
    return ++calls == 1 ? -1 : readReally(descriptor, bytes, size);
  };
  std::string errors;
  EXPECT_EQ(fill(errors), kStored + std::string(14, '#'));
  EXPECT_EQ(errors, "");
}

TEST_F(SettingsFault, NoMemoryForTheIdentityLeavesBufferAndFileAsTheyAre) {
  write(kIdentity, kStored);
  memoryIsShort = true;
  std::string errors;
  EXPECT_EQ(fill(errors), kUntouched);
  EXPECT_THAT(errors, testing::MatchesRegex("memory alloc failed: [^\n]+\n"));
  EXPECT_EQ(contentsOf(kIdentity), kStored);
}

TEST_F(SettingsFault, NoDescriptorStaysOpenAfterAFault) {
  write(kIdentity, kStored);
  const int before = test_support::openDescriptors();
  insteadOfRead = [](int, void*, std::size_t) -> ssize_t { return 0; };
  std::string errors;
  EXPECT_EQ(fill(errors), kUntouched);
  EXPECT_EQ(test_support::openDescriptors(), before);
}

TEST_F(SettingsFault, ServerOptionThatEndsEarlyMeansTheProductServer) {
  write(kOption, "0");
  insteadOfRead = [](int, void*, std::size_t) -> ssize_t { return 0; };
  int option = -1;
  const std::string errors = errorsOf([&] { option = GetTovalinServerOption(); });
  insteadOfRead = nullptr;
  EXPECT_EQ(option, 1);
  EXPECT_THAT(errors, testing::MatchesRegex("file read failed: [^\n]+\n"));
  EXPECT_EQ(contentsOf(kOption), "0");
}

TEST_F(SettingsFault, ServerOptionThatCannotBeReadIsReportedWithTheReason) {
  write(kOption, "0");
  insteadOfRead = [](int, void*, std::size_t) -> ssize_t {
    errno = EIO;
    return -1;
  };
  int option = -1;
  const std::string errors = errorsOf([&] { option = GetTovalinServerOption(); });
  insteadOfRead = nullptr;
  EXPECT_EQ(option, 1);
  EXPECT_EQ(errors, "file read failed: Input/output error\n");
}

}  // namespace
}  // namespace settings_test
