#include <fcntl.h>
#include <gtest/gtest.h>
#include <limits.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>

#include "platform/property_list.h"
#include "tests/platform/portable/property_lists/property_list_support.h"

namespace {

using namespace property_list_support;
using platform::PropertyListError;
using platform::readPropertyListFile;
using Result = std::variant<PropertyList, PropertyListError>;

constexpr std::string_view settingsText =
    "<plist version=\"1.0\"><dict><key>Autorun</key><true/></dict></plist>";

class PropertyListFile : public testing::Test {
 protected:
  void SetUp() override {
    char name[] = "/tmp/property_list.XXXXXX";
    ASSERT_NE(::mkdtemp(name), nullptr);
    folder_ = name;
    std::filesystem::permissions(folder_, std::filesystem::perms(0755));
    descriptors_ = openDescriptors();
  }
  void TearDown() override {
    EXPECT_EQ(openDescriptors(), descriptors_) << "a descriptor was left open";
    std::filesystem::remove_all(folder_);
  }

  std::string write(const std::string& name, std::string_view content) const {
    std::string path = folder_ + "/" + name;
    std::ofstream(path, std::ios::binary) << content;
    return path;
  }
  [[nodiscard]] std::string path(const std::string& name) const { return folder_ + "/" + name; }

  static std::ptrdiff_t openDescriptors() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"),
                         std::filesystem::directory_iterator());
  }

  // Runs `check` in a child process with the uid and gid 65534. Returns 0 if it returns true, 1 if it returns
  // false, 2 if the child cannot change its uid or gid, -1 if a signal ends the child.
  static int asOrdinaryUser(const std::function<bool()>& check) {
    constexpr uid_t nobody = 65534;
    const pid_t child = ::fork();
    if (child == 0) {
      if (::setresgid(nobody, nobody, nobody) == -1 || ::setresuid(nobody, nobody, nobody) == -1) ::_exit(2);
      ::_exit(check() ? 0 : 1);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

 private:
  std::string folder_;
  std::ptrdiff_t descriptors_ = 0;
};

TEST_F(PropertyListFile, ReadsList) {
  const Result result = readPropertyListFile(write("settings.plist", settingsText));
  EXPECT_EQ(result, Result(PropertyList(PropertyList::Dictionary{{"Autorun", PropertyList(true)}})));
}

TEST_F(PropertyListFile, FollowsSymbolicLink) {
  ASSERT_EQ(::symlink(write("settings.plist", settingsText).c_str(), path("link").c_str()), 0);
  EXPECT_TRUE(std::holds_alternative<PropertyList>(readPropertyListFile(path("link"))));
}

TEST_F(PropertyListFile, FileNameMayContainAnyCharacter) {
  EXPECT_EQ(readPropertyListFile(write("\xC3\xA9 %s\n.plist", "a")), Result(text("a")));
}

TEST_F(PropertyListFile, ReadsFileOfReportedSizeZero) {
  struct stat status {};
  ASSERT_EQ(::stat("/proc/self/comm", &status), 0);
  ASSERT_EQ(status.st_size, 0);
  const Result result = readPropertyListFile("/proc/self/comm");
  ASSERT_TRUE(std::holds_alternative<PropertyList>(result));
  EXPECT_NE(std::get<PropertyList>(result).as<std::string>(), nullptr);
}

TEST_F(PropertyListFile, InvalidPathIsBadPath) {
  const std::string real = write("settings.plist", settingsText);
  EXPECT_EQ(readPropertyListFile(""), Result(PropertyListError::BadPath));
  EXPECT_EQ(readPropertyListFile(real + std::string(1, '\0')), Result(PropertyListError::BadPath));
  EXPECT_EQ(readPropertyListFile(write("\xE9.plist", settingsText)), Result(PropertyListError::BadPath));
}

TEST_F(PropertyListFile, ReadsPathOfMaximumLength) {
  std::string name = path("");
  while (name.size() + 2 + 8 <= PATH_MAX) name += "./";
  name.resize(PATH_MAX - 2, '/');
  write("a", settingsText);
  name += "a";
  ASSERT_EQ(name.size(), std::size_t{PATH_MAX - 1});
  EXPECT_TRUE(std::holds_alternative<PropertyList>(readPropertyListFile(name)));
}

TEST_F(PropertyListFile, PathBeyondMaximumLengthIsBadPath) {
  EXPECT_EQ(readPropertyListFile("/" + std::string(PATH_MAX - 1, 'a')), Result(PropertyListError::BadPath));
  EXPECT_EQ(readPropertyListFile("/" + std::string(100'000, 'a')), Result(PropertyListError::BadPath));
}

TEST_F(PropertyListFile, FolderIsNoStream) {
  std::filesystem::create_directory(path("folder"));
  ASSERT_EQ(::symlink(path("folder").c_str(), path("link").c_str()), 0);
  EXPECT_EQ(readPropertyListFile(path("folder")), Result(PropertyListError::NoStream));
  EXPECT_EQ(readPropertyListFile(path("folder/")), Result(PropertyListError::NoStream));
  EXPECT_EQ(readPropertyListFile(path("link")), Result(PropertyListError::NoStream));
}

TEST_F(PropertyListFile, PipeIsNoStreamAndDoesNotBlock) {
  ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0666), 0);
  EXPECT_EQ(readPropertyListFile(path("pipe")), Result(PropertyListError::NoStream));
}

TEST_F(PropertyListFile, PipeIsNotRead) {
  ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0666), 0);
  const int pipe = ::open(path("pipe").c_str(), O_RDWR | O_CLOEXEC);
  ASSERT_EQ(::write(pipe, "a", 1), 1);
  EXPECT_EQ(readPropertyListFile(path("pipe")), Result(PropertyListError::NoStream));
  char content = 0;
  EXPECT_EQ(::read(pipe, &content, 1), 1);
  ::close(pipe);
}

TEST_F(PropertyListFile, DeviceIsNoStream) {
  EXPECT_EQ(readPropertyListFile("/dev/null"), Result(PropertyListError::NoStream));
  EXPECT_EQ(readPropertyListFile("/dev/zero"), Result(PropertyListError::NoStream));
}

TEST_F(PropertyListFile, SocketIsNoStream) {
  const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path("socket").copy(address.sun_path, sizeof address.sun_path - 1);
  ASSERT_EQ(::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  EXPECT_EQ(readPropertyListFile(path("socket")), Result(PropertyListError::NoStream));
  ::close(socket);
}

TEST_F(PropertyListFile, MissingFileIsOpenFailed) {
  const std::string real = write("settings.plist", settingsText);
  ASSERT_EQ(::symlink(path("nothing").c_str(), path("link").c_str()), 0);
  ASSERT_EQ(::symlink(path("loop").c_str(), path("loop").c_str()), 0);
  for (const std::string& missing :
       {path("nothing"), path("nothing/settings.plist"), path("link"), path("loop"), real + "/",
        real + "/settings.plist", path(std::string(300, 'a'))}) {
    EXPECT_EQ(readPropertyListFile(missing), Result(PropertyListError::OpenFailed)) << missing;
  }
}

TEST_F(PropertyListFile, FileWithoutReadPermissionIsOpenFailed) {
  const std::string secret = write("settings.plist", settingsText);
  ASSERT_EQ(::chmod(secret.c_str(), 0), 0);
  const int outcome = asOrdinaryUser([&] {
    const bool refused = ::open(secret.c_str(), O_RDONLY | O_CLOEXEC) == -1 && errno == EACCES;
    return refused && readPropertyListFile(secret) == Result(PropertyListError::OpenFailed);
  });
  if (outcome == 2) GTEST_SKIP() << "cannot change to another user";
  EXPECT_EQ(outcome, 0);
}

TEST_F(PropertyListFile, FileInFolderWithoutSearchPermissionIsOpenFailed) {
  std::filesystem::create_directory(path("closed"));
  const std::string hidden = write("closed/settings.plist", settingsText);
  ASSERT_EQ(::chmod(path("closed").c_str(), 0600), 0);
  const int outcome = asOrdinaryUser([&] {
    const bool refused = ::access(hidden.c_str(), F_OK) == -1 && errno == EACCES;
    return refused && readPropertyListFile(hidden) == Result(PropertyListError::OpenFailed) &&
           readPropertyListFile(path("closed")) == Result(PropertyListError::NoStream);
  });
  if (outcome == 2) GTEST_SKIP() << "cannot change to another user";
  EXPECT_EQ(outcome, 0);
}

TEST_F(PropertyListFile, OtherContentIsUnreadable) {
  EXPECT_EQ(readPropertyListFile(write("empty", "")), Result(PropertyListError::Unreadable));
  EXPECT_EQ(readPropertyListFile(write("half", settings.substr(0, 40))),
            Result(PropertyListError::Unreadable));
  EXPECT_EQ(readPropertyListFile(write("page", "<html></html>")), Result(PropertyListError::Unreadable));
}

TEST_F(PropertyListFile, ReadsFileOfMaximumSize) {
  const std::string list = filled(settingsText, "\n", "");
  ASSERT_EQ(list.size(), platform::propertyListMaxBytes);
  EXPECT_TRUE(std::holds_alternative<PropertyList>(readPropertyListFile(write("large", list))));
}

TEST_F(PropertyListFile, FileBeyondMaximumSizeIsUnreadable) {
  EXPECT_EQ(readPropertyListFile(write("larger", filled(settingsText, "\n", "") + "\n")),
            Result(PropertyListError::Unreadable));
  const std::string huge = write("huge", settingsText);
  ASSERT_EQ(::truncate(huge.c_str(), off_t{1} << 40), 0);
  EXPECT_EQ(readPropertyListFile(huge), Result(PropertyListError::Unreadable));
}

}  // namespace
