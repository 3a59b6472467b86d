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

// The application delegate. Its methods are grouped by the file that defines them. Its fields hold all
// long-lived state; they are public for these methods and for tests, and no other code uses them. Main thread
// only, except for atomic fields and for methods marked "thread-safe" or with a thread of their own.
class nimbatrayAppDelegate final : public platform::ApplicationDelegate, private tovalinNSImageViewDelegate {
 public:
  // A non-owning pointer that any thread may read and set.
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

  // support/server_notice.cpp; each returns 1 if there is something to show, else 0
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
  int getRecentVersion();  // returns 1 if a version was fetched, else 0
  void versionCheck();
  void updateBtnClick();

  // ipc/notification_listener.cpp; runs on its own thread
  void notiThread();

  // usage/usage_upload.cpp
  void TvlDataFileUploadThread();  // runs on its own thread
  void TvlCheckDataUpload();
  bool TvlDataFileCheck();  // one upload pass, returns true at its end; thread-safe
  bool sendPostRequest(std::span<const char> contents);  // true if the server received it; thread-safe

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
  platform::Menu* menu = nullptr;  // owned by the status item after the hand-over
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
  NonOwningProperty<platform::WebView> gaWebView = nullptr;  // owned by the last menu item
  std::atomic<bool> bThreadRun = false;  // cleared on the main thread, read by the listener
  bool isDarkModeOn = false;
  std::uint32_t bActive = 0;  // automount: 1 on, 0 off
  std::shared_ptr<platform::Window> notiWindow;
  std::shared_ptr<platform::Window> notiEnumWindow;
  std::atomic<bool> bTvlDataUpload = false;  // an upload pass is pending
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
  std::shared_ptr<platform::Button> makeButtons();  // returns the FAQ button, which has no field
  std::shared_ptr<platform::View> makeNoticePanel(platform::Button& faqButton);
  std::shared_ptr<platform::View> makeBannerBand();

  // ipc/notification_listener.cpp; on the listener's thread, except runNoticeCall
  void listen(int pipe);
  void dispatch(std::span<const char> buffer, ShownNotices& shown, NoticeCalls& calls);
  void runNoticeCall(NotificationAction call);
};

static_assert(std::atomic<bool>::is_always_lock_free && sizeof(std::atomic<bool>) == 1);
