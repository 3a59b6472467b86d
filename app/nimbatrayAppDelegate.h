#pragma once

#include <atomic>
#include <cstdint>
#include <ctime>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "notices/clickable_image_view.h"
#include "platform/application.h"

namespace platform {
class Button;
class FileEventStream;
class Image;
class Menu;
class PropertyList;
class StatusItem;
class TextView;
class Timer;
class View;
class WebView;
class Window;
}  // namespace platform

class NoticeCalls;
enum class NotificationAction;
struct ShownNotices;

// The one object that carries the agent: the methods of its subsystems, each defined in the folder it is
// listed under, and all long-lived state, in its fields. The fields are open to those methods and to tests;
// no other code has hold of the object. Main thread only, but for what is atomic, and for the methods marked
// "any thread".
class nimbatrayAppDelegate final : public platform::ApplicationDelegate, private tovalinNSImageViewDelegate {
 public:
  // A reference that anyone may set and read at any time and that keeps nothing alive: the atomic is getter
  // and setter.
  template <typename T>
  using NonOwningProperty = std::atomic<T*>;

  nimbatrayAppDelegate();
  ~nimbatrayAppDelegate() override;

  // app/launch.cpp
  void awakeFromNib() override;
  void applicationDidFinishLaunching() override;
  void applicationShouldHandleReopen() override;

  // app/status_menu.cpp
  void buildStatusItem();
  void themeChange();
  void togleswitch();
  void quit();
  void applicationWillTerminate() override;

  // app/beacon_methods.cpp
  void notificateGA(const std::string& category, const std::string& value);

  // app/links.cpp
  void secondsection_sub1();
  void secondsection_sub2();
  void secondsection_sub3();
  void thirdsection_sub1();
  void thirdsection_sub2();

  // support/support_window.cpp
  void support();
  void supportWindowWillClose();
  void faqBtnClick();
  void setHyperlinkWithTextView(platform::TextView& view, const std::string& linkurl,
                                const std::string& linkString);

  // support/server_notice.cpp; the fetches return 1 when there is something to show, else 0
  int getServerNotice();
  int getBannerList();
  int getBannerImg();
  void myImageView(tovalinNSImageView& view, const platform::MouseEvent& mouseUp) override;

  // support/log_collection.cpp; 1000 is an alert's first button, 1001 its second
  void logBtnClick();
  void alertDidEnd(int returnCode);
  void collectLog();
  void completeAlertDidEnd(int returnCode);

  // support/version_check.cpp
  int getRecentVersion();  // 1 when a version was fetched, else 0
  void versionCheck();
  void updateBtnClick();

  // ipc/notification_listener.cpp; on a thread of its own
  void notiThread();

  // usage/usage_upload.cpp
  void TvlDataFileUploadThread();  // on a thread of its own
  void TvlCheckDataUpload();
  bool TvlDataFileCheck();                               // one pass, true at its end; any thread
  bool sendPostRequest(std::span<const char> contents);  // true when the server took it; any thread

  // notices/notice_methods.cpp
  void notificationOn();
  void notificationOff();
  void noticeEnumerateOn();
  void noticeEnumerateOff();

  NonOwningProperty<platform::Window> window = nullptr;
  NonOwningProperty<platform::Window> supportWindow = nullptr;
  std::shared_ptr<platform::Button> logButton;
  std::shared_ptr<platform::Button> updateButton;
  std::unique_ptr<platform::StatusItem> statusItem;
  platform::Menu* menu = nullptr;  // the status item's, once it is handed over
  std::shared_ptr<platform::FileEventStream> stream;
  bool bsupportWindow = false;
  std::shared_ptr<platform::Image> statusOnImg;
  std::shared_ptr<platform::Image> statusOnImg_Reverse;
  std::shared_ptr<platform::Image> statusOffImg;
  std::shared_ptr<platform::Image> statusOffImg_Reverse;
  std::optional<std::string> currentVersion;
  std::optional<std::string> recentVersion;
  bool bUpdateEnabled = false;
  std::optional<std::string> bannerLink;
  std::shared_ptr<tovalinNSImageView> bannerImgView;
  std::shared_ptr<platform::Image> bannerImg;
  std::shared_ptr<const platform::PropertyList> serverNotice;
  std::shared_ptr<const platform::PropertyList> bannerList;
  NonOwningProperty<platform::WebView> gaWebView = nullptr;  // the last menu item's
  std::atomic<bool> bThreadRun = false;                      // cleared here, read by the pipe's listener
  bool isDarkModeOn = false;
  std::uint32_t bActive = 0;  // automount: 1 on, 0 off
  std::shared_ptr<platform::Window> notiWindow;
  std::shared_ptr<platform::Window> notiEnumWindow;
  std::atomic<bool> bTvlDataUpload = false;  // an upload pass is due
  std::shared_ptr<platform::Timer> tvlDataTimer;
  std::tm strStartTime = {};       // local time
  std::int32_t dataUploadURL = 0;  // the server option: 1 product server, 0 test upload server

 private:
  // app/launch.cpp
  void readAppearance();
  void readBundlePath();
  void unloadUnlessAutorun();
  void readAutomountState();
  void readVersion();
  void showUpdateNotice();
  void sendLaunchBeacons();

  // app/status_menu.cpp
  void addMenuItems();
  void showStatusIcon();
  void setAutomount(std::uint32_t active);

  // support/version_check.cpp
  void checkForUpdate();

  // support/support_window.cpp
  void refreshVersionAndBanners();
  std::shared_ptr<platform::Window> makeSupportWindow();
  std::shared_ptr<platform::View> makeHeaderPanel();
  std::shared_ptr<platform::Button> makeButtons();  // gives the one that no field keeps
  std::shared_ptr<platform::View> makeNoticePanel(platform::Button& faqButton);
  std::shared_ptr<platform::View> makeBannerBand();

  // ipc/notification_listener.cpp; on the listener's thread, but for runNoticeCall
  void listen(int pipe);
  void dispatch(std::span<const char> buffer, ShownNotices& shown, NoticeCalls& calls);
  void runNoticeCall(NotificationAction call);
};

static_assert(std::atomic<bool>::is_always_lock_free && sizeof(std::atomic<bool>) == 1);
