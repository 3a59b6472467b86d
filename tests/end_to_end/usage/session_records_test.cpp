#include "tests/end_to_end/usage/session_records.h"

#include <gtest/gtest.h>

#include <ctime>
#include <string>

#include "usage/record_bytes.h"

namespace {

std::tm dayOfMarch2024(int day) {
  std::tm date{};
  date.tm_year = 124;
  date.tm_mon = 2;
  date.tm_mday = day;
  return date;
}

// Returns a file of the sixth with a quit record of `day`.
std::string fileWithEndOn(int day) {
  return headerBytes(dayOfMarch2024(6), "00112233-4455-6677-8899-AABBCCDDEEFF", 68, "1.0.0") +
         quitRecord(dayOfMarch2024(day));
}

TEST(SessionRecords, RecordOfSameDayIsCounted) {
  RecordCounts counts;
  EXPECT_TRUE(countRecords(fileWithEndOn(6), counts));
  EXPECT_EQ(counts["end"], 1);
}

TEST(SessionRecords, RecordOfOtherDayIsRejected) {
  RecordCounts counts;
  EXPECT_FALSE(countRecords(fileWithEndOn(7), counts));
}

TEST(SessionRecords, TruncatedRecordIsRejected) {
  RecordCounts counts;
  std::string file = fileWithEndOn(6);
  file.pop_back();
  EXPECT_FALSE(countRecords(file, counts));
}

}  // namespace
