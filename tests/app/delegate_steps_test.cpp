#include <gmock/gmock.h>

#include <filesystem>

#include "app/globals.h"
#include "app/nimbatrayAppDelegate.h"
#include "platform/application.h"
#include "platform/button.h"
#include "platform/file_event_stream.h"
#include "platform/image.h"
#include "platform/linux/application/application_impl.h"
#include "platform/property_list.h"
#include "platform/status_item.h"
#include "platform/timer.h"
#include "platform/web_view.h"
#include "platform/window.h"
#include "tests/app/outside_parts.h"
#include "tests/harness/processes/forked_call.h"

namespace {

using outside_parts::steps;
using platform::Application;
using testing::ElementsAre;

constexpr const char* versionRequest =
    "GET /product/nimba/binary/tovalin_recent_version_info.xml within 3000 ms, no cache";
constexpr const char* noticeRequest = "GET /product/nimba/binary/tovalinnotice.xml within 3000 ms, no cache";
constexpr const char* bannersRequest = "GET /product/nimba/banner/tovalinbanner.xml within 3000 ms, no cache";
constexpr const char* pictureRequest = "GET /product/nimba/banner/a.ppm within 3000 ms, no cache";
constexpr const char* killRun = "run killall tovalinnotification";
constexpr const char* unloadRun =
    "run launchctl unload -F /Library/LaunchAgents/com.kesmoor.tovalintrayagent.plist";

std::string list(const std::string& content) {
  return "<plist version=\"1.0\">" + content + "</plist>";
}
std::string entry(const std::string& first, const std::string& second) {
  return "<dict><key>" + first + "</key><string>a.ppm</string><key>" + second +
         "</key><string>http://one.example/</string></dict>";
}

// The delegate with the fakes of outside_parts.h and a real desktop.
class DelegateSteps : public testing::Test {
 protected:
  void SetUp() override {
    outside_parts::reset();
    std::filesystem::remove_all("/tmp/home/.local");
    isNetworkOnline = true;
  }
  void TearDown() override { outside_parts::reset(); }

  static void answerAll() {
    outside_parts::reply("/product/nimba/binary/tovalin_recent_version_info.xml",
                         list("<dict><key>version</key><string>9.0.0</string></dict>"));
    outside_parts::reply("/product/nimba/banner/tovalinbanner.xml",
                         list("<array>" + entry("file_name", "link") + "</array>"));
    outside_parts::reply("/product/nimba/banner/a.ppm", "P6\n1 1\n255\nabc");
    outside_parts::reply("/product/nimba/binary/tovalinnotice.xml",
                         list("<dict><key>notice_1</key>" + entry("subject", "link") + "<key>notice_2</key>" +
                              entry("subject", "link") + "</dict>"));
  }

  nimbatrayAppDelegate delegate_;
};

// The first "clock" belongs to the start record, the second to the start time.
TEST_F(DelegateSteps, LaunchRunsStepsInOrder) {
  outside_parts::lookAtEachStep([this] { return delegate_.bThreadRun ? ", listening" : ""; });
  delegate_.applicationDidFinishLaunching();
  EXPECT_THAT(steps(), ElementsAre(versionRequest, "pipe -ton", "watch for 500 ms", "watch started",
                                   "beacon applaunch start", "beacon applaunch version(null)",
                                   "clock, listening", "thread, listening", "clock, listening",
                                   "timer every 60000 ms, listening", "thread, listening"));
}

TEST_F(DelegateSteps, LaunchStoresTimeSoThatTicksOfSameDayMakeNoPass) {
  delegate_.applicationDidFinishLaunching();
  EXPECT_EQ(delegate_.strStartTime.tm_year, 124);
  EXPECT_EQ(delegate_.strStartTime.tm_mday, 6);
  EXPECT_EQ(delegate_.strStartTime.tm_sec, 30);
  outside_parts::tick();
  EXPECT_FALSE(delegate_.bTvlDataUpload);
}

TEST_F(DelegateSteps, TickUpdatesTimeZoneBeforeReadingClock) {
  delegate_.applicationDidFinishLaunching();
  outside_parts::reset();
  delegate_.TvlCheckDataUpload();
  EXPECT_THAT(steps(), ElementsAre("time zone", "clock"));
}

TEST_F(DelegateSteps, UploadTimeoutIsOneMinute) {
  static_cast<void>(delegate_.sendPostRequest({}));
  EXPECT_THAT(steps(), ElementsAre("POST /product/nimba/userlog/postdata.php within 60000 ms"));
}

TEST_F(DelegateSteps, QuitRunsStepsInOrder) {
  platform::WebView view({});
  delegate_.gaWebView = &view;
  delegate_.bThreadRun = true;
  delegate_.bannerList = std::make_shared<const platform::PropertyList>();
  delegate_.tvlDataTimer = platform::Timer::scheduledTimer(std::chrono::seconds(60), [] {});
  Application::sharedApplication().impl().delegate = &delegate_;
  outside_parts::reset();
  const auto finished = test_support::runForked([this] {
    outside_parts::lookAtEachStep([this] {
      return std::string(delegate_.bThreadRun ? ", listening" : "") +
             (delegate_.bannerList != nullptr ? ", banners" : "");
    });
    delegate_.quit();
    return 1;
  });
  Application::sharedApplication().impl().delegate = nullptr;
  EXPECT_EQ(finished.status, test_support::ExitStatus{.code = 0});
  const std::string listening = ", listening, banners";
  EXPECT_THAT(steps(), ElementsAre(killRun + listening, "clock" + listening, "timer stopped" + listening,
                                   "beacon clickaction quit, banners", "pipe -toff, banners", unloadRun,
                                   killRun, "clock", "timer stopped"));
}

TEST_F(DelegateSteps, TerminationReleasesTimerWatchImagesAndIcon) {
  delegate_.applicationDidFinishLaunching();
  ASSERT_NE(delegate_.stream, nullptr);
  const std::vector<std::weak_ptr<platform::Image>> images = {
      delegate_.statusOnImg, delegate_.statusOnImg_Reverse, delegate_.statusOffImg,
      delegate_.statusOffImg_Reverse};
  for (const auto& image : images) ASSERT_FALSE(image.expired());
  outside_parts::reset();
  delegate_.applicationWillTerminate();
  EXPECT_THAT(steps(), ElementsAre(killRun, "clock", "timer stopped", "watch stopped"));
  EXPECT_EQ(delegate_.stream, nullptr);
  EXPECT_EQ(delegate_.statusItem, nullptr);
  for (const auto& image : images) EXPECT_TRUE(image.expired());
}

TEST_F(DelegateSteps, SupportFetchesVersionBannersNoticeAndPictureWithThreeSecondTimeouts) {
  answerAll();
  platform::WebView view({});
  delegate_.gaWebView = &view;
  Application::sharedApplication().performOnMainThread([this] { delegate_.supportWindow.load()->close(); });
  delegate_.support();
  EXPECT_THAT(steps(), ElementsAre("beacon clickaction support", versionRequest, bannersRequest,
                                   noticeRequest, pictureRequest));
}

TEST_F(DelegateSteps, SupportWindowFieldsAreSetWhileOpenAndClearedOnClose) {
  answerAll();
  std::weak_ptr<platform::Button> update, log;
  std::weak_ptr<tovalinNSImageView> banner;
  bool ran = false;
  Application::sharedApplication().performOnMainThread([&] {
    ran = true;
    EXPECT_TRUE(delegate_.bsupportWindow);
    update = delegate_.updateButton;
    log = delegate_.logButton;
    banner = delegate_.bannerImgView;
    ASSERT_NE(delegate_.supportWindow, nullptr);
    EXPECT_TRUE(delegate_.supportWindow.load()->isVisible());
    delegate_.supportWindow.load()->close();
  });
  delegate_.support();
  EXPECT_TRUE(ran);
  EXPECT_FALSE(delegate_.bsupportWindow);
  EXPECT_EQ(delegate_.supportWindow, nullptr);
  EXPECT_EQ(delegate_.updateButton, nullptr);
  EXPECT_EQ(delegate_.logButton, nullptr);
  EXPECT_EQ(delegate_.bannerImgView, nullptr);
  EXPECT_TRUE(update.expired() && log.expired() && banner.expired());
}

TEST_F(DelegateSteps, UpdateKeepsSupportWindowOpen) {
  answerAll();
  Application::sharedApplication().performOnMainThread([this] {
    outside_parts::reset();
    delegate_.updateBtnClick();
  });
  delegate_.support();
  EXPECT_THAT(steps(), ElementsAre("run cp -Rf " + std::string(gBundlePath) +
                                       "/Contents/Resources/tovalinupdate.app /tmp/",
                                   "run open /tmp/tovalinupdate.app"));
  EXPECT_TRUE(delegate_.bsupportWindow);
  ASSERT_NE(delegate_.supportWindow, nullptr);
  EXPECT_TRUE(delegate_.supportWindow.load()->isVisible());
  delegate_.supportWindow.load()->close();
  EXPECT_EQ(delegate_.supportWindow, nullptr);
}

TEST_F(DelegateSteps, UpdaterFolderHasMode0700BeforeCopyAndIsRemovedIfEmpty) {
  std::filesystem::remove_all("/tmp/tovalinupdate.app");
  outside_parts::lookAtEachStep([]() -> std::string {
    std::error_code none;
    const auto status = std::filesystem::status("/tmp/tovalinupdate.app", none);
    if (!std::filesystem::is_directory(status)) return ", no folder";
    return status.permissions() == std::filesystem::perms::owner_all ? ", folder of the user's alone"
                                                                     : ", folder open to others";
  });
  delegate_.updateBtnClick();
  EXPECT_THAT(steps(), ElementsAre(testing::AllOf(testing::StartsWith("run cp "),
                                                  testing::EndsWith(", folder of the user's alone")),
                                   "run open /tmp/tovalinupdate.app, no folder"));
}

TEST_F(DelegateSteps, SupportWindowIsOrderedFrontAfterModalRun) {
  std::shared_ptr<platform::Window> window;
  Application::sharedApplication().performOnMainThread([&] {
    window = delegate_.supportWindow.load()->shared_from_this();
    window->orderOut();
    Application::sharedApplication().stopModal();
  });
  delegate_.support();
  EXPECT_TRUE(window->isVisible());
  window->close();
}

TEST_F(DelegateSteps, RecentVersionIsClearedBeforeFetch) {
  answerAll();
  ASSERT_EQ(delegate_.getRecentVersion(), 1);
  outside_parts::reset();
  outside_parts::lookAtEachStep([this] { return delegate_.recentVersion ? ", known" : ", unknown"; });
  EXPECT_EQ(delegate_.getRecentVersion(), 0);
  EXPECT_EQ(delegate_.recentVersion, std::nullopt);
  EXPECT_THAT(steps(), ElementsAre(versionRequest + std::string(", unknown")));
}

TEST_F(DelegateSteps, LoadingNoticeIsHiddenBeforeFrontApplicationIsActivated) {
  outside_parts::lookAtEachStep(
      [this]() -> std::string { return delegate_.notiEnumWindow->isVisible() ? ", shown" : ", hidden"; });
  Application::sharedApplication().performOnMainThread([this] { delegate_.noticeEnumerateOff(); });
  delegate_.noticeEnumerateOn();
  EXPECT_THAT(steps(), ElementsAre(testing::AllOf(testing::StartsWith("run osascript "),
                                                  testing::EndsWith(", hidden"))));
}

TEST_F(DelegateSteps, NetworkFlagFollowsVersionAtLaunchAndNoticeInSupportWindow) {
  delegate_.applicationDidFinishLaunching();
  EXPECT_FALSE(isNetworkOnline);
  answerAll();
  const auto openAndClose = [this] {
    Application::sharedApplication().performOnMainThread([this] { delegate_.supportWindow.load()->close(); });
    delegate_.support();
  };
  openAndClose();
  EXPECT_TRUE(isNetworkOnline);
  outside_parts::reply("/product/nimba/binary/tovalinnotice.xml", "");
  openAndClose();
  EXPECT_FALSE(isNetworkOnline);
  EXPECT_TRUE(delegate_.bUpdateEnabled);
}

}  // namespace
