#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/tools/productserver_fixture.h"
#include "tests/tools/tool_process.h"

namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::SizeIs;

constexpr const char* kVersionPath = "/product/nimba/binary/tovalin_recent_version_info.xml";
constexpr const char* kBannerFolder = "/product/nimba/banner/";

// Returns each part of `text` between `before` and `after`.
std::vector<std::string> between(const std::string& text, const std::string& before,
                                 const std::string& after) {
  std::vector<std::string> found;
  for (std::size_t at = text.find(before); at != text.npos; at = text.find(before, at)) {
    at += before.size();
    found.push_back(text.substr(at, text.find(after, at) - at));
  }
  return found;
}

// Returns the <string> values that follow the lines of `key`.
std::vector<std::string> stringsOf(const std::string& list, const std::string& key) {
  std::vector<std::string> strings;
  for (const std::string& rest : between(list, "<key>" + key + "</key>\n", "</string>")) {
    strings.push_back(rest.substr(rest.find("<string>") + 8));
  }
  return strings;
}

class Pages : public tools_test::ProductServer {
 protected:
  void SetUp() override {
    ProductServer::SetUp();
    start(DEMO_ROOT);
  }
};

TEST_F(Pages, DemoFolderHasVersion) {
  EXPECT_THAT(stringsOf(bodyOf(kVersionPath), "version"), ElementsAre("1.1.0"));
}

TEST_F(Pages, VersionListOptionOverridesFile) {
  start(DEMO_ROOT, {"--version-list", "9.<&>.1"});
  const httplib::Result result = client_->Get(kVersionPath);
  ASSERT_TRUE(result);
  EXPECT_THAT(result->body, HasSubstr("<key>version</key>\n\t<string>9.&lt;&amp;&gt;.1</string>"));
  EXPECT_EQ(result->get_header_value("Content-Type"), "application/xml");
}

TEST_F(Pages, VersionListOptionNeedsNoFile) {
  start(tools_test::kFolder, {"--version-list", "2.0.0"});
  EXPECT_THAT(stringsOf(bodyOf(kVersionPath), "version"), ElementsAre("2.0.0"));
}

TEST_F(Pages, NoticeHasTwoLinksWithSubjects) {
  const std::string notice = bodyOf("/product/nimba/binary/tovalinnotice.xml");
  EXPECT_THAT(between(notice, "<key>notice_", "</key>"), ElementsAre("1", "2"));
  EXPECT_THAT(stringsOf(notice, "subject"), SizeIs(2));
  EXPECT_THAT(stringsOf(notice, "link"), SizeIs(2));
}

TEST_F(Pages, BannersAre840By80Pixels) {
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

TEST_F(Pages, LinksOfDemoFolderHaveTargets) {
  for (const char* const list :
       {"/product/nimba/binary/tovalinnotice.xml", "/product/nimba/banner/tovalinbanner.xml"}) {
    for (const std::string& link : stringsOf(bodyOf(list), "link")) {
      const std::string origin = "http://127.0.0.1:8090";
      ASSERT_TRUE(link.starts_with(origin)) << link;
      const std::size_t mark = link.find('#');
      EXPECT_THAT(bodyOf(link.substr(origin.size(), mark - origin.size())),
                  HasSubstr("id=\"" + link.substr(mark + 1) + "\""));
    }
  }
}

TEST_F(Pages, AnalyticsPageRequestsBeaconSeenWithItsQuery) {
  const std::string page = bodyOf("/product/nimba/binary/GATovalin.html?category=a&a=b");
  EXPECT_THAT(page, HasSubstr("fetch(\"beacon_seen\" + location.search"));
}

TEST_F(Pages, BeaconIsLogged) {
  EXPECT_EQ(statusOf("/product/nimba/binary/beacon_seen?category=clickaction&clickaction=Visit%20Site"), 204);
  EXPECT_EQ(server_.readLine(), "beacon category=clickaction value=Visit Site");
  EXPECT_THAT(server_.readLine().value_or(""), EndsWith("204  0 bytes"));
}

TEST_F(Pages, IncompleteBeaconIsLogged) {
  EXPECT_EQ(statusOf("/product/nimba/binary/beacon_seen?category=a%0Ab&x=y"), 204);
  EXPECT_EQ(server_.readLine(), "beacon category=a\\x0ab value=");
}

TEST_F(Pages, AnswersAreNotCacheable) {
  const httplib::Result result = client_->Get(kVersionPath);
  ASSERT_TRUE(result);
  EXPECT_EQ(result->get_header_value("Cache-Control"), "no-store");
}

}  // namespace
