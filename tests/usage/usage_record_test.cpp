#include "tests/usage/record_fixture.h"

namespace settings_test {
namespace {

using record_parts::bundleVersion;
using record_parts::setClock;

const std::string kStart =
    "\x01\x05"
    "1.4.2\x07"
    "1.0.0.0"
    "\x02\x13"
    "2024-03-07 09:05:00"s;

TEST_F(Records, FirstWriteOfDayIsHeaderAndRecord) {
  EXPECT_EQ(errorsOf(TvlWriteStartToFile), "");
  EXPECT_EQ(contentsOf(kToday), kHeader + kStart);
  EXPECT_EQ(kHeader.size(), 66u + 5);
  EXPECT_EQ(kStart.size(), 31u + 5);
}

TEST_F(Records, SecondWriteOfDayAppendsRecordOnly) {
  TvlWriteStartToFile();
  EXPECT_EQ(errorsOf(TvlWriteQuitToFile), "");
  TvlWriteQuitToFile();
  EXPECT_EQ(contentsOf(kToday), kHeader + kStart + kQuit + kQuit);
}

TEST_F(Records, EachKindOfRecordWritesHeaderIfFirst) {
  TvlWriteQuitToFile();
  EXPECT_EQ(contentsOf(kToday), kHeader + kQuit);
  fs::remove(kToday);
  TvlGetCollectData(deviceEvent(3, ""));
  EXPECT_THAT(contentsOf(kToday), StartsWith(kHeader + "\x04"));
  fs::remove(kToday);
  TvlGetCollectData(transfers({{1, "12345678", ""}}));
  EXPECT_THAT(contentsOf(kToday), StartsWith(kHeader + "\x06"));
}

TEST_F(Records, OpeningFileOfDayWritesHeader) {
  UsageFile file;
  EXPECT_TRUE(TvlDataOpenFile(file));
  EXPECT_EQ(contentsOf(kToday), kHeader);
}

TEST_F(Records, FirstRecordCreatesMissingFolder) {
  fs::remove_all(kSupport);
  EXPECT_EQ(errorsOf(TvlWriteStartToFile), "");
  const std::string identifier = contentsOf("/tmp/support/Tovalin/TovalinUUID.txt");
  ASSERT_EQ(identifier.size(), 36u);
  EXPECT_EQ(contentsOf(kToday), "TVLD2024-03-07\x00\x26{"s + identifier + "}" + kHeader.substr(54) + kStart);
}

TEST_F(Records, MissingIdentifierLeavesEmptyBraces) {
  fs::remove("/tmp/support/Tovalin/TovalinUUID.txt");
  fs::create_directory("/tmp/support/Tovalin/TovalinUUID.txt");
  TvlWriteQuitToFile();
  EXPECT_EQ(contentsOf(kToday), "TVLD2024-03-07\x00\x02{}"s + kHeader.substr(54) + kQuit);
}

TEST_F(Records, MissingVersionIsZeroAndLoggedByEachWriter) {
  bundleVersion.reset();
  TvlWriteStartToFile();
  const std::string version =
      "\x01\x05"
      "0.0.0\x07"
      "1.0.0.0"s;
  EXPECT_EQ(contentsOf(kToday), kHeader.substr(0, 56) + version + version + kStart.substr(15));
  EXPECT_THAT(log_.messages(),
              testing::ElementsAre(error(" 0etBundleVersion fail"), error(" 0etBundleVersion fail")));
}

TEST_F(Records, EmptyVersionHasLengthZero) {
  bundleVersion = "";
  TvlWriteStartToFile();
  const std::string version =
      "\x01\x00\x07"
      "1.0.0.0"s;
  EXPECT_EQ(contentsOf(kToday), kHeader.substr(0, 56) + version + version + kStart.substr(15));
}

TEST_F(Records, VersionIsTruncatedToFifteenCharacters) {
  bundleVersion = "1234567890.23456";
  TvlWriteStartToFile();
  EXPECT_THAT(contentsOf(kToday), testing::EndsWith("\x01\x0f"
                                                    "1234567890.2345\x07"
                                                    "1.0.0.0\x02\x13"
                                                    "2024-03-07 09:05:00"s));
}

struct DeviceCase {
  const char* what;
  std::uint32_t command;
  std::string name;
  std::string record;
};

class DeviceEvents : public Records, public testing::WithParamInterface<DeviceCase> {};

TEST_P(DeviceEvents, AreWrittenVerbatim) {
  EXPECT_EQ(errorsOf([] { TvlGetCollectData(deviceEvent(GetParam().command, GetParam().name)); }), "");
  EXPECT_EQ(contentsOf(kToday), kHeader + GetParam().record);
}

INSTANTIATE_TEST_SUITE_P(Records, DeviceEvents,
                         testing::Values(DeviceCase{"Command3", 3, "Pad",
                                                    "\x04\x13"
                                                    "2024-03-07 09:05:00\x03Pad"s},
                                         DeviceCase{"Command4", 4, "Pad",
                                                    "\x05\x13"
                                                    "2024-03-07 09:05:00\x03Pad"s},
                                         DeviceCase{"NoName", 3, "",
                                                    "\x04\x13"
                                                    "2024-03-07 09:05:00\x07Unknown"s},
                                         DeviceCase{"NameEndsAtItsNul", 4, "a\0bcd"s,
                                                    "\x05\x13"
                                                    "2024-03-07 09:05:00\x01"
                                                    "a"s},
                                         DeviceCase{"BytesThatAreNoText", 3, "\xff\xc0\x01\x80",
                                                    "\x04\x13"
                                                    "2024-03-07 09:05:00\x04\xff\xc0\x01\x80"s},
                                         DeviceCase{"LongestName", 3, std::string(63, 'n'),
                                                    "\x04\x13"
                                                    "2024-03-07 09:05:00\x3f"s +
                                                        std::string(63, 'n')},
                                         DeviceCase{"NameBeyondItsField", 3, std::string(64, 'n'),
                                                    "\x04\x13"
                                                    "2024-03-07 09:05:00\x3f"s +
                                                        std::string(63, 'n')},
                                         DeviceCase{"NameToTheEndOfTheMessage", 4, std::string(1010, 'n'),
                                                    "\x05\x13"
                                                    "2024-03-07 09:05:00\x3f"s +
                                                        std::string(63, 'n')}),
                         [](const auto& test) { return test.param.what; });

class UnknownCommands : public Records, public testing::WithParamInterface<std::uint32_t> {};

TEST_P(UnknownCommands, WriteNothing) {
  TvlGetCollectData(Message(GetParam()).put(14, "Pad"));
  EXPECT_FALSE(fs::exists(kToday));
  EXPECT_THAT(log_.messages(), testing::ElementsAre(error("unknown command")));
}

INSTANTIATE_TEST_SUITE_P(Records, UnknownCommands,
                         testing::Values(1u, 2u, 5u, 0x03000000u, 0x100u, 0xffffffffu));

TEST_F(Records, DeviceEventOfOtherCommandIsNotWritten) {
  for (const std::uint32_t command : {0u, 1u, 2u, 5u}) TvlWriteMountDataToFile(deviceEvent(command, "Pad"));
  EXPECT_FALSE(fs::exists(kToday));
}

TEST_F(Records, TransfersOfBothKindsInOneMessageAreWritten) {
  TvlGetCollectData(transfers(
      {{1, "\x01\x02\x03\x04\x05\x06\x07\x08", "jpg"}, {2, "\x00\x00\x00\x80\xff\x00\x00\x00"s, "mp4"}}));
  EXPECT_EQ(contentsOf(kToday), kHeader +
                                    "\x06\x08\x01\x02\x03\x04\x05\x06\x07\x08\x03jpg"
                                    "\x07\x08\x00\x00\x00\x80\xff\x00\x00\x00\x03mp4"s);
}

TEST_F(Records, EntryOfUnknownKindHasCodeOfPreviousEntry) {
  const std::string size = "12345678";
  TvlGetCollectData(
      transfers({{2, size, "a"}, {3, size, "b"}, {0xffffffff, size, "c"}, {1, size, "d"}, {0, size, "e"}}));
  EXPECT_EQ(contentsOf(kToday), kHeader +
                                    "\x07\x08"
                                    "12345678\x01"
                                    "a"
                                    "\x07\x08"
                                    "12345678\x01"
                                    "b"
                                    "\x07\x08"
                                    "12345678\x01"
                                    "c"
                                    "\x06\x08"
                                    "12345678\x01"
                                    "d"
                                    "\x06\x08"
                                    "12345678\x01"
                                    "e"s);
}

TEST_F(Records, CodeIsNotCarriedOverToNextMessage) {
  TvlGetCollectData(transfers({{2, "12345678", "a"}}));
  TvlGetCollectData(transfers({{9, "12345678", "b"}}));
  EXPECT_THAT(contentsOf(kToday), testing::EndsWith("\x06\x08"
                                                    "12345678\x01"
                                                    "b"s));
}

TEST_F(Records, EntryWithoutNameHasElevenBytes) {
  TvlGetCollectData(transfers({{1, "12345678", ""}}));
  EXPECT_EQ(contentsOf(kToday), kHeader +
                                    "\x06\x08"
                                    "12345678\x00"s);
}

TEST_F(Records, EntryNameIsLimitedToItsField) {
  Message message = transfers({{1, "12345678", ""}, {1, "12345678", "next"}});
  message.put(18 + 12, "0123456789");
  TvlGetCollectData(message);
  EXPECT_EQ(contentsOf(kToday), kHeader +
                                    "\x06\x08"
                                    "12345678\x09"
                                    "012345678"
                                    "\x06\x08"
                                    "12345678\x04next"s);
}

TEST_F(Records, ThirtyEntriesAreAllWritten) {
  const std::vector<Entry> entries(30, {1, "12345678", "abcdefghi"});
  TvlGetCollectData(transfers(entries));
  std::string expected = kHeader;
  for (int i = 0; i < 30; ++i)
    expected +=
        "\x06\x08"
        "12345678\x09"
        "abcdefghi"s;
  EXPECT_EQ(contentsOf(kToday), expected);
}

class WrongCounts : public Records, public testing::WithParamInterface<std::uint32_t> {};

TEST_P(WrongCounts, DropMessageWithoutCreatingFile) {
  const Message message = Message(0).putInteger(14, GetParam());
  EXPECT_THAT(errorsOf([&] { TvlGetCollectData(message); }), StartsWith("data count wrong!!: "));
  EXPECT_FALSE(fs::exists(kToday));
}

INSTANTIATE_TEST_SUITE_P(Records, WrongCounts, testing::Values(0u, 31u, 0x10000u, 0x80000000u, 0xffffffffu));

TEST_F(Records, MessageOfFfBytesIsReadWithinBounds) {
  Message message(0);
  message.fill(7, '\xff').putInteger(10, 0).putInteger(14, 30);
  TvlGetCollectData(message);
  EXPECT_EQ(contentsOf(kToday).size(), kHeader.size() + 30UL * (11 + 9));
}

TEST_F(Records, AreSplitAtMidnightOfNewYear) {
  setClock("2024-12-31 23:59:59");
  TvlWriteQuitToFile();
  setClock("2025-01-01 00:00:00");
  TvlWriteQuitToFile();
  EXPECT_EQ(contentsOf("/tmp/support/Tovalin/Tovalin_2024_12_31.dat"), "TVLD2024-12-31" + kHeader.substr(14) +
                                                                           "\x03\x13"
                                                                           "2024-12-31 23:59:59");
  EXPECT_EQ(contentsOf("/tmp/support/Tovalin/Tovalin_2025_01_01.dat"), "TVLD2025-01-01" + kHeader.substr(14) +
                                                                           "\x03\x13"
                                                                           "2025-01-01 00:00:00");
}

TEST_F(Records, LeapSecondHasNineteenCharacters) {
  setClock("2016-12-31 23:59:60");
  TvlWriteQuitToFile();
  EXPECT_THAT(contentsOf("/tmp/support/Tovalin/Tovalin_2016_12_31.dat"),
              testing::EndsWith("\x03\x13"
                                "2016-12-31 23:59:60"));
}

}  // namespace
}  // namespace settings_test
