// Tests what a page could reach from inside the processes of the web engine.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <netinet/in.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstddef>
#include <filesystem>

#include "tests/harness/processes/file_contents.h"
#include "tests/harness/processes/file_descriptor.h"
#include "tests/harness/processes/forked_call.h"
#include "tests/harness/processes/syslog_socket.h"
#include "tests/platform/linux/helpers/web_view_helper.h"

namespace web_view_test {
namespace {

namespace fs = std::filesystem;
using test_support::ExitStatus;
using test_support::FileDescriptor;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

std::string below(pid_t process, const std::string& file) {
  return "/proc/" + std::to_string(process) + "/" + file;
}

std::string namespaceOf(pid_t process, const std::string& kind) {
  return fs::read_symlink(below(process, "ns/" + kind));
}

// `name` is a path, or an abstract address if it begins with NUL.
bool connectsTo(const std::string& name) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  name.copy(address.sun_path, sizeof address.sun_path - 1);
  const auto size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + name.size());
  const FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  return ::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), size) == 0;
}

bool isListenedAt(int port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  const FileDescriptor socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  return ::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

bool join(pid_t process, const std::string& kind) {
  if (namespaceOf(process, kind) == namespaceOf(::getpid(), kind)) return true;
  const FileDescriptor handle(::open(below(process, "ns/" + kind).c_str(), O_RDONLY | O_CLOEXEC));
  return ::setns(handle.get(), 0) == 0;
}

[[nodiscard]] pid_t webProcess() {
  const auto found = processesNamed("WebKitWebProces");
  EXPECT_THAT(found, SizeIs(1));
  return found.empty() ? -1 : found.front();
}

class WebViewSandbox : public WebViewHelper {
 protected:
  [[nodiscard]] static std::vector<std::string> socketsOfX() {
    const std::string path = "/tmp/.X11-unix/X" + display_->name().substr(1);
    return {path, '\0' + path};
  }
  // Returns the number of X sockets that a process in the namespaces of `process` can connect to, 100 if it
  // cannot join them, or -1 on failure.
  [[nodiscard]] static int reachableFrom(pid_t process) {
    test_support::ForkedCall call([process] {
      for (const char* kind : {"user", "net", "mnt"}) {
        if (!join(process, kind)) return 100;
      }
      int reached = 0;
      for (const std::string& name : socketsOfX()) reached += connectsTo(name) ? 1 : 0;
      return reached;
    });
    const auto finished = call.wait();
    return finished.status && finished.status->code ? *finished.status->code : -1;
  }
};

TEST_F(WebViewSandbox, WebProcessCannotConnectToX) {
  ASSERT_EQ(reachableFrom(::getpid()), 2);
  startWithScript("");
  EXPECT_EQ(reachableFrom(webProcess()), 0);
}

TEST_F(WebViewSandbox, EngineGetsNoSessionServicesInEnvironment) {
  startWith({{"XAUTHORITY", "/tmp/key"},
             {"WAYLAND_DISPLAY", "/tmp/wayland-9"},
             {"AT_SPI_BUS_ADDRESS", "unix:path=/tmp/at-spi"},
             {"DBUS_SESSION_BUS_ADDRESS", "unix:path=/tmp/bus"},
             {"DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/tmp/bus"},
             {"SESSION_MANAGER", "local/unix:/tmp/session"},
             {"SSH_AUTH_SOCK", "/tmp/agent"},
             {"SECRET", "/tmp/secret"},
             {"LC_ALL", "C.UTF-8"}});
  ASSERT_TRUE(stillLoads());
  for (const std::string name : {"WebKitWebProces", "WebKitNetworkPr"}) {
    const auto found = processesNamed(name);
    ASSERT_THAT(found, SizeIs(1));
    const std::string environment = '\0' + test_support::contentsOf(below(found.front(), "environ"));
    for (const std::string forbidden : {"DISPLAY=", "XAUTHORITY=", "AT_SPI_BUS_ADDRESS=", "SESSION_MANAGER=",
                                        "SSH_AUTH_SOCK=", "SECRET="}) {
      EXPECT_THAT(environment, Not(HasSubstr('\0' + forbidden))) << name;
    }
    EXPECT_THAT(environment, Not(HasSubstr("/tmp/bus"))) << name;
    EXPECT_THAT(environment, Not(HasSubstr("/tmp/wayland-9"))) << name;
    EXPECT_THAT(environment, HasSubstr(std::string("\0LC_ALL=C.UTF-8", 15))) << name;
  }
}

TEST_F(WebViewSandbox, EnvironmentCannotDisableSandbox) {
  startWith({{"WEBKIT_DISABLE_SANDBOX_THIS_IS_DANGEROUS", "1"},
             {"WEBKIT_FORCE_SANDBOX", "0"},
             {"WEBKIT_INSPECTOR_SERVER", "127.0.0.1:9222"},
             {"WEBKIT_INSPECTOR_HTTP_SERVER", "127.0.0.1:9223"},
             {"GTK_MODULES", "/tmp/none.so"},
             {"GIO_EXTRA_MODULES", "/tmp"},
             {"TMPDIR", "/tmp/none"},
             {"HOME", std::nullopt}});
  ASSERT_TRUE(stillLoads());
  EXPECT_NE(namespaceOf(webProcess(), "net"), namespaceOf(helper_.pid(), "net"));
  for (const int port : {9222, 9223}) EXPECT_FALSE(isListenedAt(port)) << port;
}

TEST_F(WebViewSandbox, PageIsLoadedWithoutDisplay) {
  startWith({{"DISPLAY", std::nullopt}});
  EXPECT_TRUE(stillLoads());
}

// Other sockets could be reached through the network and mount namespaces.
TEST_F(WebViewSandbox, WebProcessHasOwnNetworkAndMountNamespaces) {
  startWithScript("");
  const pid_t process = webProcess();
  EXPECT_NE(namespaceOf(process, "net"), namespaceOf(helper_.pid(), "net"));
  EXPECT_NE(namespaceOf(process, "mnt"), namespaceOf(helper_.pid(), "mnt"));
  EXPECT_NE(namespaceOf(process, "ipc"), namespaceOf(helper_.pid(), "ipc"));
}

TEST_F(WebViewSandbox, WithoutSandboxNoPageIsLoadedAndErrorIsLogged) {
  test_support::SyslogSocket log;
  ASSERT_TRUE(log.valid());
  ASSERT_EQ(::mount("/dev/null", "/usr/bin/bwrap", nullptr, MS_BIND, nullptr), 0);
  startWith({});
  EXPECT_TRUE(helper_.writeLine(server_.address("/page")));
  EXPECT_EQ(helper_.wait(), ExitStatus{.code = 1});
  EXPECT_EQ(::umount2("/usr/bin/bwrap", MNT_DETACH), 0);
  EXPECT_TRUE(log.waitFor([](const test_support::SyslogMessage& message) {
    return message.text.find("no page is loaded: the web engine's sandbox is not available") !=
           std::string::npos;
  }));
  EXPECT_THAT(server_.asked(), IsEmpty());
  EXPECT_THAT(webProcesses(), IsEmpty());
}

// Tests the replacement for an unusable XDG_RUNTIME_DIR.
class WebViewRuntimeFolder : public WebViewHelper {
 protected:
  void SetUp() override {
    fs::remove_all(kOthers);
    fs::remove_all(belowTmp_);
    ASSERT_TRUE(fs::create_directories(planted_));
  }
  void TearDown() override {
    WebViewHelper::TearDown();
    fs::remove_all(kOthers);
    fs::remove_all(belowTmp_);
  }
  void expectPrivateFolderIsUsed() {
    EXPECT_TRUE(stillLoads());
    EXPECT_NE(namespaceOf(webProcess(), "pid"), namespaceOf(helper_.pid(), "pid"));
    EXPECT_THAT(filesBelow(belowTmp_), testing::Contains(HasSubstr("/TovalinWebView.")));
    EXPECT_THAT(filesBelow(kOthers), testing::ElementsAre(planted_));
  }

  static constexpr const char* kOthers = "/tmp/others runtime";
  const std::string planted_ = std::string(kOthers) + "/TovalinWebView.planted";
  const std::string belowTmp_ = "/tmp/TovalinTray-" + std::to_string(::geteuid());
};

TEST_F(WebViewRuntimeFolder, MissingFolderIsReplacedByPrivateFolder) {
  startWith({{"XDG_RUNTIME_DIR", std::nullopt}});
  expectPrivateFolderIsUsed();
}

TEST_F(WebViewRuntimeFolder, FolderOfAnotherUserIsNeitherUsedNorCleaned) {
  ASSERT_EQ(::chown(kOthers, 1234, 1234), 0);
  startWith({{"XDG_RUNTIME_DIR", kOthers}});
  expectPrivateFolderIsUsed();
}

TEST_F(WebViewRuntimeFolder, WorldWritableFolderIsNeitherUsedNorCleaned) {
  ASSERT_EQ(::chmod(kOthers, 0777), 0);
  startWith({{"XDG_RUNTIME_DIR", kOthers}});
  expectPrivateFolderIsUsed();
}

TEST_F(WebViewRuntimeFolder, WithoutPrivateFolderNoPageIsLoaded) {
  fs::create_symlink(kOthers, belowTmp_);
  startWith({{"XDG_RUNTIME_DIR", std::nullopt}});
  EXPECT_EQ(helper_.wait(), ExitStatus{.code = 1});
  EXPECT_THAT(helper_.takeErrorOutput(), HasSubstr("no page is loaded: cannot create the private folder"));
  EXPECT_THAT(filesBelow(kOthers), testing::ElementsAre(planted_));
}

}  // namespace
}  // namespace web_view_test
