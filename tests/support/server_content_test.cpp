#include "support/server_content.h"

#include <gtest/gtest.h>

#include <array>
#include <map>
#include <span>

namespace {

using platform::PropertyList;

PropertyList list(const std::string& content) {
  const auto parsed = platform::parsePropertyList(std::as_bytes(std::span(content)));
  EXPECT_TRUE(parsed.has_value()) << content;
  return parsed.value_or(PropertyList());
}

TEST(Notice, ReturnsTwoEntriesInOrder) {
  const auto entries =
      noticeEntries(list("{ notice_2 = { subject = B; link = \"http://b\"; other = 1; };"
                         "  notice_1 = { subject = A; link = \"http://a\"; }; more = (); }"));
  ASSERT_TRUE(entries.has_value());
  EXPECT_EQ((*entries)[0].subject, "A");
  EXPECT_EQ((*entries)[0].link, "http://a");
  EXPECT_EQ((*entries)[1].subject, "B");
  EXPECT_EQ((*entries)[1].link, "http://b");
}

TEST(Notice, WithoutTwoCompleteEntriesReturnsNullopt) {
  for (const char* incomplete :
       {"{}", "()", "text", "{ notice_1 = { subject = A; link = L; }; }",
        "{ notice_2 = { subject = A; link = L; }; }",
        "{ notice_1 = { subject = A; }; notice_2 = { subject = B; link = L; }; }",
        "{ notice_1 = { subject = A; link = L; }; notice_2 = { link = L; }; }",
        "{ notice_1 = { subject = (); link = L; }; notice_2 = { subject = B; link = L; }; }",
        "{ notice_1 = text; notice_2 = { subject = B; link = L; }; }", "( { subject = A; link = L; } )"})
    EXPECT_FALSE(noticeEntries(list(incomplete)).has_value()) << incomplete;
}

std::string repeated(const std::string& text, int times) {
  std::string all;
  for (int i = 0; i < times; ++i) all += text;
  return all;
}

TEST(BannerLabel, NamesAddressFromHostOnIfItMayBeOpened) {
  EXPECT_EQ(bannerLabel("http://banner.example/red"), "Banner, opens banner.example/red");
  EXPECT_EQ(bannerLabel("https://banner.example"), "Banner, opens banner.example");
  EXPECT_EQ(bannerLabel("https://bank.example:1@banner.example/@?a=//b"),
            "Banner, opens banner.example/@?a=//b");
  EXPECT_EQ(bannerLabel("http://banner.example/" + repeated("x", 200)),
            "Banner, opens banner.example/" + repeated("x", 100 - 15));
  for (const char* other : {"", "file:///etc/passwd", "javascript:alert(1)", "no address"})
    EXPECT_EQ(bannerLabel(other), "Banner") << other;
}

TEST(Subject, IsLimitedTo500Characters) {
  EXPECT_EQ(shownSubject("News"), "News");
  EXPECT_EQ(shownSubject(""), "");
  EXPECT_EQ(shownSubject(repeated("x", 500)), repeated("x", 500));
  EXPECT_EQ(shownSubject(repeated("x", 501)), repeated("x", 500));
  EXPECT_EQ(shownSubject(repeated("e\u0301", 501)), repeated("e\u0301", 500));
}

TEST(Subject, OverlongCharacterIsTruncatedTo2000CodePoints) {
  EXPECT_EQ(shownSubject("e" + repeated("\u0301", 450'000)), "e" + repeated("\u0301", 1999));
}

const char* const three =
    "( { file_name = a; link = A; }, { file_name = b; link = B; }, { file_name = c; link = C; } )";

TEST(Banner, IsChosenByRemainder) {
  const PropertyList banners = list(three);
  EXPECT_EQ(chosenBanner(banners, 0)->fileName, "a");
  EXPECT_EQ(chosenBanner(banners, 1)->link, "B");
  EXPECT_EQ(chosenBanner(banners, 2)->fileName, "c");
  EXPECT_EQ(chosenBanner(banners, 3)->fileName, "a");
  EXPECT_EQ(chosenBanner(banners, 0xffffffff)->fileName, "a");
  EXPECT_EQ(chosenBanner(banners, 0xfffffffe)->fileName, "c");
}

TEST(Banner, SingleBannerIsAlwaysChosen) {
  const PropertyList banners = list("( { file_name = a; link = A; } )");
  for (const std::uint32_t random : {0u, 1u, 0x80000000u, 0xffffffffu})
    EXPECT_EQ(chosenBanner(banners, random)->fileName, "a");
}

TEST(Banner, ReturnsNulloptForInvalidList) {
  for (const char* none :
       {"()", "{}", "text", "{ file_name = a; link = A; }", "( text )", "( ( ) )", "( { file_name = a; } )",
        "( { link = A; } )", "( { file_name = (); link = A; } )"})
    EXPECT_FALSE(chosenBanner(list(none), 7).has_value()) << none;
}

TEST(Banner, IncompleteEntryIsRefusedOnlyIfChosen) {
  const PropertyList banners = list("( { file_name = a; link = A; }, { link = B; } )");
  EXPECT_TRUE(chosenBanner(banners, 0).has_value());
  EXPECT_FALSE(chosenBanner(banners, 1).has_value());
}

TEST(BannerPath, IsFileInBannerFolder) {
  EXPECT_EQ(bannerPath({.fileName = "a.png", .link = ""}), "/product/nimba/banner/a.png");
  EXPECT_EQ(bannerPath({.fileName = "a%20b.png?c", .link = ""}), "/product/nimba/banner/a%20b.png?c");
}

TEST(BannerPath, EmptyNameIsBannerFolder) {
  EXPECT_EQ(bannerPath({.fileName = "", .link = ""}), "/product/nimba/banner/");
}

TEST(BannerPath, InvalidNameReturnsNullopt) {
  for (const char* name : {"a b.png", "a\r\nHost: b", "%", "\xc3\xa4.png", "a\"b"})
    EXPECT_FALSE(bannerPath({.fileName = name, .link = ""}).has_value()) << name;
}

}  // namespace
