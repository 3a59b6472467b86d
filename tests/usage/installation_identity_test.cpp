#include "usage/installation_identity.h"

#include <fcntl.h>

#include <array>
#include <string>

#include "tests/usage/settings_fixture.h"

namespace settings_test {
namespace {

using testing::MatchesRegex;

constexpr const char* kFile = "/tmp/support/Tovalin/TovalinUUID.txt";
constexpr const char* kStored = "00112233-4455-6677-8899-AABBCCDDEEFF";
constexpr const char* kCanonical = "[0-9A-F]{8}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{12}";
constexpr const char* kWrong = "UUID is wrong, new UUID create.: ";

// Runs GetTovalinUUID() on a buffer of 50 bytes, the size that the usage records use. Returns the buffer and
// the error output.
struct Filled {
  std::array<char, 50> buffer = {};
  std::string errors = {};

  [[nodiscard]] std::string text() const { return buffer.data(); }
};

Filled fill(char before = '\0') {
  Filled filled;
  filled.buffer.fill(before);
  filled.errors = errorsOf([&] { GetTovalinUUID(filled.buffer); });
  return filled;
}

const std::string kUntouched(50, '#');

std::string whole(const Filled& filled) {
  return {filled.buffer.data(), filled.buffer.size()};
}

using InstallationIdentity = Settings;

TEST(CreateUUID, HasUpperCaseCanonicalForm) {
  EXPECT_THAT(CreateUUID(), MatchesRegex(kCanonical));
}

TEST(CreateUUID, IsNewAtEachCall) {
  EXPECT_NE(CreateUUID(), CreateUUID());
}

TEST_F(InstallationIdentity, MissingFileIsCreatedWithNewIdentifier) {
  const Filled filled = fill();
  EXPECT_THAT(filled.text(), MatchesRegex(kCanonical));
  EXPECT_EQ(filled.errors, "");
  EXPECT_EQ(contentsOf(kFile), filled.text()) << "36 bytes, no line end, no terminator";
}

TEST_F(InstallationIdentity, NewIdentifierIsTerminatedByOneNul) {
  const std::string buffer = whole(fill('#'));
  EXPECT_EQ(buffer[36], '\0');
  EXPECT_EQ(buffer.substr(37), std::string(13, '#'));
}

TEST_F(InstallationIdentity, IsStable) {
  const std::string first = fill().text();
  EXPECT_EQ(fill().text(), first);
  EXPECT_EQ(contentsOf(kFile), first);
}

TEST_F(InstallationIdentity, DiffersBetweenInstallations) {
  const std::string first = fill().text();
  fs::remove(kFile);
  EXPECT_NE(fill().text(), first);
}

TEST_F(InstallationIdentity, StoredIdentifierIsReturned) {
  write(kFile, kStored);
  const Filled filled = fill();
  EXPECT_EQ(filled.text(), kStored);
  EXPECT_EQ(filled.errors, "");
  EXPECT_EQ(contentsOf(kFile), kStored);
}

TEST_F(InstallationIdentity, StoredIdentifierKeepsRestOfBuffer) {
  write(kFile, kStored);
  EXPECT_EQ(whole(fill('#')), kStored + std::string(14, '#'));
}

TEST_F(InstallationIdentity, AnyThirtySixBytesAreKept) {
  const std::string bytes = std::string("no identifier\0\xff\n", 16) + std::string(20, '~');
  write(kFile, bytes);
  const Filled filled = fill('#');
  EXPECT_EQ(whole(filled).substr(0, 36), bytes);
  EXPECT_EQ(filled.errors, "");
  EXPECT_EQ(contentsOf(kFile), bytes);
}

class WrongLength : public InstallationIdentity, public testing::WithParamInterface<std::string> {};

TEST_P(WrongLength, IsReplaced) {
  write(kFile, GetParam());
  const Filled filled = fill();
  EXPECT_THAT(filled.text(), MatchesRegex(kCanonical));
  EXPECT_NE(filled.text(), GetParam().substr(0, 36));
  EXPECT_THAT(filled.errors, MatchesRegex(std::string(kWrong) + "[^\n]+\n"));
  EXPECT_EQ(contentsOf(kFile), filled.text());
}

INSTANTIATE_TEST_SUITE_P(InstallationIdentity, WrongLength,
                         testing::Values("", std::string(kStored, 35), kStored + std::string("\n"),
                                         std::string(5000, 'x')),
                         [](const auto& test) { return "Of" + std::to_string(test.param.size()) + "Bytes"; });

TEST_F(InstallationIdentity, LengthIsNotTruncatedTo32Bits) {
  write(kFile, kStored);
  fs::resize_file(kFile, (std::uintmax_t{1} << 32) + 36);
  const Filled filled = fill();
  EXPECT_THAT(filled.errors, StartsWith(kWrong));
  EXPECT_EQ(fs::file_size(kFile), 36U);
}

TEST_F(InstallationIdentity, FolderAtItsPathKeepsBuffer) {
  fs::create_directory(kFile);
  const Filled filled = fill('#');
  EXPECT_THAT(filled.errors, StartsWith(kWrong));
  EXPECT_THAT(filled.errors, testing::EndsWith("\ncreate file failed: Is a directory\n"));
  EXPECT_EQ(whole(filled), kUntouched);
}

TEST_F(InstallationIdentity, PipeAtItsPathDoesNotBlock) {
  ASSERT_EQ(::mkfifo(kFile, 0600), 0);
  const auto finished = test_support::runForked([] {
    std::array<char, 50> buffer{};
    GetTovalinUUID(buffer);
    return buffer[35] == '\0' ? 1 : 0;
  });
  EXPECT_EQ(finished.status, test_support::ExitStatus{.code = 0});
  EXPECT_THAT(finished.error, StartsWith(kWrong));
  EXPECT_TRUE(fs::is_fifo(kFile));
}

TEST_F(InstallationIdentity, MissingFolderIsNotCreated) {
  fs::remove(kFolder);
  const Filled filled = fill('#');
  EXPECT_EQ(filled.errors, "create file failed: No such file or directory\n");
  EXPECT_EQ(whole(filled), kUntouched);
  EXPECT_FALSE(fs::exists(kFolder));
}

TEST_F(InstallationIdentity, WithoutHomeFailsSilently) {
  ::unsetenv("XDG_DATA_HOME");
  ::unsetenv("HOME");
  const Filled filled = fill('#');
  EXPECT_EQ(filled.errors, "");
  EXPECT_EQ(whole(filled), kUntouched);
}

TEST_F(InstallationIdentity, TooSmallBufferIsUnchanged) {
  write(kFile, kStored);
  std::array<char, 36> buffer;
  buffer.fill('#');
  GetTovalinUUID(buffer);
  EXPECT_EQ(std::string(buffer.data(), buffer.size()), std::string(36, '#'));
}

TEST_F(InstallationIdentity, AcceptsPathBeyond128Bytes) {
  const std::string support = std::string("/tmp/support/") + std::string(200, 'd');
  fs::create_directories(support + "/Tovalin");
  ::setenv("XDG_DATA_HOME", support.c_str(), 1);
  const Filled filled = fill();
  EXPECT_EQ(filled.errors, "");
  EXPECT_EQ(contentsOf(support + "/Tovalin/TovalinUUID.txt"), filled.text());
}

TEST_F(InstallationIdentity, LeaksNoDescriptor) {
  const int before = test_support::openDescriptors();
  fill();
  fill();
  write(kFile, "wrong");
  fill();
  EXPECT_EQ(test_support::openDescriptors(), before);
}

// Runs GetTovalinUUID() as an unprivileged user in a child process, which writes the buffer to standard
// output.
test_support::Finished fillAsNobody() {
  return test_support::runForked([] {
    if (!test_support::becomeNobody()) return test_support::kUnavailable;
    if (::access(kFile, R_OK | W_OK) == 0 || ::access(kFolder, W_OK) == 0) return 1;
    std::array<char, 50> buffer{};
    buffer.fill('#');
    GetTovalinUUID(buffer);
    std::fwrite(buffer.data(), 1, buffer.size(), stdout);
    return 0;
  });
}

#define SKIP_IF_UNAVAILABLE(finished) \
  if (wasUnavailable(finished)) GTEST_SKIP() << "cannot change to another user"

TEST_F(InstallationIdentity, UnwritableFolderKeepsBuffer) {
  const auto finished = fillAsNobody();
  SKIP_IF_UNAVAILABLE(finished);
  EXPECT_EQ(finished.status, test_support::ExitStatus{.code = 0}) << "the permissions had no effect";
  EXPECT_EQ(finished.error, "create file failed: Permission denied\n");
  EXPECT_EQ(finished.output, kUntouched);
  EXPECT_FALSE(fs::exists(kFile));
}

TEST_F(InstallationIdentity, UnwritableFileOfWrongLengthIsKept) {
  write(kFile, "wrong");
  fs::permissions(kFile, fs::perms(0444));
  const auto finished = fillAsNobody();
  SKIP_IF_UNAVAILABLE(finished);
  EXPECT_EQ(finished.status, test_support::ExitStatus{.code = 0}) << "the permissions had no effect";
  EXPECT_THAT(finished.error, StartsWith(kWrong));
  EXPECT_THAT(finished.error, testing::EndsWith("\ncreate file failed: Permission denied\n"));
  EXPECT_EQ(finished.output, kUntouched);
  EXPECT_EQ(contentsOf(kFile), "wrong");
}

TEST_F(InstallationIdentity, ReadOnlyFileIsRead) {
  write(kFile, kStored);
  fs::permissions(kFile, fs::perms(0444));
  const auto finished = fillAsNobody();
  SKIP_IF_UNAVAILABLE(finished);
  EXPECT_EQ(finished.error, "");
  EXPECT_EQ(finished.output, kStored + std::string(14, '#'));
}

TEST_F(InstallationIdentity, UnreadableFileIsTreatedAsMissing) {
  write(kFile, kStored);
  fs::permissions(kFile, fs::perms(0));
  const auto finished = fillAsNobody();
  SKIP_IF_UNAVAILABLE(finished);
  EXPECT_EQ(finished.error, "create file failed: Permission denied\n");
  EXPECT_EQ(finished.output, kUntouched);
  EXPECT_EQ(contentsOf(kFile), kStored);
}

}  // namespace
}  // namespace settings_test
