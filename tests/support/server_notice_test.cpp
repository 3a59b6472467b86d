#include <gmock/gmock.h>

#include <deque>
#include <set>

#include "app/nimbatrayAppDelegate.h"
#include "notices/clickable_image_view.h"
#include "platform/image.h"
#include "platform/property_list.h"
#include "platform/url_request.h"
#include "platform/workspace.h"

using testing::ElementsAre;
using testing::EndsWith;

namespace {

// The requests and opened addresses, and the remaining replies of the fake server; without one a request
// fails.
struct Outside {
  std::vector<platform::UrlRequest> requests;
  std::vector<std::string> opened;
  std::deque<std::optional<std::string>> replies;
};

Outside& outside() {
  static Outside all;
  return all;
}

std::vector<std::string> fetched() {
  std::vector<std::string> urls;
  for (const auto& request : outside().requests) urls.push_back(request.url);
  return urls;
}

constexpr const char* picture = "P6\n1 1\n255\nabc";

std::string list(const std::string& content) {
  return "<plist version=\"1.0\">" + content + "</plist>";
}
std::string banner(const std::string& name) {
  return "<dict><key>file_name</key><string>" + name + "</string><key>link</key><string>http://" + name +
         "/</string></dict>";
}

}  // namespace

// Fakes: the real ones would need a server and a browser.
namespace platform {

std::optional<std::string> sendSynchronousRequest(const UrlRequest& request) {
  outside().requests.push_back(request);
  if (outside().replies.empty()) return std::nullopt;
  auto reply = outside().replies.front();
  outside().replies.pop_front();
  return reply;
}

Workspace& Workspace::sharedWorkspace() {
  static Workspace workspace;
  return workspace;
}

void Workspace::openURL(const std::string& text) {
  outside().opened.push_back(text);
}

}  // namespace platform

namespace {

class ServerContent : public testing::Test {
 protected:
  void SetUp() override { outside() = {}; }

  void haveBanners(const std::string& entries) {
    outside().replies = {list("<array>" + entries + "</array>")};
    ASSERT_EQ(delegate_.getBannerList(), 1);
  }
  int fetchBanner(std::optional<std::string> reply) {
    outside().replies = {std::move(reply)};
    return delegate_.getBannerImg();
  }

  nimbatrayAppDelegate delegate_;
};

TEST_F(ServerContent, FailedFetchKeepsEarlierLists) {
  haveBanners(banner("a.ppm"));
  outside().replies = {list("<dict/>")};
  EXPECT_EQ(delegate_.getServerNotice(), 0);
  const auto notice = delegate_.serverNotice;
  const auto banners = delegate_.bannerList;
  ASSERT_TRUE(notice != nullptr && banners != nullptr);
  EXPECT_EQ(delegate_.getServerNotice(), 0);
  EXPECT_EQ(delegate_.getBannerList(), 0);
  EXPECT_EQ(delegate_.serverNotice, notice);
  EXPECT_EQ(delegate_.bannerList, banners);
}

TEST_F(ServerContent, InvalidListClearsEarlierLists) {
  haveBanners(banner("a.ppm"));
  outside().replies = {list("<dict/>"), "<plist><dict>", "no list {"};
  EXPECT_EQ(delegate_.getServerNotice(), 0);
  EXPECT_NE(delegate_.serverNotice, nullptr);
  EXPECT_EQ(delegate_.getServerNotice(), 0);
  EXPECT_EQ(delegate_.serverNotice, nullptr);
  EXPECT_EQ(delegate_.getBannerList(), 0);
  EXPECT_EQ(delegate_.bannerList, nullptr);
}

TEST_F(ServerContent, BannerLinkIsThatOfLastChosenBannerWithoutPicture) {
  haveBanners(banner("a.ppm"));
  EXPECT_EQ(fetchBanner(picture), 1);
  const auto shown = delegate_.bannerImg;
  ASSERT_NE(shown, nullptr);
  haveBanners(banner("b.ppm"));
  EXPECT_EQ(fetchBanner(std::nullopt), 0);
  EXPECT_EQ(delegate_.bannerImg, shown);
  EXPECT_EQ(delegate_.bannerLink, "http://b.ppm/");
}

TEST_F(ServerContent, InvalidPictureClearsEarlierOne) {
  haveBanners(banner("a.ppm"));
  EXPECT_EQ(fetchBanner(picture), 1);
  EXPECT_EQ(fetchBanner("<html>"), 0);
  EXPECT_EQ(delegate_.bannerImg, nullptr);
}

TEST_F(ServerContent, InvalidBannerNameIsNotFetched) {
  haveBanners(banner("a%2"));
  outside().requests.clear();
  EXPECT_EQ(fetchBanner(picture), 0);
  EXPECT_THAT(fetched(), ElementsAre());
  EXPECT_EQ(delegate_.bannerLink, "http://a%2/");
}

TEST_F(ServerContent, EmptyBannerNameFetchesFolder) {
  haveBanners(banner(""));
  outside().requests.clear();
  EXPECT_EQ(fetchBanner(std::nullopt), 0);
  EXPECT_THAT(fetched(), ElementsAre(EndsWith("/product/nimba/banner/")));
}

TEST_F(ServerContent, EachOfThreeBannersIsChosenEventually) {
  haveBanners(banner("a.ppm") + banner("b.ppm") + banner("c.ppm"));
  std::set<std::string> chosen;
  for (int i = 0; i < 1000 && chosen.size() < 3; ++i) {
    ASSERT_EQ(fetchBanner(picture), 1);
    chosen.insert(*delegate_.bannerLink);
  }
  EXPECT_EQ(chosen.size(), 3U);
}

TEST_F(ServerContent, EmptyListOrIncompleteEntryReturnsNoBanner) {
  haveBanners("");
  EXPECT_EQ(fetchBanner(picture), 0);
  haveBanners("<dict><key>link</key><string>http://a/</string></dict>");
  EXPECT_EQ(fetchBanner(picture), 0);
  haveBanners("<dict><key>file_name</key><integer>1</integer></dict>");
  EXPECT_EQ(fetchBanner(picture), 0);
  EXPECT_EQ(delegate_.bannerLink, std::nullopt);
}

TEST_F(ServerContent, FetchesHaveThreeSecondTimeoutAndIgnoreCache) {
  haveBanners(banner("a.ppm"));
  fetchBanner(picture);
  delegate_.getServerNotice();
  delegate_.getRecentVersion();
  EXPECT_THAT(fetched(), ElementsAre(EndsWith("/product/nimba/banner/tovalinbanner.xml"),
                                     EndsWith("/product/nimba/banner/a.ppm"),
                                     EndsWith("/product/nimba/binary/tovalinnotice.xml"),
                                     EndsWith("/product/nimba/binary/tovalin_recent_version_info.xml")));
  for (const platform::UrlRequest& request : outside().requests) {
    EXPECT_EQ(request.timeoutInterval, std::chrono::seconds(3)) << request.url;
    EXPECT_EQ(request.cachePolicy, platform::UrlRequest::CachePolicy::ReloadIgnoringLocalCache)
        << request.url;
    EXPECT_EQ(request.method, "GET") << request.url;
    EXPECT_EQ(request.maximumReplySize, std::size_t{16} << 20) << request.url;
    EXPECT_EQ(request.redirectSchemes, "http,https") << request.url;
  }
}

TEST_F(ServerContent, FailedVersionFetchClearsEarlierVersion) {
  outside().replies = {list("<dict><key>version</key><string>9.9.9</string></dict>"), std::nullopt,
                       list("<dict><key>version</key><string>9.9.9</string></dict>"), "no list {"};
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(delegate_.getRecentVersion(), 1);
    EXPECT_EQ(delegate_.recentVersion, "9.9.9");
    EXPECT_EQ(delegate_.getRecentVersion(), 0);
    EXPECT_EQ(delegate_.recentVersion, std::nullopt);
  }
}

TEST_F(ServerContent, BannerClickOpensHttpAddressesOnly) {
  delegate_.bannerImgView = std::make_shared<tovalinNSImageView>(platform::Rect{0, 0, 1, 1});
  for (const char* link : {"file:///etc/passwd", "smb://host/share", "mailto:a@b?attach=/etc/passwd",
                           "javascript:alert(1)", "x1:evil.html", "http:evil.html", "evil.html"}) {
    delegate_.bannerLink = link;
    delegate_.myImageView(*delegate_.bannerImgView, {});
    EXPECT_THAT(outside().opened, ElementsAre()) << link;
  }
  delegate_.bannerLink = "HTTPS://banner/";
  delegate_.myImageView(*delegate_.bannerImgView, {});
  EXPECT_THAT(outside().opened, ElementsAre("HTTPS://banner/"));
}

TEST_F(ServerContent, ClickOnOtherViewIsNoOp) {
  delegate_.bannerLink = "http://banner/";
  delegate_.bannerImgView = std::make_shared<tovalinNSImageView>(platform::Rect{0, 0, 1, 1});
  tovalinNSImageView another({0, 0, 1, 1});
  delegate_.myImageView(another, {});
  EXPECT_THAT(outside().opened, ElementsAre());
  delegate_.myImageView(*delegate_.bannerImgView, {});
  EXPECT_THAT(outside().opened, ElementsAre("http://banner/"));
}

TEST_F(ServerContent, BannerClickWithoutLinkIsNoOp) {
  delegate_.bannerImgView = std::make_shared<tovalinNSImageView>(platform::Rect{0, 0, 1, 1});
  delegate_.myImageView(*delegate_.bannerImgView, {});
  delegate_.bannerLink = "";
  delegate_.myImageView(*delegate_.bannerImgView, {});
  EXPECT_THAT(outside().opened, ElementsAre());
}

}  // namespace
