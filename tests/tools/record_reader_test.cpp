#include "tools/tvldump/record_reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

#include "tests/harness/usage_sample.h"

namespace {

using namespace test_support;
using testing::ElementsAreArray;
using tools::Damage;
using tools::Item;

const std::vector<std::size_t> kItemOffsets = {0, 14, 54, 56, 71, 107, 128, 153, 180, 194, 205};

struct Reading {
  std::vector<Item> items;
  std::optional<Damage> damage;

  [[nodiscard]] std::vector<std::size_t> offsets() const {
    std::vector<std::size_t> offsets;
    for (const Item& item : items) offsets.push_back(item.offset);
    return offsets;
  }
  // Returns the offset of the damage, or -1.
  [[nodiscard]] long damagedAt() const { return damage ? static_cast<long>(damage->offset) : -1; }
};

// The vector has exactly the size of the file, so that AddressSanitizer detects a read beyond the end.
Reading readingOf(const std::vector<char>& bytes) {
  tools::RecordReader reader(bytes);
  Reading reading;
  while (const auto item = reader.next()) reading.items.push_back(*item);
  reading.damage = reader.damage();
  EXPECT_FALSE(reader.next()) << "an item was returned after the end";
  return reading;
}

// The items of the result refer to freed memory; only their offsets may be used.
Reading readingOf(const std::string& bytes) {
  return readingOf(std::vector<char>(bytes.begin(), bytes.end()));
}

long damagedAt(const std::string& bytes) {
  return readingOf(bytes).damagedAt();
}

long damagedAt(std::string bytes, std::size_t offset, char byte) {
  bytes[offset] = byte;
  return damagedAt(bytes);
}

template <typename T>
T at(const Reading& reading, std::size_t index) {
  return std::get<T>(reading.items.at(index).content);
}

TEST(RecordReader, ReadsEveryKindOfItem) {
  const std::vector<char> bytes(kUsageFile.begin(), kUsageFile.end());
  const Reading reading = readingOf(bytes);
  EXPECT_FALSE(reading.damage);
  ASSERT_THAT(reading.offsets(), ElementsAreArray(kItemOffsets));
  EXPECT_EQ(at<tools::Day>(reading, 0).date, "2024-03-07");
  EXPECT_EQ(at<tools::Identifier>(reading, 1).text, "{00112233-4455-6677-8899-AABBCCDDEEFF}");
  EXPECT_EQ(at<tools::OperatingSystem>(reading, 2).code, 68);
  EXPECT_EQ(at<tools::Version>(reading, 3).bundle, "1.4.2");
  EXPECT_EQ(at<tools::Version>(reading, 3).fixed, "1.0.0.0");
  EXPECT_EQ(at<tools::Start>(reading, 4).version.bundle, "1.4.2");
  EXPECT_EQ(at<tools::Start>(reading, 4).time, "2024-03-07 09:05:00");
  EXPECT_EQ(at<tools::End>(reading, 5).time, "2024-03-07 09:05:01");
  EXPECT_EQ(at<tools::DeviceEvent>(reading, 6).dataCommand, 3u);
  EXPECT_EQ(at<tools::DeviceEvent>(reading, 6).time, "2024-03-07 09:05:02");
  EXPECT_EQ(at<tools::DeviceEvent>(reading, 6).name, "Pad");
  EXPECT_EQ(at<tools::DeviceEvent>(reading, 7).dataCommand, 4u);
  EXPECT_EQ(at<tools::DeviceEvent>(reading, 7).name, "a\"\n\xC3\xA9");
  EXPECT_EQ(at<tools::Transfer>(reading, 8).kind, 1u);
  EXPECT_EQ(at<tools::Transfer>(reading, 8).size, 0x0807060504030201u);
  EXPECT_EQ(at<tools::Transfer>(reading, 8).name, "jpg");
  EXPECT_EQ(at<tools::Transfer>(reading, 9).kind, 2u);
  EXPECT_EQ(at<tools::Transfer>(reading, 9).size, 0xFFFFFFFFFFFFFFFFu);
  EXPECT_EQ(at<tools::Transfer>(reading, 9).name, "");
  EXPECT_EQ(at<tools::Transfer>(reading, 10).size, 0x8000000000000000u);
}

TEST(RecordReader, HeaderAloneIsComplete) {
  EXPECT_EQ(damagedAt(kUsageHeader), -1);
}

TEST(RecordReader, HeaderMayHaveEmptyIdentifierAndVersion) {
  EXPECT_EQ(damagedAt("TVLD2024-03-07\x00\x02{}\x01\x40\x01\x00\x07"
                      "1.0.0.0"s),
            -1);
}

TEST(RecordReader, EmptyFileIsDamagedAtOffsetZero) {
  const Reading reading = readingOf(""s);
  ASSERT_TRUE(reading.damage);
  EXPECT_EQ(reading.damage->offset, 0u);
  EXPECT_EQ(reading.damage->reason, "the file is empty");
}

TEST(RecordReader, OtherFileIsDamagedAtFirstDifference) {
  EXPECT_EQ(damagedAt("bplist00"), 0);
  EXPECT_EQ(damagedAt("TVXD2024-03-07"), 2);
  EXPECT_EQ(damagedAt(std::string(5000, '\0')), 0);
}

TEST(RecordReader, TruncatedFileIsDamagedAtEndAndReturnsItemsBefore) {
  for (std::size_t length = 1; length < kUsageFile.size(); ++length) {
    const Reading reading = readingOf(kUsageFile.substr(0, length));
    const auto next = std::ranges::lower_bound(kItemOffsets, length);
    const bool recordBegins = length >= kUsageHeader.size() && next != kItemOffsets.end() && *next == length;
    const auto whole = next - kItemOffsets.begin() - (next == kItemOffsets.end() || *next != length ? 1 : 0);
    EXPECT_EQ(reading.damagedAt(), recordBegins ? -1 : static_cast<long>(length));
    EXPECT_EQ(reading.offsets(), std::vector(kItemOffsets.begin(), kItemOffsets.begin() + whole)) << length;
  }
}

TEST(RecordReader, DamageIsNotBeforeChangedByte) {
  for (std::size_t place = 0; place < kUsageFile.size(); ++place) {
    for (int byte = 0; byte < 256; ++byte) {
      std::string bytes = kUsageFile;
      bytes[place] = static_cast<char>(byte);
      const Reading reading = readingOf(bytes);
      const auto before = std::ranges::upper_bound(kItemOffsets, place) - kItemOffsets.begin();
      ASSERT_GE(reading.items.size() + 1, static_cast<std::size_t>(before)) << place << " " << byte;
      if (reading.damage) {
        ASSERT_GE(reading.damage->offset, place) << byte;
      }
    }
  }
}

TEST(RecordReader, InvalidByteIsReportedAtItsOffset) {
  EXPECT_EQ(damagedAt(kUsageFile, 14, '\x01'), 14) << "no identifier";
  EXPECT_EQ(damagedAt(kUsageFile, 15, '\x01'), 15) << "identifier too short for its braces";
  EXPECT_EQ(damagedAt(kUsageFile, 15, '\x32'), 15) << "identifier too long";
  EXPECT_EQ(damagedAt(kUsageFile, 16, '('), 16) << "opening brace";
  EXPECT_EQ(damagedAt(kUsageFile, 53, ')'), 53) << "closing brace";
  EXPECT_EQ(damagedAt(kUsageFile, 54, '\x02'), 54) << "no operating system";
  EXPECT_EQ(damagedAt(kUsageFile, 55, '\x3F'), 55) << "code below the lowest";
  EXPECT_EQ(damagedAt(kUsageFile, 55, '\x45'), 55) << "code above the highest";
  EXPECT_EQ(damagedAt(kUsageFile, 56, '\x00'), 56) << "no version";
  EXPECT_EQ(damagedAt(kUsageFile, 57, '\x10'), 57) << "version too long";
  EXPECT_EQ(damagedAt(kUsageFile, 63, '\x08'), 63) << "length of the fixed version";
  EXPECT_EQ(damagedAt(kUsageFile, 70, '1'), 70) << "fixed version";
  EXPECT_EQ(damagedAt(kUsageFile, 86, '\x03'), 86) << "start without a time";
  EXPECT_EQ(damagedAt(kUsageFile, 87, '\x12'), 87) << "length of a time";
  EXPECT_EQ(damagedAt(kUsageFile, 107, '\x08'), 107) << "unknown record";
  EXPECT_EQ(damagedAt(kUsageFile, 107, '\x00'), 107) << "second identifier";
  EXPECT_EQ(damagedAt(kUsageFile, 149, '\x40'), 149) << "device name too long";
  EXPECT_EQ(damagedAt(kUsageFile, 181, '\x04'), 181) << "width of a size";
  EXPECT_EQ(damagedAt(kUsageFile, 190, '\x0A'), 190) << "transfer's name too long";
}

TEST(RecordReader, TextsOfMaximumLengthAreRead) {
  EXPECT_EQ(damagedAt("TVLD2024-03-07\x00\x31{"s + std::string(47, 'i') + "}\x01\x40\x01\x0F" +
                      std::string(15, 'v') + "\x07" + "1.0.0.0"),
            -1);
  EXPECT_EQ(damagedAt(kUsageHeader + "\x04\x13" + "2024-03-07 09:05:00\x3F" + std::string(63, 'n')), -1);
  EXPECT_EQ(damagedAt(kUsageHeader + "\x06\x08" + "12345678\x09" + "123456789"), -1);
}

TEST(RecordReader, StartTimeWithoutVersionIsDamageAtItsCode) {
  const Reading reading = readingOf(kUsageHeader + "\x02\x13" + "2024-03-07 09:05:00");
  EXPECT_EQ(reading.items.size(), 4u);
  ASSERT_TRUE(reading.damage);
  EXPECT_EQ(reading.damage->offset, kUsageHeader.size());
  EXPECT_EQ(reading.damage->reason, "the time of a start without its version");
}

TEST(RecordReader, SecondHeaderIsDamage) {
  EXPECT_EQ(damagedAt(kUsageHeader + kUsageHeader), static_cast<long>(kUsageHeader.size()));
}

struct TimeCase {
  const char* name;
  const char* time;
  long damage;  // offset in the text, -1: none
};

void PrintTo(const TimeCase& value, std::ostream* stream) {
  *stream << '"' << value.time << '"';
}

class RecordTimes : public testing::TestWithParam<TimeCase> {};

TEST_P(RecordTimes, MustBeValidDatesAndTimes) {
  const std::size_t before = kUsageHeader.size() + 2;
  const long at = damagedAt(kUsageHeader + "\x03\x13" + GetParam().time);
  EXPECT_EQ(at < 0 ? at : at - static_cast<long>(before), GetParam().damage);
}

INSTANTIATE_TEST_SUITE_P(RecordReader, RecordTimes,
                         testing::Values(TimeCase{"LastOfAYear", "9999-12-31 23:59:59", -1},
                                         TimeCase{"FirstOfAYear", "0000-01-01 00:00:00", -1},
                                         TimeCase{"LeapSecond", "2016-12-31 23:59:60", -1},
                                         TimeCase{"SecondBeyondALeapSecond", "2016-12-31 23:59:61", 18},
                                         TimeCase{"LeapDay", "2024-02-29 00:00:00", -1},
                                         TimeCase{"LeapDayOfNoLeapYear", "2023-02-29 00:00:00", 9},
                                         TimeCase{"LeapDayOfACentury", "1900-02-29 00:00:00", 9},
                                         TimeCase{"LeapDayOfAFourthCentury", "2000-02-29 00:00:00", -1},
                                         TimeCase{"ThirtyFirstOfApril", "2024-04-31 00:00:00", 9},
                                         TimeCase{"DayZero", "2024-04-00 00:00:00", 9},
                                         TimeCase{"MonthZero", "2024-00-01 00:00:00", 6},
                                         TimeCase{"MonthThirteen", "2024-13-01 00:00:00", 6},
                                         TimeCase{"MonthTwenty", "2024-20-01 00:00:00", 5},
                                         TimeCase{"HourTwentyFour", "2024-03-07 24:00:00", 12},
                                         TimeCase{"MinuteSixty", "2024-03-07 00:60:00", 14},
                                         TimeCase{"NoDigit", "2024-0x-07 00:00:00", 6},
                                         TimeCase{"SlashesInTheDate", "2024/03/07 00:00:00", 4},
                                         TimeCase{"LetterBetweenDateAndTime", "2024-03-07T00:00:00", 10},
                                         TimeCase{"PointsInTheTime", "2024-03-07 00.00.00", 13}),
                         [](const auto& test) { return test.param.name; });

TEST(RecordReader, DayOfHeaderMustBeValidDate) {
  EXPECT_EQ(damagedAt("TVLD2024-02-30" + kUsageHeader.substr(14)), 12);
  EXPECT_EQ(damagedAt("TVLD2024_03_07" + kUsageHeader.substr(14)), 8);
}

}  // namespace
