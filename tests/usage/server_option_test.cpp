#include "usage/server_option.h"

#include "tests/usage/settings_fixture.h"

namespace settings_test {
namespace {

using test_support::ExitStatus;

constexpr const char* kFile = "/tmp/support/Tovalin/TovalinServerOption.txt";

struct Option {
  int value = -1;
  std::string errors = {};

  bool operator==(const Option&) const = default;
};

void PrintTo(const Option& option, std::ostream* stream) {
  *stream << option.value << ", errors: \"" << option.errors << '"';
}

Option getOption() {
  Option option;
  option.errors = errorsOf([&] { option.value = GetTovalinServerOption(); });
  return option;
}

// The content of the file, the option that it selects, and the content afterwards.
struct Case {
  const char* name;
  std::string before;
  int option;
  std::string after;
};

void PrintTo(const Case& example, std::ostream* stream) {
  *stream << example.name;
}

class ServerOption : public LoggedSettings {};
class StoredServerOption : public LoggedSettings, public testing::WithParamInterface<Case> {};

TEST_P(StoredServerOption, SelectsOptionAndKeepsOrReplacesFile) {
  write(kFile, GetParam().before);
  EXPECT_EQ(getOption(), (Option{GetParam().option, ""}));
  EXPECT_EQ(contentsOf(kFile), GetParam().after);
  EXPECT_THAT(log_.messages(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(ServerOption, StoredServerOption,
                         testing::Values(Case{"Zero", "0", 0, "0"}, Case{"One", "1", 1, "1"},
                                         Case{"OtherCharacter", "x", 1, "x"}, Case{"Empty", "", 1, ""},
                                         Case{"ByteZero", std::string(1, '\0'), 1, std::string(1, '\0')},
                                         Case{"ZeroAndLineEnd", "0\n", 1, "1"},
                                         Case{"OneAndLineEnd", "1\n", 1, "1"}, Case{"TwoZeros", "00", 1, "1"},
                                         Case{"LongText", std::string(5000, '0'), 1, "1"}),
                         [](const auto& test) { return test.param.name; });

TEST_F(ServerOption, MissingFileIsCreatedWithProductServer) {
  EXPECT_EQ(getOption(), (Option{1, ""}));
  EXPECT_EQ(contentsOf(kFile), "1");
  EXPECT_EQ(getOption(), (Option{1, ""}));
  EXPECT_EQ(contentsOf(kFile), "1");
}

TEST_F(ServerOption, MissingFolderIsNotCreated) {
  fs::remove(kFolder);
  EXPECT_EQ(getOption(), (Option{1, "create file failed: No such file or directory\n"}));
  EXPECT_FALSE(fs::exists(kFolder));
}

TEST_F(ServerOption, WithoutHomeErrorIsLogged) {
  ::unsetenv("XDG_DATA_HOME");
  ::unsetenv("HOME");
  EXPECT_EQ(getOption(), (Option{1, ""}));
  EXPECT_THAT(log_.messages(), testing::ElementsAre(error("get dir fail!!")));
}

TEST_F(ServerOption, FolderAtItsPathSelectsProductServer) {
  fs::create_directory(kFile);
  EXPECT_EQ(getOption(), (Option{1, "create file failed: Is a directory\n"}));
}

TEST_F(ServerOption, PipeAtItsPathDoesNotBlock) {
  ASSERT_EQ(::mkfifo(kFile, 0600), 0);
  const auto finished = test_support::runForked([] { return GetTovalinServerOption(); });
  EXPECT_EQ(finished.status, ExitStatus{.code = 1});
}

TEST_F(ServerOption, AcceptsPathBeyond128Bytes) {
  const std::string support = std::string(kSupport) + "/" + std::string(200, 'd');
  fs::create_directories(support + "/Tovalin");
  ::setenv("XDG_DATA_HOME", support.c_str(), 1);
  write(support + "/Tovalin/TovalinServerOption.txt", "0");
  EXPECT_EQ(getOption(), (Option{0, ""}));
}

TEST_F(ServerOption, LeaksNoDescriptor) {
  const int before = test_support::openDescriptors();
  for (const char* content : {"0", "0\n"}) {
    write(kFile, content);
    static_cast<void>(getOption());
  }
  EXPECT_EQ(test_support::openDescriptors(), before);
}

// Runs GetTovalinServerOption() as an unprivileged user. The exit status is the option, or 100 if the
// permissions have no effect.
test_support::Finished getOptionAsNobody() {
  return test_support::runForked([] {
    if (!test_support::becomeNobody()) return test_support::kUnavailable;
    if (::access(kFile, W_OK) == 0 || ::access(kFolder, W_OK) == 0) return 100;
    return GetTovalinServerOption();
  });
}

TEST_F(ServerOption, UnwritableFolderSelectsProductServer) {
  const auto finished = getOptionAsNobody();
  if (wasUnavailable(finished)) GTEST_SKIP() << "cannot change to another user";
  EXPECT_EQ(finished.status, ExitStatus{.code = 1});
  EXPECT_EQ(finished.error, "create file failed: Permission denied\n");
  EXPECT_FALSE(fs::exists(kFile));
}

TEST_F(ServerOption, UnwritableOverlongFileIsKept) {
  write(kFile, "0\n");
  fs::permissions(kFile, fs::perms(0444));
  const auto finished = getOptionAsNobody();
  if (wasUnavailable(finished)) GTEST_SKIP() << "cannot change to another user";
  EXPECT_EQ(finished.status, ExitStatus{.code = 1});
  EXPECT_EQ(finished.error, "create file failed: Permission denied\n");
  EXPECT_EQ(contentsOf(kFile), "0\n");
}

TEST_F(ServerOption, ReadOnlyFileIsRead) {
  write(kFile, "0");
  fs::permissions(kFile, fs::perms(0444));
  const auto finished = getOptionAsNobody();
  if (wasUnavailable(finished)) GTEST_SKIP() << "cannot change to another user";
  EXPECT_EQ(finished.status, ExitStatus{.code = 0});
  EXPECT_EQ(finished.error, "");
}

}  // namespace
}  // namespace settings_test
