#include <gmock/gmock.h>

#include <cstdlib>

#include "tests/end_to_end/support/support_fixture.h"

namespace {

using test_support::waitUntil;
using testing::ElementsAre;

constexpr const char* noBanner = "bannerlist is NULL!";

// The contents of the window with complete, missing and malformed files on the server.
class SupportContent : public SupportTest {
 protected:
  [[nodiscard]] bool bannerIs(test_support::Colour colour) const {
    return waitUntil([&] { return colourOf(bannerMiddle) == colour; });
  }
  void clickEverythingFromTheServer() {
    for (const Place place : {updateMiddle, faqMiddle, firstLink, secondLink, bannerMiddle}) clickAt(place);
  }
  void expectLinkServes() {
    timeline_.clear();
    clickAt(secondLink);
    EXPECT_TRUE(waitForText("run: open http://two.example/b"));
  }
  void expectNoBanner() {
    EXPECT_TRUE(waitUntil([&] { return linesInConsole(noBanner) == 1; })) << console();
    timeline_.clear();
    clickAt(bannerMiddle);
    expectNothingRun();
    EXPECT_EQ(linesInConsole("bannerImgView clicked"), 0);
    EXPECT_EQ(beaconsOf("banner"), 0);
  }
  // Compares with the built-in picture, at one device pixel per point.
  [[nodiscard]] bool bannerIsBuiltIn() {
    const std::string name = screenScale() == 1 ? "/Tovalinbanner.png" : "/Tovalinbanner@2x.png";
    const std::string pixels = runOnDisplay({"convert", agentContents() + "/Resources" + name, "rgb:-"});
    const auto shown = pictureOfPart({0, 0}, 420, 40);
    const auto near = [](std::uint8_t a, char b) { return std::abs(a - static_cast<std::uint8_t>(b)) <= 2; };
    std::size_t at = 0;
    for (int y = 0; y < shown.height(); ++y) {
      for (int x = 0; x < shown.width(); ++x, at += 3) {
        const auto colour = shown.at(x, y);
        if (!near(colour.red, pixels.at(at)) || !near(colour.green, pixels.at(at + 1)) ||
            !near(colour.blue, pixels.at(at + 2)))
          return false;
      }
    }
    return at == pixels.size();
  }
  // Returns whether the notice shows links (which are blue) instead of plain text.
  [[nodiscard]] bool showsLinks() const {
    const auto picture = pictureOfPart({140, 165}, 280, 20);
    for (int y = 0; y < picture.height(); ++y) {
      for (int x = 0; x < picture.width(); ++x) {
        const auto colour = picture.at(x, y);
        if (colour.blue > 200 && colour.red < 60) return true;
      }
    }
    return false;
  }
};

TEST_F(SupportContent, WithoutNetworkOnlyLogButtonIsEnabled) {
  server_.reset();
  launchAndOpen();
  EXPECT_TRUE(waitUntil([&] { return bannerIsBuiltIn(); }));
  EXPECT_FALSE(showsLinks());
  EXPECT_EQ(linesInConsole(noBanner), 0);
  EXPECT_EQ(linesInConsole("recentversion"), 0);
  timeline_.clear();
  clickEverythingFromTheServer();
  clickAt(logMiddle);
  ASSERT_TRUE(sheetIsUp());
  EXPECT_THAT(runs(), ElementsAre());
  EXPECT_EQ(count("log 6: "), 1);
  EXPECT_EQ(linesInConsole("bannerImgView clicked"), 0);
}

TEST_F(SupportContent, WithNetworkTwoLinksAndBannerAreShown) {
  launchAndOpen();
  EXPECT_TRUE(bannerIs(red));
  EXPECT_TRUE(showsLinks());
  EXPECT_EQ(linesInConsole(noBanner), 0);
}

TEST_F(SupportContent, FailedNoticeLeavesOnlyUpdateEnabled) {
  server_->put(noticeFile, "this is no list");
  launchAndOpen();
  EXPECT_FALSE(showsLinks());
  EXPECT_TRUE(waitUntil([&] { return bannerIsBuiltIn(); }));
  timeline_.clear();
  for (const Place place : {faqMiddle, firstLink, secondLink, bannerMiddle}) clickAt(place);
  clickAt(updateMiddle);
  ASSERT_TRUE(waitForText("run: open /tmp/tovalinupdate.app"));
  EXPECT_EQ(count("log 6: -[nimbatrayAppDelegate faqBtnClick:]"), 0);
  EXPECT_THAT(runs(), ElementsAre("run: open /tmp/tovalinupdate.app"));
}

TEST_F(SupportContent, NoticeWithoutSecondEntryIsIgnored) {
  server_->put(noticeFile,
               plist("<dict>" + noticeEntry("notice_1", "One", "http://one.example/") + "</dict>"));
  launchAndOpen();
  EXPECT_FALSE(showsLinks());
  timeline_.clear();
  for (const Place place : {faqMiddle, firstLink, secondLink}) clickAt(place);
  expectNothingRun();
}

TEST_F(SupportContent, FailedVersionLeavesUpdateAndBannerDisabled) {
  server_->put(versionFile, "<html>503</html>");
  launchAndOpen();
  EXPECT_TRUE(showsLinks());
  EXPECT_EQ(takeFetches().back(), noticeFile);
  timeline_.clear();
  clickAt(updateMiddle);
  clickAt(faqMiddle);
  ASSERT_TRUE(waitForText("run: open " + server_->origin() + "/support/tovalin/"));
  EXPECT_EQ(count("log 6: -[nimbatrayAppDelegate updateBtnClick:]"), 0);
  EXPECT_EQ(linesInConsole(noBanner), 1);
}

TEST_F(SupportContent, VersionThatIsNotNewerDisablesUpdate) {
  server_->putVersion("1.0.0");
  launchAndOpen();
  timeline_.clear();
  clickAt(updateMiddle);
  expectNothingRun();
  EXPECT_EQ(count("log 6: -[nimbatrayAppDelegate updateBtnClick:]"), 0);
}

TEST_F(SupportContent, EmptyBannerListShowsNoBanner) {
  server_->put(bannerListFile, bannerList(""));
  launchAndOpen();
  expectNoBanner();
}

TEST_F(SupportContent, MissingBannerListShowsNoBanner) {
  server_->put(bannerListFile, "404");
  launchAndOpen();
  expectNoBanner();
}

TEST_F(SupportContent, BannerThatIsNoPictureIsNotShown) {
  server_->put(bannerFolder + std::string("red.ppm"), "no picture");
  launchAndOpen();
  expectNoBanner();
  EXPECT_EQ(colourOf(bannerMiddle), colourOf(bareSpot));
}

TEST_F(SupportContent, DecompressionBombIsNotShownAndAllocatesNoMemory) {
  launchAndOpen();
  closeWindow();
  const long memory = ownMemoryInKilobytes(agent_.pid());
  // One gigabyte of black pixels.
  server_->put(bannerFolder + std::string("red.ppm"), "P5\n32768 32768\n255\n" + std::string(1 << 20, '\0'));
  openWindow();
  expectNoBanner();
  EXPECT_LT(ownMemoryInKilobytes(agent_.pid()), memory + 16384);
}

TEST_F(SupportContent, BannerNameWithBlankIsNotFetched) {
  server_->put(bannerListFile, bannerList(banner("red one.ppm", "http://banner.example/red")));
  launchAndOpen();
  EXPECT_EQ(takeFetches().back(), noticeFile);
  expectNoBanner();
}

TEST_F(SupportContent, BannerWithoutLinkIsNotShown) {
  server_->put(bannerListFile, bannerList(dictionary({{"file_name", "red.ppm"}})));
  launchAndOpen();
  expectNoBanner();
}

TEST_F(SupportContent, BannerWithoutFileNameIsNotShown) {
  server_->put(bannerListFile, bannerList(dictionary({{"link", "http://banner.example/"}})));
  launchAndOpen();
  expectNoBanner();
}

TEST_F(SupportContent, BannerThatFailsToReloadStaysVisibleAndIsNotClickable) {
  launchAndOpen();
  ASSERT_TRUE(bannerIs(red));
  closeWindow();
  server_->put(bannerListFile, bannerList(banner("blue one.ppm", "http://banner.example/blue")));
  openWindow();
  EXPECT_TRUE(bannerIs(red));
  expectNoBanner();
}

TEST_F(SupportContent, EachOfSeveralBannersIsShownWithItsOwnLink) {
  server_->put(bannerListFile, bannerList(banner("red.ppm", "http://banner.example/red") +
                                          banner("blue.ppm", "http://banner.example/blue")));
  server_->put(bannerFolder + std::string("blue.ppm"), pictureFile(blue));
  launchInPanel();
  bool sawRed = false, sawBlue = false;
  // The probability of forty openings with the same banner is 1 in 500,000,000,000.
  for (int i = 0; i < 40 && !(sawRed && sawBlue) && !HasFatalFailure(); ++i) {
    openWindow();
    ASSERT_TRUE(waitUntil([&] { return colourOf(bannerMiddle) == red || colourOf(bannerMiddle) == blue; }));
    const bool isRed = colourOf(bannerMiddle) == red;
    (isRed ? sawRed : sawBlue) = true;
    timeline_.clear();
    clickAt(bannerMiddle);
    ASSERT_TRUE(waitForText("run: open"));
    EXPECT_THAT(runs(), ElementsAre(isRed ? "run: open http://banner.example/red"
                                          : "run: open http://banner.example/blue"));
    closeWindow();
  }
  EXPECT_TRUE(sawRed && sawBlue);
}

TEST_F(SupportContent, ClickOnBannerOpensLinkOnceAsOneArgument) {
  server_->put(bannerListFile, bannerList(banner("red.ppm", "http://b.example/$(reboot);'&amp;x=%20")));
  launchAndOpen();
  timeline_.clear();
  clickAt(bannerMiddle);
  const auto run = timeline_.waitFor("run: open");
  ASSERT_TRUE(run);
  EXPECT_THAT(run->arguments, ElementsAre("http://b.example/$(reboot);'&x=%20"));
  EXPECT_TRUE(waitForClickBeacon("banner"));
  EXPECT_EQ(count("run: open"), 1);
  EXPECT_EQ(beaconsOf("banner"), 1);
  EXPECT_EQ(linesInConsole("bannerImgView clicked"), 1);
}

TEST_F(SupportContent, BannerIsClickableUpToItsCorners) {
  launchAndOpen();
  for (const Place corner : {Place{0, 0}, Place{419, 0}, Place{0, 39}, Place{419, 39}}) {
    timeline_.clear();
    clickAt(corner);
    EXPECT_TRUE(waitForText("run: open http://banner.example/red")) << corner.x << ", " << corner.y;
  }
  timeline_.clear();
  clickAt({0, 40});
  clickAt({419, 40});
  expectNothingRun();
}

TEST_F(SupportContent, InvalidBannerLinkOpensNothing) {
  server_->put(bannerListFile, bannerList(banner("red.ppm", "file:///etc/passwd")));
  launchAndOpen();
  timeline_.clear();
  clickAt(bannerMiddle);
  ASSERT_TRUE(waitUntil([&] { return linesInConsole("bannerImgView clicked") == 1; }));
  expectNothingRun();
}

TEST_F(SupportContent, EachLinkOpensItsAddressOnce) {
  launchAndOpen();
  timeline_.clear();
  clickAt(firstLink);
  ASSERT_TRUE(waitForText("run: open http://one.example/a"));
  clickAt(secondLink);
  ASSERT_TRUE(waitForText("run: open http://two.example/b?c=d#e"));
  EXPECT_EQ(count("run: "), 2);
}

TEST_F(SupportContent, InvalidLinksOpenNothing) {
  server_->put(noticeFile, noticeList("file:///usr/bin/xterm", "http://two.example/a b"));
  launchAndOpen();
  timeline_.clear();
  clickAt(firstLink);
  clickAt(secondLink);
  expectNothingRun();
}

TEST_F(SupportContent, LinksAndBannersWithOtherSchemesOpenNothing) {
  server_->put(noticeFile, noticeList("x1:evil.html", "smb://host.example/share"));
  server_->put(bannerListFile, bannerList(banner("red.ppm", "mailto:a@b.example?attach=/etc/passwd")));
  launchAndOpen();
  timeline_.clear();
  for (const Place place : {firstLink, secondLink, bannerMiddle}) clickAt(place);
  ASSERT_TRUE(waitUntil([&] { return linesInConsole("bannerImgView clicked") == 1; }));
  expectNothingRun();
}

TEST_F(SupportContent, ServerVersionIsOneBoundedLineOnConsole) {
  server_->putVersion("9.0.0\n2026-11-22 10:00:00.000 TovalinTray[1] forged\xe2\x80\xae" +
                      std::string(2000, '9'));
  launchAndOpen();
  const std::string text = console();
  const std::size_t start = text.find("recentversion : ");
  ASSERT_NE(start, std::string::npos) << text;
  const std::string line = text.substr(start, text.find('\n', start) - start);
  EXPECT_THAT(line, testing::StartsWith("recentversion : 9.0.0\\u000a2026-11-22 10:00:00.000 TovalinTray[1] "
                                        "forged\\u202e999"));
  EXPECT_THAT(line, testing::EndsWith("999\u2026, currentversion : 1.0.0"));
  EXPECT_LT(line.size(), 1100U);
}

TEST_F(SupportContent, LinksOpenAsNormalisedAddressOrNotAtAll) {
  server_->put(noticeFile, noticeList("HTTP://One.Example/%7ea", "http://two.example:99999/"));
  launchAndOpen();
  timeline_.clear();
  clickAt(firstLink);
  EXPECT_TRUE(waitForText("run: open http://one.example/~a"));
  clickAt(secondLink);
  choose("Automount Off");
  ASSERT_TRUE(waitForText("pipe: -u"));
  EXPECT_EQ(count("run: "), 1) << testing::PrintToString(texts());
}

TEST_F(SupportContent, ServerTextsAreShownVerbatim) {
  server_->put(
      noticeFile,
      plist("<dict>" +
            noticeEntry("notice_1", "&lt;b&gt;&amp;amp; &lt;a href='x:y'&gt;%s%n", "http://one.example/") +
            noticeEntry("notice_2", std::string(100000, 'W'), "http://two.example/") + "</dict>"));
  launchAndOpen();
  timeline_.clear();
  clickAt(firstLink);
  EXPECT_TRUE(waitForText("run: open http://one.example/"));
  clickAt(secondLink);
  EXPECT_TRUE(waitForText("run: open http://two.example/"));
  closeWindow();
}

// Each press and each release computes the text layout, which takes seconds for this many combining marks.
TEST_F(SupportContent, ClicksOnLinkWithOverlongSubjectAreHandledPromptly) {
  std::string subject = "a";
  for (int i = 0; i < 450'000; ++i) subject += "\u0301";
  server_->put(noticeFile, plist("<dict>" + noticeEntry("notice_1", subject, "http://one.example/a") +
                                 noticeEntry("notice_2", "Two", "http://two.example/b") + "</dict>"));
  launchAndOpen();
  ASSERT_TRUE(showsLinks());
  for (int i = 0; i < 3; ++i) clickAt(firstLink);
  expectLinkServes();
}

}  // namespace
