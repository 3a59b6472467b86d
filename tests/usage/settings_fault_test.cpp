#include <fcntl.h>
#include <sys/syscall.h>

#include <array>
#include <cerrno>
#include <vector>

#include "tests/usage/failing_parts.h"
#include "tests/usage/settings_fixture.h"
#include "usage/installation_identity.h"
#include "usage/server_option.h"
#include "usage/upload_files.h"
#include "usage/usage_record.h"

namespace settings_test {
namespace {

using failing_parts::insteadOfFstat;
using failing_parts::insteadOfLstat;
using failing_parts::insteadOfOpen;
using failing_parts::insteadOfRead;
using failing_parts::memoryIsShort;

constexpr const char* kIdentity = "/tmp/support/Tovalin/TovalinUUID.txt";
constexpr const char* kOption = "/tmp/support/Tovalin/TovalinServerOption.txt";
constexpr const char* kStored = "00112233-4455-6677-8899-AABBCCDDEEFF";

class SettingsFault : public Settings {
 protected:
  void TearDown() override {
    failing_parts::restore();
    Settings::TearDown();
  }
};

ssize_t readReally(int descriptor, void* bytes, std::size_t size) {
  return ::syscall(SYS_read, descriptor, bytes, size);
}

// Runs GetTovalinUUID() on a buffer of 50 "#". Returns the buffer, and in `errors` the error output.
std::string fill(std::string& errors) {
  std::array<char, 50> buffer;
  buffer.fill('#');
  errors = errorsOf([&] { GetTovalinUUID(buffer); });
  failing_parts::restore();
  return {buffer.data(), buffer.size()};
}

// Returns GetTovalinServerOption(), and in `errors` the error output.
int option(std::string& errors) {
  int value = -1;
  errors = errorsOf([&] { value = GetTovalinServerOption(); });
  failing_parts::restore();
  return value;
}

int refuseSize(int, struct stat*) {
  errno = EIO;
  return -1;
}

int sizeReally(int descriptor, struct stat* status) {
  return ::fstatat(descriptor, "", status, AT_EMPTY_PATH);
}

// Fails once only, because the capture of the error output calls fstat() later.
void refuseSizeOnce() {
  insteadOfFstat = [calls = 0](int descriptor, struct stat* status) mutable {
    return ++calls == 1 ? refuseSize(descriptor, status) : sizeReally(descriptor, status);
  };
}

// The first open() fails with EMFILE, later ones succeed.
void refuseToOpenOnce() {
  insteadOfOpen = [calls = 0](const char* path, int flags, mode_t mode) mutable -> int {
    if (++calls > 1) return static_cast<int>(::syscall(SYS_openat, AT_FDCWD, path, flags, mode));
    errno = EMFILE;
    return -1;
  };
}

const std::string kUntouched(50, '#');

TEST_F(SettingsFault, IdentityWithEarlyEndOfFileKeepsBufferAndFile) {
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

TEST_F(SettingsFault, FailedReadOfIdentityIsReportedWithErrno) {
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

TEST_F(SettingsFault, IdentityIsReadCompletelyInShortReads) {
  write(kIdentity, kStored);
  insteadOfRead = [](int descriptor, void* bytes, std::size_t) { return readReally(descriptor, bytes, 1); };
  std::string errors;
  EXPECT_EQ(fill(errors), kStored + std::string(14, '#'));
  EXPECT_EQ(errors, "");
}

TEST_F(SettingsFault, ReadOfIdentityIsRestartedAfterEintr) {
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

TEST_F(SettingsFault, OutOfMemoryForIdentityKeepsBufferAndFile) {
  write(kIdentity, kStored);
  memoryIsShort = true;
  std::string errors;
  EXPECT_EQ(fill(errors), kUntouched);
  EXPECT_THAT(errors, testing::MatchesRegex("memory alloc failed: [^\n]+\n"));
  EXPECT_EQ(contentsOf(kIdentity), kStored);
}

TEST_F(SettingsFault, LeaksNoDescriptorAfterFault) {
  write(kIdentity, kStored);
  const int before = test_support::openDescriptors();
  insteadOfRead = [](int, void*, std::size_t) -> ssize_t { return 0; };
  std::string errors;
  EXPECT_EQ(fill(errors), kUntouched);
  EXPECT_EQ(test_support::openDescriptors(), before);
}

TEST_F(SettingsFault, ServerOptionWithEarlyEndOfFileSelectsProductServer) {
  write(kOption, "0");
  insteadOfRead = [](int, void*, std::size_t) -> ssize_t { return 0; };
  std::string errors;
  EXPECT_EQ(option(errors), 1);
  EXPECT_THAT(errors, testing::MatchesRegex("file read failed: [^\n]+\n"));
  EXPECT_EQ(contentsOf(kOption), "0");
}

TEST_F(SettingsFault, FailedReadOfServerOptionIsReportedWithErrno) {
  write(kOption, "0");
  insteadOfRead = [](int, void*, std::size_t) -> ssize_t {
    errno = EIO;
    return -1;
  };
  std::string errors;
  EXPECT_EQ(option(errors), 1);
  EXPECT_EQ(errors, "file read failed: Input/output error\n");
}

TEST_F(SettingsFault, FailedFstatOfIdentityIsReportedAndKeepsFile) {
  write(kIdentity, kStored);
  refuseSizeOnce();
  std::string errors;
  EXPECT_EQ(fill(errors), kUntouched);
  EXPECT_EQ(errors, "file read failed: Input/output error\n");
  EXPECT_EQ(contentsOf(kIdentity), kStored);
}

TEST_F(SettingsFault, EmfileForIdentityIsReportedAndKeepsFile) {
  write(kIdentity, kStored);
  refuseToOpenOnce();
  std::string errors;
  EXPECT_EQ(fill(errors), kUntouched);
  EXPECT_EQ(errors, "create file failed: Too many open files\n");
  EXPECT_EQ(contentsOf(kIdentity), kStored);
}

TEST_F(SettingsFault, EmfileForIdentityOfWrongLengthReplacesFile) {
  write(kIdentity, "wrong");
  refuseToOpenOnce();
  std::string errors;
  EXPECT_NE(fill(errors), kUntouched);
  EXPECT_EQ(errors, "");
  EXPECT_EQ(contentsOf(kIdentity).size(), uuidTextLength);
}

TEST_F(SettingsFault, FailedFstatOfServerOptionIsReportedAndKeepsFile) {
  write(kOption, "0");
  refuseSizeOnce();
  std::string errors;
  EXPECT_EQ(option(errors), 1);
  EXPECT_EQ(errors, "file read failed: Input/output error\n");
  EXPECT_EQ(contentsOf(kOption), "0");
}

TEST_F(SettingsFault, EmfileForServerOptionIsReportedAndKeepsFile) {
  write(kOption, "0");
  refuseToOpenOnce();
  std::string errors;
  EXPECT_EQ(option(errors), 1);
  EXPECT_EQ(errors, "create file failed: Too many open files\n");
  EXPECT_EQ(contentsOf(kOption), "0");
}

using PastFileFault = SettingsFault;
constexpr const char* kPastFile = "/tmp/support/Tovalin/Tovalin_2024_03_06.dat";

// Lets each of the fstat() calls fail in turn.
TEST_F(PastFileFault, FailedFstatDoesNotReturnEmptyContents) {
  write(kPastFile, "records");
  for (int failing = 1; failing <= 3; ++failing) {
    insteadOfFstat = [calls = 0, failing](int descriptor, struct stat* status) mutable {
      return ++calls == failing ? refuseSize(descriptor, status) : sizeReally(descriptor, status);
    };
    const auto contents = contentsOfFile(kPastFile);
    EXPECT_EQ(contents.value_or("records"), "records") << "look " << failing;
    EXPECT_EQ(contents.has_value(), failing > 1);
  }
}

TEST_F(PastFileFault, FailedLstatKeepsSentFile) {
  write(kPastFile, "records, and more");
  insteadOfLstat = [](const char*, struct stat*) { return errno = EACCES, -1; };
  removeSentFile({kPastFile, 7});
  EXPECT_EQ(contentsOf(kPastFile), "records, and more");
}

// Another user could open a file between its creation and a later chmod() and keep it open.
TEST_F(SettingsFault, FilesAndFolderAreCreatedWithPrivateModes) {
  fs::remove_all(kFolder);
  std::vector<mode_t> files, folders;
  insteadOfOpen = [&](const char* path, int flags, mode_t mode) {
    if ((flags & O_CREAT) != 0) files.push_back(mode);
    return static_cast<int>(::syscall(SYS_openat, AT_FDCWD, path, flags, mode));
  };
  failing_parts::insteadOfMkdir = [&](const char* path, mode_t mode) {
    folders.push_back(mode);
    return ::mkdirat(AT_FDCWD, path, mode);
  };
  TvlWriteQuitToFile();
  static_cast<void>(GetTovalinServerOption());
  EXPECT_THAT(folders, testing::ElementsAre(0700));
  EXPECT_GE(files.size(), 4u) << "the day's file, its lock, the identity, the server's option";
  EXPECT_THAT(files, testing::Each(0600));
}

}  // namespace
}  // namespace settings_test
