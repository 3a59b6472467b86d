#include <gmock/gmock.h>

#include <filesystem>

#include <QDBusConnection>
#include <QDBusVirtualObject>
#include <QImage>
#include <QUrl>

#include "platform/linux/processes/private_folder.h"
#include "tests/harness/desktop/x_connection.h"
#include "tests/platform/linux/tray/tray_bus_fixture.h"

namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

constexpr const char* serverName = "org.freedesktop.Notifications";
constexpr const char* serverPath = "/org/freedesktop/Notifications";

// A fake notification server.
class NotificationServer : public QDBusVirtualObject {
 public:
  explicit NotificationServer(QDBusConnection bus) : bus_(std::move(bus)) {
    EXPECT_TRUE(bus_.registerVirtualObject(serverPath, this));
    EXPECT_TRUE(bus_.registerService(serverName));
  }
  ~NotificationServer() override {
    bus_.unregisterService(serverName);
    bus_.unregisterObject(serverPath);
  }
  NotificationServer(const NotificationServer&) = delete;
  NotificationServer& operator=(const NotificationServer&) = delete;

  [[nodiscard]] const QList<QDBusMessage>& shown() const { return shown_; }
  void refuse(bool refuses) { refuses_ = refuses; }

 private:
  QString introspect(const QString&) const override { return {}; }
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
    if (message.member() != "Notify") return false;
    shown_.append(message);
    return connection.send(refuses_ ? message.createErrorReply("org.example.Error.Full", "Too many")
                                    : message.createReply(1U));
  }

  QDBusConnection bus_;
  QList<QDBusMessage> shown_;
  bool refuses_ = false;
};

// A fake lock screen of GNOME, locked until `unlock`.
class LockScreen : public QDBusVirtualObject {
 public:
  explicit LockScreen(QDBusConnection bus) : bus_(std::move(bus)) {
    EXPECT_TRUE(bus_.registerVirtualObject("/org/gnome/ScreenSaver", this));
    EXPECT_TRUE(bus_.registerService("org.gnome.ScreenSaver"));
  }
  ~LockScreen() override {
    bus_.unregisterService("org.gnome.ScreenSaver");
    bus_.unregisterObject("/org/gnome/ScreenSaver");
  }
  LockScreen(const LockScreen&) = delete;
  LockScreen& operator=(const LockScreen&) = delete;

  [[nodiscard]] int questions() const { return questions_; }
  void unlock() { locked_ = false; }

 private:
  QString introspect(const QString&) const override { return {}; }
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
    if (message.member() != "GetActive") return false;
    ++questions_;
    return connection.send(message.createReply(locked_));
  }

  QDBusConnection bus_;
  bool locked_ = true;
  int questions_ = 0;
};

// A tray on the X screen that shows no icons. It ends with this object.
class ScreenTray {
 public:
  ScreenTray() {
    const xcb_window_t window = xcb_generate_id(x_.get());
    xcb_create_window(x_.get(), XCB_COPY_FROM_PARENT, window, x_.root(), 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_set_selection_owner(x_.get(), window, selection(), XCB_CURRENT_TIME);
    x_.synchronize();
  }

 private:
  xcb_atom_t selection() {
    constexpr std::string_view name = "_NET_SYSTEM_TRAY_S0";
    const auto cookie = xcb_intern_atom(x_.get(), 0, name.size(), name.data());
    const test_support::XcbReply<xcb_intern_atom_reply_t> reply(
        xcb_intern_atom_reply(x_.get(), cookie, nullptr));
    return reply->atom;
  }

  test_support::XConnection x_{qEnvironmentVariable("DISPLAY").toStdString()};
};

class HiddenIcon : public TrayBusTest {
 protected:
  void SetUp() override { fs::remove_all(platform::privateFolderPath()); }

  // Simulates a start of the program, which waits this long for a panel.
  void start(std::chrono::milliseconds patience = 1ms) {
    item_.reset();
    makeItem();
    item_->notifyIfHidden(patience, "It runs", "But <hidden> & alone");
  }
  [[nodiscard]] bool isShown(qsizetype times) {
    return serveEventsUntil([&] { return server_.shown().size() == times; });
  }
  // Waits long enough for a notification: a start queries the watcher, then its timer expires.
  void serveAWhile() {
    static_cast<void>(serveEventsUntil([] { return false; }, 300ms));
  }

  NotificationServer server_{host_.bus()};
};

TEST_F(HiddenIcon, IsReportedInNotification) {
  start();
  ASSERT_TRUE(isShown(1));
  const QDBusMessage& shown = server_.shown()[0];
  EXPECT_EQ(shown.signature(), "susssasa{sv}i");
  const QUrl icon(shown.arguments()[2].toString());
  EXPECT_FALSE(QImage(icon.toLocalFile()).isNull()) << icon.toString().toStdString();
  EXPECT_EQ(shown.arguments()[3], "It runs");
  EXPECT_EQ(shown.arguments()[4], "But <hidden> & alone");
}

TEST_F(HiddenIcon, IsReportedOncePerSession) {
  start();
  ASSERT_TRUE(isShown(1));
  start();
  serveAWhile();
  EXPECT_EQ(server_.shown().size(), 1);
  // Another session has a new private folder.
  fs::remove_all(platform::privateFolderPath());
  start();
  EXPECT_TRUE(isShown(2));
}

TEST_F(HiddenIcon, IsReportedAgainIfServerRefused) {
  server_.refuse(true);
  start();
  ASSERT_TRUE(isShown(1));
  ASSERT_TRUE(serveEventsUntil([] { return fs::is_empty(platform::privateFolderPath()); }));
  server_.refuse(false);
  start();
  EXPECT_TRUE(isShown(2));
}

TEST_F(HiddenIcon, IsNotReportedWhilePanelShowsIt) {
  ASSERT_NO_FATAL_FAILURE(startWatcher());
  start(200ms);
  ASSERT_TRUE(waitForItems(1));
  serveAWhile();
  EXPECT_TRUE(server_.shown().isEmpty());
}

// The panel appears before the timeout.
TEST_F(HiddenIcon, IsNotReportedIfPanelAppearsBeforeTimeout) {
  start(500ms);
  ASSERT_NO_FATAL_FAILURE(startWatcher());
  ASSERT_TRUE(waitForItems(1));
  static_cast<void>(serveEventsUntil([] { return false; }, 700ms));
  EXPECT_TRUE(server_.shown().isEmpty());
}

TEST_F(HiddenIcon, IsReportedIfPanelEndsLater) {
  ASSERT_NO_FATAL_FAILURE(startWatcher());
  start(200ms);
  ASSERT_TRUE(waitForItems(1));
  serveAWhile();
  ASSERT_TRUE(server_.shown().isEmpty());
  stopWatcher();
  EXPECT_TRUE(isShown(1));
}

TEST_F(HiddenIcon, IsNotReportedIfPanelRestartsInTime) {
  ASSERT_NO_FATAL_FAILURE(startWatcher());
  start(500ms);
  ASSERT_TRUE(waitForItems(1));
  stopWatcher();
  ASSERT_NO_FATAL_FAILURE(startWatcher());
  ASSERT_TRUE(waitForItems(1));
  static_cast<void>(serveEventsUntil([] { return false; }, 700ms));
  EXPECT_TRUE(server_.shown().isEmpty());
}

TEST_F(HiddenIcon, IsNotReportedWhileSessionIsLocked) {
  LockScreen lock(host_.bus());
  start();
  ASSERT_TRUE(serveEventsUntil([&] { return lock.questions() >= 2; }));
  EXPECT_TRUE(server_.shown().isEmpty());
  lock.unlock();
  EXPECT_TRUE(isShown(1));
}

TEST_F(HiddenIcon, IsReportedIfTrayOnScreenEndsLater) {
  auto tray = std::make_unique<ScreenTray>();
  start(200ms);
  serveAWhile();
  ASSERT_TRUE(server_.shown().isEmpty());
  tray.reset();
  EXPECT_TRUE(isShown(1));
}

TEST_F(HiddenIcon, IsNotReportedAfterDestructionOfItem) {
  start(100ms);
  item_.reset();
  serveAWhile();
  EXPECT_TRUE(server_.shown().isEmpty());
}

}  // namespace
