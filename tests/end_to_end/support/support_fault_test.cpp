#include <gmock/gmock.h>

#include <atomic>
#include <map>
#include <mutex>

#include "tests/end_to_end/support/support_fixture.h"
#include "tests/harness/servers/raw_http_server.h"

namespace {

using namespace std::chrono_literals;
using test_support::RawConnection;
using test_support::waitUntil;

const std::string redPath = bannerFolder + std::string("red.ppm");

// A product server on which each file can fail separately.
class SupportFault : public SupportTest {
 protected:
  enum class Fault { None, Silence, Reset, HalfABody, ErrorStatus };

  void SetUp() override {
    SupportTest::SetUp();
    setServers("http://127.0.0.1:" + std::to_string(faulty_.port()));
    const std::lock_guard lock(mutex_);
    bodies_ = {{versionFile, plist(dictionary({{"version", "9.0.0"}}))},
               {noticeFile, noticeList()},
               {bannerListFile, bannerList(banner("red.ppm", "http://banner.example/red"))},
               {redPath, pictureFile(red)}};
  }
  void fail(const std::string& path, Fault fault) {
    const std::lock_guard lock(mutex_);
    faults_[path] = fault;
  }
  void putBody(const std::string& path, const std::string& body) {
    const std::lock_guard lock(mutex_);
    bodies_[path] = body;
  }
  void clickFaqAndExpect(bool enabled) {
    timeline_.clear();
    clickAt(faqMiddle);
    if (enabled) {
      EXPECT_TRUE(waitForText("log 6: -[nimbatrayAppDelegate faqBtnClick:]"));
    } else {
      expectNothingRun();
    }
  }
  void openAfterSilenceOf(const std::string& path) {
    fail(path, Fault::Silence);
    const auto begin = std::chrono::steady_clock::now();
    openWindow();
    const auto took = std::chrono::steady_clock::now() - begin;
    EXPECT_GE(took, 2900ms);
    EXPECT_LE(took, 10s);
  }
  // Shows the hidden window through the menu while the agent waits for the server, and expects the same
  // pictures as before.
  void expectReturnsPaintedDuringSilence(const std::vector<test_support::XPicture>& before) {
    fail(versionFile, Fault::Silence);
    choose();
    ASSERT_TRUE(waitUntil([&] { return silences_ == 1 && supportWindows() == 1; }));
    EXPECT_TRUE(waitUntil([&] { return pictures() == before; }, 2s));
    EXPECT_EQ(silences_, 1);
  }
  // Returns the parts of the window that look the same with and without the input focus.
  [[nodiscard]] std::vector<test_support::XPicture> pictures() const {
    return {pictureOfPart({0, 105}, 420, 135), pictureOfPart({0, 0}, 420, 40)};
  }
  [[nodiscard]] bool bannerIsRed() {
    return waitUntil([&] { return colourOf(bannerMiddle) == red; });
  }

 private:
  void serve(RawConnection& connection) {
    const std::string head = connection.readHead();
    const std::size_t begin = head.find(' ') + 1;
    const std::string path = head.substr(begin, head.find(' ', begin) - begin);
    const auto [fault, body] = [&] {
      const std::lock_guard lock(mutex_);
      return std::pair(faults_[path], bodies_[path]);
    }();
    const std::string whole = test_support::httpReply(body, "Connection: close\r\n");
    switch (fault) {
      case Fault::None:
        connection.send(whole);
        return;
      case Fault::Silence:
        ++silences_;
        connection.waitForEnd();
        --silences_;
        return;
      case Fault::Reset:
        connection.reset();
        return;
      case Fault::HalfABody:
        connection.send(whole.substr(0, whole.size() - body.size() / 2));
        return;
      case Fault::ErrorStatus:
        connection.send(test_support::httpReply(body, "Connection: close\r\n", "503 Service Unavailable"));
        return;
    }
  }

  std::atomic<int> silences_ = 0;  // connections that are currently left without a reply
  std::mutex mutex_;
  std::map<std::string, Fault> faults_;
  std::map<std::string, std::string> bodies_;
  test_support::RawHttpServer faulty_{[this](RawConnection& connection) { serve(connection); }};
};

TEST_F(SupportFault, UnresponsiveVersionDisablesUpdateAfterThreeSeconds) {
  launchInPanel();
  openAfterSilenceOf(versionFile);
  timeline_.clear();
  clickAt(updateMiddle);
  clickFaqAndExpect(true);
  EXPECT_EQ(count("log 6: -[nimbatrayAppDelegate updateBtnClick:]"), 0);
}

TEST_F(SupportFault, HiddenWindowReturnsPaintedWhileServerIsUnresponsive) {
  launchAndOpen();
  ASSERT_TRUE(bannerIsRed());
  const auto before = pictures();
  switchToAnotherProgram();
  ASSERT_TRUE(windowDisappears());
  program_ = test_support::ChildProcess();  // ends it, because its windows might cover the support window
  expectReturnsPaintedDuringSilence(before);
}

TEST_F(SupportFault, MinimisedWindowReturnsPaintedWhileServerIsUnresponsive) {
  launchAndOpen();
  ASSERT_TRUE(bannerIsRed());
  const auto before = pictures();
  runOnDisplay({"xdotool", "windowminimize", std::to_string(window_.id)});
  ASSERT_TRUE(windowDisappears());
  expectReturnsPaintedDuringSilence(before);
}

TEST_F(SupportFault, UnresponsiveNoticeIsIgnoredAfterThreeSeconds) {
  launchInPanel();
  openAfterSilenceOf(noticeFile);
  clickFaqAndExpect(false);
}

TEST_F(SupportFault, UnresponsiveBannerListShowsNoBannerAfterThreeSeconds) {
  launchInPanel();
  openAfterSilenceOf(bannerListFile);
  EXPECT_TRUE(waitUntil([&] { return linesInConsole("bannerlist is NULL!") == 1; }));
  clickFaqAndExpect(true);
}

TEST_F(SupportFault, UnresponsivePictureShowsNoBannerAfterThreeSeconds) {
  launchInPanel();
  openAfterSilenceOf(redPath);
  EXPECT_TRUE(waitUntil([&] { return linesInConsole("bannerlist is NULL!") == 1; }));
  clickFaqAndExpect(true);
}

TEST_F(SupportFault, ResetVersionKeepsEarlierNoticeAndBanners) {
  launchAndOpen();
  closeWindow();
  fail(versionFile, Fault::Reset);
  openWindow();
  EXPECT_TRUE(bannerIsRed());
  timeline_.clear();
  clickAt(updateMiddle);
  clickFaqAndExpect(true);
  EXPECT_EQ(count("log 6: -[nimbatrayAppDelegate updateBtnClick:]"), 0);
}

TEST_F(SupportFault, ResetBannerListKeepsEarlierList) {
  launchAndOpen();
  closeWindow();
  fail(bannerListFile, Fault::Reset);
  openWindow();
  EXPECT_EQ(linesInConsole("bannerlist is NULL!"), 0);
  timeline_.clear();
  clickAt(bannerMiddle);
  EXPECT_TRUE(waitForText("run: open http://banner.example/red"));
}

TEST_F(SupportFault, MalformedBannerListReplacesListAndKeepsPicture) {
  launchAndOpen();
  closeWindow();
  putBody(bannerListFile, "<html></html>");
  openWindow();
  EXPECT_TRUE(bannerIsRed());
  EXPECT_EQ(linesInConsole("bannerlist is NULL!"), 1);
  timeline_.clear();
  clickAt(bannerMiddle);
  expectNothingRun();
}

TEST_F(SupportFault, TruncatedPictureIsNotShown) {
  launchInPanel();
  fail(redPath, Fault::HalfABody);
  openWindow();
  EXPECT_EQ(linesInConsole("bannerlist is NULL!"), 1);
  EXPECT_TRUE(colourOf(bannerMiddle) == colourOf(bareSpot));
}

TEST_F(SupportFault, TruncatedNoticeIsIgnored) {
  launchInPanel();
  fail(noticeFile, Fault::HalfABody);
  openWindow();
  clickFaqAndExpect(false);
}

TEST_F(SupportFault, StatusCodeIsIgnored) {
  launchInPanel();
  for (const auto& path :
       {std::string(versionFile), std::string(noticeFile), std::string(bannerListFile), redPath})
    fail(path, Fault::ErrorStatus);
  openWindow();
  EXPECT_TRUE(bannerIsRed());
  clickFaqAndExpect(true);
}

}  // namespace
