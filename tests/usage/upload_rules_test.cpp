#include "usage/upload_rules.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <string>

namespace {

using namespace std::string_literals;

std::tm at(const char* time) {
  std::tm result{};
  ::strptime(time, "%Y-%m-%d %H:%M:%S", &result);
  return result;
}

struct TickCase {
  const char* what;
  const char* stored;
  const char* now;
  bool waiting;
  UploadTick tick;
};

constexpr UploadTick nothing{};
constexpr UploadTick change{.dateChanged = true, .passIsDue = false};
constexpr UploadTick changeAndPass{.dateChanged = true, .passIsDue = true};
constexpr UploadTick pass{.dateChanged = false, .passIsDue = true};

class Tick : public testing::TestWithParam<TickCase> {};

TEST_P(Tick, MatchesTable) {
  const TickCase& row = GetParam();
  EXPECT_EQ(uploadTick(at(row.stored), at(row.now), row.waiting), row.tick);
}

INSTANTIATE_TEST_SUITE_P(
    Upload, Tick,
    testing::Values(
        TickCase{"SameDayNothingWaiting", "2024-03-07 09:05:05", "2024-03-07 10:05:05", false, nothing},
        TickCase{"SameDayMinuteIsNotTheSecond", "2024-03-07 00:00:30", "2024-03-07 00:29:30", true, nothing},
        TickCase{"SameDayMinuteIsTheSecond", "2024-03-07 00:00:30", "2024-03-07 00:30:30", true, pass},
        TickCase{"AnHourLater", "2024-03-07 00:00:30", "2024-03-07 01:30:31", true, pass},
        TickCase{"SecondZeroAtTheFullHour", "2024-03-07 00:00:00", "2024-03-07 01:00:00", true, pass},
        TickCase{"DateChangesAndTheMinuteIsAnother", "2024-03-06 23:59:30", "2024-03-07 00:00:30", false,
                 change},
        TickCase{"DateChangesAndTheMinuteIsTheSecond", "2024-03-06 12:00:00", "2024-03-07 00:00:00", false,
                 changeAndPass},
        TickCase{"DateChangesAfterSleepIntoTheMinute", "2024-03-06 12:00:00", "2024-03-07 08:17:17", false,
                 changeAndPass},
        TickCase{"OldSecondCountsNoMoreAfterAChange", "2024-03-06 23:59:05", "2024-03-07 00:05:30", true,
                 change},
        TickCase{"YearsEnd", "2024-12-31 23:59:30", "2025-01-01 00:00:30", false, change},
        TickCase{"EndOfFebruary", "2024-02-29 23:59:30", "2024-03-01 00:00:30", false, change},
        TickCase{"SameDayOfAnotherMonth", "2024-02-07 09:05:05", "2024-03-07 10:06:05", false, nothing},
        TickCase{"SameDayOfAnotherYear", "2023-03-07 09:05:05", "2024-03-07 10:06:05", false, nothing},
        TickCase{"ClockSetBackByADay", "2024-03-07 09:05:05", "2024-03-06 09:06:05", false, change},
        TickCase{"LeapSecondNeverMatches", "2016-12-31 23:59:60", "2016-12-31 23:00:00", true, nothing}),
    [](const auto& test) { return test.param.what; });

TEST(UploadTick, StoredLeapSecondMatchesNoMinute) {
  const std::tm stored = at("2016-12-31 23:59:60");
  for (int minute = 0; minute < 60; ++minute) {
    std::tm now = stored;
    now.tm_min = minute;
    EXPECT_EQ(uploadTick(stored, now, true), nothing) << minute;
  }
}

// Returns the number of upload passes in one night with a tick per minute, starting 30 s before `midnight`.
int passesInTheNightOf(std::time_t midnight, int hours) {
  std::tm stored{};
  std::time_t now = midnight - 30;
  localtime_r(&now, &stored);
  bool waiting = false;
  int passes = 0;
  for (int minute = 0; minute < hours * 60; ++minute) {
    now += 60;
    std::tm local{};
    localtime_r(&now, &local);
    const UploadTick tick = uploadTick(stored, local, waiting);
    if (tick.dateChanged) {
      stored = local;
      waiting = true;
    }
    if (tick.passIsDue) {
      waiting = false;
      ++passes;
    }
  }
  return passes;
}

// DST starts at 2:00 on 31 March and ends at 3:00 on 27 October 2024.
TEST(UploadTick, DstChangeMakesOnePass) {
  ::setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1);
  ::tzset();
  EXPECT_EQ(passesInTheNightOf(1711839600, 6), 1);
  EXPECT_EQ(passesInTheNightOf(1729980000, 6), 1);
}

// DST changes at midnight in this time zone. In spring midnight is skipped; in autumn the clock returns from
// 0:00 to 23:00, so that the date changes back and forth.
TEST(UploadTick, DstChangeAtMidnightMakesOnePass) {
  ::setenv("TZ", "XST3XDT,M10.3.0/0,M2.3.0/0", 1);
  ::tzset();
  EXPECT_EQ(passesInTheNightOf(1729393200, 6), 1);
  EXPECT_EQ(passesInTheNightOf(1708221600, 6), 1);
}

TEST(UploadAddress, IsHttpForAnyOrigin) {
  EXPECT_EQ(uploadAddress("https://www.tovalin.example"),
            "http://www.tovalin.example/product/nimba/userlog/postdata.php");
  EXPECT_EQ(uploadAddress("http://127.0.0.1:8090"),
            "http://127.0.0.1:8090/product/nimba/userlog/postdata.php");
  EXPECT_EQ(uploadAddress("tovalin.example"), "http://tovalin.example/product/nimba/userlog/postdata.php");
}

TEST(UploadForm, AddsExactly241BytesAroundFile) {
  const std::string boundary = "---------------------------14737809831466499882746641449";
  ASSERT_EQ(boundary.size(), 56u);
  EXPECT_EQ(uploadContentType(), "Content-Type: multipart/form-data; boundary=" + boundary);
  EXPECT_EQ(uploadBodyHead(),
            "\r\n--" + boundary +
                "\r\nContent-Disposition: form-data; name=\"userdata\"; filename=\"Tovalin.dat\"\r\n"
                "Content-Type: application/octet-stream\r\n\r\n");
  EXPECT_EQ(uploadBodyTail(), "\r\n--" + boundary + "--\r\n");
  EXPECT_EQ(uploadBodyHead().size() + uploadBodyTail().size(), 241u);
}

TEST(UploadRequest, HasTimeoutOfOneMinuteAndReplyLimitOf16Mebibytes) {
  const UploadForm form;
  const std::string contents = "bytes";
  const auto request = uploadRequest("https://www.tovalin.example", form, contents);
  EXPECT_EQ(request.method, "POST");
  EXPECT_EQ(request.url, "http://www.tovalin.example/product/nimba/userlog/postdata.php");
  EXPECT_EQ(request.headers, std::vector{uploadContentType()});
  EXPECT_EQ(request.timeoutInterval, std::chrono::seconds(60));
  EXPECT_EQ(request.maximumReplySize, 16u * 1024 * 1024);
  EXPECT_EQ(request.redirectSchemes, "http");
  EXPECT_EQ(request.cachePolicy, platform::UrlRequest::CachePolicy::UseProtocol);
  ASSERT_EQ(request.body.size(), 3u);
  EXPECT_EQ(request.body[1].data(), contents.data()) << "the contents were copied";
}

TEST(Reply, Utf8IsAccepted) {
  for (const std::string& text :
       {""s, "OK"s, "\0"s, "\u00e9\u20ac\U0001f600"s,
        "\xef\xbb\xbf"
        "OK"s,
        "\x7f"s, "\xed\x9f\xbf"s, "\xee\x80\x80"s, "\xef\xbf\xbf"s, "\xf4\x8f\xbf\xbf"s})
    EXPECT_TRUE(isUtf8(text)) << testing::PrintToString(text);
}

TEST(Reply, InvalidUtf8IsRejected) {
  for (const std::string& bytes :
       {"\xff"s, "OK\xfe"s, "\x80"s, "\xc3"s, "\xe2\x82"s, "\xf0\x9f\x98"s, "\xc0\x80"s, "\xc1\xbf"s,
        "\xe0\x80\xaf"s, "\xe0\x9f\xbf"s, "\xf0\x80\x80\xaf"s, "\xf0\x8f\xbf\xbf"s, "\xed\xa0\x80"s,
        "\xed\xbf\xbf"s, "\xf4\x90\x80\x80"s, "\xf5\x80\x80\x80"s, "\xf8\x88\x80\x80\x80"s, "\xc3\x28"s})
    EXPECT_FALSE(isUtf8(bytes)) << testing::PrintToString(bytes);
}

}  // namespace
