#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <regex>

#include "tests/tools/productserver_fixture.h"
#include "tests/tools/tool_process.h"

namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::SizeIs;

constexpr const char* kVersionPath = "/product/nimba/binary/tovalin_recent_version_info.xml";
constexpr const char* kBannerFolder = "/product/nimba/banner/";

// What the first group of the expression finds, one after the other.
std::vector<std::string> allIn(const std::string& text, const std::string& expression) {
  const std::regex pattern(expression);
  return {std::sregex_token_iterator(text.begin(), text.end(), pattern, 1), {}};
}

std::vector<std::string> stringsOf(const std::string& list, const std::string& key) {
  return allIn(list, "<key>" + key + "</key>\\s*<string>([^<]+)</string>");
}

class Pages : public tools_test::ProductServer {
 protected:
  void SetUp() override {
    ProductServer::SetUp();
    start(DEMO_ROOT);
  }
};

TEST_F(Pages, TheDemoFolderTellsAVersion) {
  EXPECT_THAT(stringsOf(bodyOf(kVersionPath), "version"), ElementsAre("1.1.0"));
}

TEST_F(Pages, TheVersionOfTheCommandLineGoesBeforeThatOfTheFolder) {
  start(DEMO_ROOT, {"--version-list", "9.<&>.1"});
  const httplib::Result result = client_->Get(kVersionPath);
  ASSERT_TRUE(result);
  EXPECT_THAT(result->body, HasSubstr("<key>version</key>\n\t<string>9.&lt;&amp;&gt;.1</string>"));
  EXPECT_EQ(result->get_header_value("Content-Type"), "application/xml");
}

TEST_F(Pages, TheVersionListNeedsNoFileInTheFolder) {
  start(tools_test::kFolder, {"--version-list", "2.0.0"});
  EXPECT_THAT(stringsOf(bodyOf(kVersionPath), "version"), ElementsAre("2.0.0"));
}

TEST_F(Pages, TheNoticeHasTwoLinksWithTheirTexts) {
  const std::string notice = bodyOf("/product/nimba/binary/tovalinnotice.xml");
  EXPECT_THAT(allIn(notice, "<key>(notice_[0-9]+)</key>"), ElementsAre("notice_1", "notice_2"));
  EXPECT_THAT(stringsOf(notice, "subject"), SizeIs(2));
  EXPECT_THAT(stringsOf(notice, "link"), SizeIs(2));
}

TEST_F(Pages, EveryBannerOfTheListIsAPictureOfTheBannersShape) {
  const std::string list = bodyOf(std::string(kBannerFolder) + "tovalinbanner.xml");
  const std::vector<std::string> names = stringsOf(list, "file_name");
  EXPECT_THAT(names, SizeIs(3));
  EXPECT_THAT(stringsOf(list, "link"), SizeIs(names.size()));
  for (const std::string& name : names) {
    const std::string picture = bodyOf(kBannerFolder + name);
    EXPECT_EQ(picture.substr(0, 8), "\x89PNG\r\n\x1a\n") << name;
    EXPECT_EQ(picture.substr(16, 8), std::string("\0\0\x03\x48\0\0\0\x50", 8)) << name << " is not 840 by 80";
  }
}

TEST_F(Pages, EveryLinkOfTheDemoFolderLeadsSomewhere) {
  for (const char* const list :
       {"/product/nimba/binary/tovalinnotice.xml", "/product/nimba/banner/tovalinbanner.xml"}) {
    for (const std::string& link : stringsOf(bodyOf(list), "link")) {
      const auto parts = allIn(link, "(?:^http://127\\.0\\.0\\.1:8090|#)([^#]+)");
      ASSERT_THAT(parts, SizeIs(2)) << link;
      EXPECT_THAT(bodyOf(parts[0]), HasSubstr("id=\"" + parts[1] + "\"")) << link;
    }
  }
}

TEST_F(Pages, TheAnalyticsPageCallsBackWithItsOwnQuery) {
  const std::string page = bodyOf("/product/nimba/binary/GATovalin.html?category=a&a=b");
  EXPECT_THAT(page, HasSubstr("fetch(\"beacon_seen\" + location.search"));
}

TEST_F(Pages, ABeaconThatWasSeenIsTold) {
  EXPECT_EQ(statusOf("/product/nimba/binary/beacon_seen?category=clickaction&clickaction=Visit%20Site"), 204);
  EXPECT_EQ(server_.readLine(), "beacon category=clickaction value=Visit Site");
  EXPECT_THAT(server_.readLine().value_or(""), EndsWith("204  0 bytes"));
}

TEST_F(Pages, ABeaconOfOtherFormIsToldAsFarAsItGoes) {
  EXPECT_EQ(statusOf("/product/nimba/binary/beacon_seen?category=a%0Ab&x=y"), 204);
  EXPECT_EQ(server_.readLine(), "beacon category=a\\x0ab value=");
}

TEST_F(Pages, NothingIsToBeCached) {
  const httplib::Result result = client_->Get(kVersionPath);
  ASSERT_TRUE(result);
  EXPECT_EQ(result->get_header_value("Cache-Control"), "no-store");
}

}  // namespace
