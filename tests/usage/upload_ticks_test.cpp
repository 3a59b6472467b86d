#include <gmock/gmock.h>

#include <thread>

#include "tests/usage/upload_fixture.h"

namespace settings_test {
namespace {

using testing::ElementsAre;

TEST_F(UploadPass, LaunchThreadClearsFlag) {
  delegate_.bTvlDataUpload = true;
  write(inFolder(kYesterday), "bytes");
  errorsOf([this] { delegate_.TvlDataFileUploadThread(); });
  EXPECT_FALSE(delegate_.bTvlDataUpload);
  EXPECT_THAT(left(), IsEmpty());
}

TEST_F(UploadPass, LaunchThreadAndTicksShareFlag) {
  delegate_.strStartTime = record_parts::clockAt("2024-03-06 23:59:05");
  std::thread atLaunch([this] {
    for (int i = 0; i < 200; ++i) delegate_.TvlDataFileUploadThread();
  });
  for (int i = 0; i < 200; ++i) delegate_.TvlCheckDataUpload();
  atLaunch.join();
  EXPECT_THAT(left(), ElementsAre(kTodaysName));
}

// Simulates the 60 s ticks with the fake clock.
class UploadTicks : public UploadPass {
 protected:
  void launchAt(const char* time) {
    record_parts::setClock(time);
    TvlWriteStartToFile();
    delegate_.strStartTime = record_parts::clockAt(time);
  }
  void tickAt(const char* time) {
    record_parts::setClock(time);
    errorsOf([this] { delegate_.TvlCheckDataUpload(); });
  }
};

TEST_F(UploadTicks, LaunchBeforeMidnightUploadsInMinuteOfItsSecond) {
  launchAt("2024-03-06 23:59:30");
  tickAt("2024-03-07 00:00:30");
  EXPECT_EQ(contentsOf(inFolder(kTodaysName)), kHeader);
  EXPECT_TRUE(delegate_.bTvlDataUpload);
  EXPECT_EQ(delegate_.strStartTime.tm_sec, 30);
  tickAt("2024-03-07 00:29:30");
  EXPECT_THAT(server_.requests(), IsEmpty());
  tickAt("2024-03-07 00:30:30");
  ASSERT_EQ(server_.requests().size(), 1u);
  EXPECT_THAT(server_.requests()[0].body, testing::HasSubstr("TVLD2024-03-06"));
  EXPECT_FALSE(delegate_.bTvlDataUpload);
  EXPECT_THAT(left(), ElementsAre(kTodaysName));
  tickAt("2024-03-07 01:30:30");
  EXPECT_EQ(server_.requests().size(), 1u);
}

TEST_F(UploadTicks, MissedMinuteIsRetriedNextHour) {
  launchAt("2024-03-06 23:59:30");
  tickAt("2024-03-07 00:00:30");
  tickAt("2024-03-07 07:12:30");
  EXPECT_TRUE(delegate_.bTvlDataUpload);
  tickAt("2024-03-07 07:30:30");
  EXPECT_EQ(server_.requests().size(), 1u);
}

TEST_F(UploadTicks, FailedPassIsNotRepeatedBeforeNextDay) {
  launchAt("2024-03-06 23:59:30");
  record_parts::setServers(kClosedServer, kClosedServer);
  tickAt("2024-03-07 00:00:00");
  EXPECT_FALSE(delegate_.bTvlDataUpload);
  record_parts::setServers(server_.origin(), kClosedServer);
  tickAt("2024-03-07 01:00:00");
  EXPECT_THAT(server_.requests(), IsEmpty());
  tickAt("2024-03-08 00:00:00");
  EXPECT_EQ(server_.requests().size(), 2u);
  EXPECT_THAT(left(), ElementsAre("Tovalin_2024_03_08.dat"));
}

TEST_F(UploadTicks, TimeZoneChangeChangesDate) {
  launchAt("2024-03-06 20:59:30");
  record_parts::changeZoneTo("2024-03-07 05:00:30");
  errorsOf([this] { delegate_.TvlCheckDataUpload(); });
  EXPECT_TRUE(delegate_.bTvlDataUpload);
  EXPECT_EQ(delegate_.strStartTime.tm_mday, 7);
  EXPECT_EQ(contentsOf(inFolder(kTodaysName)), kHeader);
}

TEST_F(UploadTicks, WithoutFlagTickMakesNoPass) {
  launchAt("2024-03-07 09:05:06");
  write(inFolder(kYesterday), "bytes");
  tickAt("2024-03-07 10:06:06");
  EXPECT_THAT(server_.requests(), IsEmpty());
}

}  // namespace
}  // namespace settings_test
