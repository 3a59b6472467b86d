#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>

#include "tests/platform/portable/property_lists/property_list_binary_builder.h"
#include "tests/platform/portable/property_lists/property_list_support.h"

namespace {

using namespace property_list_support;
using platform::propertyListMaxBytes;
using platform::propertyListMaxDepth;
using platform::propertyListMaxObjects;

// {Active = true; Autorun = false;}
const std::string settings = bytes({
    'b',  'p', 'l', 'i', 's', 't', '0', '0',  // magic and version
    0xD2, 1,   2,   3,   4,                   // 8: a dictionary of two entries: keys, then values
    0x56, 'A', 'c', 't', 'i', 'v', 'e',       // 13: six ASCII characters
    0x57, 'A', 'u', 't', 'o', 'r', 'u', 'n',  // 20: seven ASCII characters
    0x09,                                     // 28: true
    0x08,                                     // 29: false
    8,    13,  20,  28,  29,                  // 30: table with the offsets of the five objects
    0,    0,   0,   0,   0,   0,              // unused
    1,                                        // size of an offset in bytes
    1,                                        // size of a reference in bytes
    0,    0,   0,   0,   0,   0,   0,   5,    // number of objects
    0,    0,   0,   0,   0,   0,   0,   0,    // index of the top object
    0,    0,   0,   0,   0,   0,   0,   30,   // offset of the offset table
});

TEST(BinaryPropertyList, ReadsSettingsFile) {
  EXPECT_EQ(parse(settings), PropertyList(PropertyList::Dictionary{{"Active", PropertyList(true)},
                                                                   {"Autorun", PropertyList(false)}}));
}

TEST(BinaryPropertyList, ReadsLaterMinorVersions) {
  std::string list = settings;
  list[7] = '1';
  EXPECT_TRUE(parse(list));
  list[6] = '1';
  EXPECT_FALSE(parse(list));
}

TEST(BinaryPropertyList, ReadsNullAndBooleans) {
  EXPECT_EQ(parse(binaryOf(bytes({0x08}))), PropertyList(false));
  EXPECT_EQ(parse(binaryOf(bytes({0x09}))), PropertyList(true));
  const auto null = parse(binaryOf(bytes({0x00})));
  ASSERT_TRUE(null);
  EXPECT_NE(null->as<PropertyList::Null>(), nullptr);
  EXPECT_EQ(null->as<bool>(), nullptr);
}

TEST(BinaryPropertyList, UnknownMarkerIsUnreadable) {
  for (const unsigned marker : {0x01U, 0x07U, 0x0AU, 0x0FU, 0x15U, 0x1FU, 0x20U, 0x21U, 0x24U, 0x30U, 0x32U,
                                0x70U, 0x90U, 0xB0U, 0xE0U, 0xF0U, 0xFFU}) {
    EXPECT_FALSE(parse(binaryOf(bytes({marker}) + std::string(40, '\0')))) << std::hex << marker;
  }
}

TEST(BinaryPropertyList, IntegersOfOneToFourBytesAreUnsigned) {
  EXPECT_EQ(parse(binaryOf(bytes({0x10, 0xFF}))), number(255));
  EXPECT_EQ(parse(binaryOf(bytes({0x11, 0xFF, 0xFE}))), number(65534));
  EXPECT_EQ(parse(binaryOf(bytes({0x12, 0xFF, 0xFF, 0xFF, 0xFF}))), number(4294967295));
}

TEST(BinaryPropertyList, IntegersOfEightBytesAreSigned) {
  EXPECT_EQ(parse(binaryOf(bytes({0x13, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFE}))), number(-2));
  EXPECT_EQ(parse(binaryOf(bytes({0x13, 0x80, 0, 0, 0, 0, 0, 0, 0}))),
            number(std::numeric_limits<std::int64_t>::min()));
}

TEST(BinaryPropertyList, IntegersOfSixteenBytesAreReadIfTheyFitInt64) {
  const std::string zeros(8, '\0'), ones(8, '\xFF');
  const std::string small = bytes({0, 0, 0, 0, 0, 0, 0, 5}), high = bytes({0x80, 0, 0, 0, 0, 0, 0, 0});
  EXPECT_EQ(parse(binaryOf('\x14' + zeros + small)), number(5));
  EXPECT_EQ(parse(binaryOf('\x14' + ones + high)), number(std::numeric_limits<std::int64_t>::min()));
  EXPECT_FALSE(parse(binaryOf('\x14' + zeros + high)));
  EXPECT_FALSE(parse(binaryOf('\x14' + ones + small)));
  EXPECT_FALSE(parse(binaryOf('\x14' + small + small)));
}

TEST(BinaryPropertyList, ReadsRealsOfFourAndEightBytes) {
  EXPECT_EQ(parse(binaryOf(bytes({0x22, 0x3F, 0xC0, 0, 0}))), PropertyList(1.5));
  EXPECT_EQ(parse(binaryOf(bytes({0x23, 0xBF, 0xF8, 0, 0, 0, 0, 0, 0}))), PropertyList(-1.5));
  const auto list = parse(binaryOf(bytes({0x23, 0x7F, 0xF8, 0, 0, 0, 0, 0, 0})));
  ASSERT_TRUE(list);
  EXPECT_TRUE(std::isnan(*list->as<double>()));
}

TEST(BinaryPropertyList, DatesAreSecondsSince2001) {
  EXPECT_EQ(parse(binaryOf(bytes({0x33, 0xC0, 0x4E, 0, 0, 0, 0, 0, 0}))),
            PropertyList(PropertyList::Date{-60}));
}

TEST(BinaryPropertyList, DataIsReadVerbatim) {
  EXPECT_EQ(parse(binaryOf(bytes({0x40}))), dataOf(""));
  EXPECT_EQ(parse(binaryOf(bytes({0x43, 0, 0xFF, 'a'}))), dataOf(std::string_view("\0\xFF"
                                                                                  "a",
                                                                                  3)));
}

TEST(BinaryPropertyList, TextIsAsciiOrUtf16) {
  EXPECT_EQ(parse(binaryOf(bytes({0x50}))), text(""));
  EXPECT_EQ(parse(binaryOf(bytes({0x53, 'a', 0, 'b'}))), text(std::string("a\0b", 3)));
  EXPECT_EQ(parse(binaryOf(bytes({0x63, 0, 0xE9, 0xD8, 0x3D, 0xDE, 0x00}))),
            text("\xC3\xA9\xF0\x9F\x98\x80"));
}

TEST(BinaryPropertyList, TextInvalidInItsEncodingIsUnreadable) {
  EXPECT_FALSE(parse(binaryOf(bytes({0x51, 0xE9}))));
  EXPECT_FALSE(parse(binaryOf(bytes({0x61, 0xD8, 0x3D}))));
  EXPECT_FALSE(parse(binaryOf(bytes({0x62, 0xD8, 0x3D, 0, 'a'}))));
  EXPECT_FALSE(parse(binaryOf(bytes({0x61, 0xDE, 0x00}))));
}

TEST(BinaryPropertyList, CountAboveFourteenIsReadFromFollowingInteger) {
  const std::string letters = "abcdefghijklmno";
  EXPECT_EQ(parse(binaryOf(bytes({0x5F, 0x10, 15}) + letters)), text(letters));
  EXPECT_EQ(parse(binaryOf(bytes({0x5F, 0x11, 0, 15}) + letters)), text(letters));
  EXPECT_EQ(parse(binaryOf(bytes({0x4F, 0x13, 0, 0, 0, 0, 0, 0, 0, 15}) + letters)), dataOf(letters));
}

TEST(BinaryPropertyList, CountOfOtherTypeIsUnreadable) {
  const std::string letters(300, 'a');
  EXPECT_FALSE(parse(binaryOf(bytes({0x5F, 0x20, 15}) + letters)));
  EXPECT_FALSE(
      parse(binaryOf(bytes({0x5F, 0x14, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 15}) + letters)));
  EXPECT_FALSE(parse(binaryOf(bytes({0x5F, 0x1F}) + letters)));
  EXPECT_FALSE(parse(binaryOf(bytes({0x5F}))));
  EXPECT_FALSE(parse(binaryOf(bytes({0x5F, 0x13, 0, 0}))));
}

TEST(BinaryPropertyList, CountBeyondEndOfListIsUnreadable) {
  const std::array<std::string, 6> counts = {
      bytes({0x10, 0xFF}),
      bytes({0x12, 0x7F, 0xFF, 0xFF, 0xFF}),
      bytes({0x12, 0xFF, 0xFF, 0xFF, 0xFF}),
      bytes({0x13, 0x7F, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}),
      bytes({0x13, 0x80, 0, 0, 0, 0, 0, 0, 0}),
      bytes({0x13, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}),
  };
  for (const unsigned kind : {0x4FU, 0x5FU, 0x6FU, 0xAFU, 0xCFU, 0xDFU}) {
    for (const std::string& count : counts) {
      EXPECT_FALSE(parse(binaryOf(bytes({kind}) + count + std::string(16, '\0')))) << std::hex << kind;
    }
  }
}

TEST(BinaryPropertyList, ObjectOverlappingOffsetTableIsUnreadable) {
  EXPECT_TRUE(parse(binaryOf(bytes({0x52, 'a', 'b'}))));
  EXPECT_FALSE(parse(binaryOf(bytes({0x53, 'a', 'b'}))));
  EXPECT_FALSE(parse(binaryOf(bytes({0x62, 0, 'a', 0}))));
  EXPECT_FALSE(parse(binaryOf(bytes({0xA1}))));
  EXPECT_FALSE(parse(binaryOf(bytes({0xD1, 0}))));
  EXPECT_FALSE(parse(binaryOf(bytes({0x13, 0, 0, 0, 0, 0, 0, 0}))));
}

TEST(BinaryPropertyList, UidIsReadAsDictionary) {
  EXPECT_EQ(parse(binaryOf(bytes({0x80, 7}))), single("CF$UID", number(7)));
  EXPECT_EQ(parse(binaryOf(bytes({0x83, 0xFF, 0xFF, 0xFF, 0xFF}))), single("CF$UID", number(4294967295)));
  EXPECT_EQ(parse(binaryOf(bytes({0x87, 0, 0, 0, 0, 0, 0, 1, 0}))), single("CF$UID", number(256)));
  EXPECT_FALSE(parse(binaryOf(bytes({0x84, 1, 0, 0, 0, 0}))));
  EXPECT_FALSE(parse(binaryOf(bytes({0x8F}) + std::string(16, '\0'))));
}

TEST(BinaryPropertyList, ArraysAndSetsKeepOrder) {
  const BinaryList list{
      .objects = {bytes({0xA3, 1, 2, 1}), bytes({0x51, 'a'}), bytes({0xC1, 3}), bytes({0x51, 'b'})}};
  EXPECT_EQ(parse(list.build()), listOf({text("a"), listOf({text("b")}), text("a")}));
}

TEST(BinaryPropertyList, ReadsReferencesAndOffsetsOfUpToEightBytes) {
  for (const unsigned size : {1u, 2u, 3u, 4u, 7u, 8u}) {
    const std::string reference = BinaryList::bigEndian(1, size);
    const BinaryList list{
        .objects = {'\xA1' + reference, bytes({0x09})}, .offsetSize = size, .referenceSize = size};
    EXPECT_EQ(parse(list.build()), listOf({PropertyList(true)})) << size;
  }
}

TEST(BinaryPropertyList, TopObjectNeedNotBeFirst) {
  EXPECT_EQ(parse(BinaryList{.objects = {bytes({0x09}), bytes({0xA1, 0})}, .topObject = 1}.build()),
            listOf({PropertyList(true)}));
}

TEST(BinaryPropertyList, FirstOfEqualKeysIsUsed) {
  const BinaryList list{.objects = {bytes({0xD2, 1, 2, 3, 4}), bytes({0x51, 'a'}), bytes({0x61, 0, 'a'}),
                                    bytes({0x09}), bytes({0x08})}};
  EXPECT_EQ(parse(list.build()), single("a", PropertyList(true)));
}

TEST(BinaryPropertyList, KeyOfOtherTypeThanStringIsUnreadable) {
  for (const std::string& key : {bytes({0x09}), bytes({0x10, 1}), bytes({0x41, 'a'}), bytes({0x80, 1}),
                                 bytes({0xA0}), bytes({0x00})}) {
    EXPECT_FALSE(parse(BinaryList{.objects = {bytes({0xD1, 1, 2}), key, bytes({0x09})}}.build()));
  }
}

TEST(BinaryPropertyList, ReferenceOutOfRangeIsUnreadable) {
  EXPECT_FALSE(parse(BinaryList{.objects = {bytes({0xA1, 1})}}.build()));
  EXPECT_FALSE(parse(BinaryList{.objects = {bytes({0xA1, 0xFF})}}.build()));
  EXPECT_FALSE(parse(BinaryList{.objects = {'\xA1' + std::string(8, '\xFF')}, .referenceSize = 8}.build()));
  EXPECT_FALSE(parse(BinaryList{.objects = {bytes({0x09})}, .topObject = 1}.build()));
  EXPECT_FALSE(parse(BinaryList{.objects = {bytes({0x09})}, .topObject = UINT64_MAX}.build()));
}

TEST(BinaryPropertyList, OffsetOutsideObjectsIsUnreadable) {
  const auto withOffset = [](char offset) {
    std::string list = BinaryList{.objects = {bytes({0x09})}, .offsetSize = 1}.build();
    list[9] = offset;
    return list;
  };
  EXPECT_TRUE(parse(withOffset(8)));
  EXPECT_FALSE(parse(withOffset(0)));
  EXPECT_FALSE(parse(withOffset(7)));
  EXPECT_FALSE(parse(withOffset(9)));
  EXPECT_FALSE(parse(withOffset('\xFF')));
}

TEST(BinaryPropertyList, FalseTrailerValuesAreUnreadable) {
  const BinaryList honest{.objects = {bytes({0x09})}};
  const auto lying = [&](auto change) {
    BinaryList list = honest;
    change(list);
    return parse(list.build());
  };
  ASSERT_TRUE(parse(honest.build()));
  for (const std::uint64_t count :
       {std::uint64_t{0}, std::uint64_t{2}, std::uint64_t{1} << 63, UINT64_MAX, UINT64_MAX / 2 + 2}) {
    EXPECT_FALSE(lying([&](BinaryList& list) { list.wrongObjectCount = count; })) << count;
  }
  for (const std::uint64_t table : {std::uint64_t{0}, std::uint64_t{7}, std::uint64_t{8}, std::uint64_t{10},
                                    std::uint64_t{1000}, UINT64_MAX}) {
    EXPECT_FALSE(lying([&](BinaryList& list) { list.wrongTableOffset = table; })) << table;
  }
  for (const unsigned size : {0u, 1u, 3u, 9u, 255u}) {
    EXPECT_FALSE(lying([&](BinaryList& list) { list.wrongOffsetSize = size; })) << size;
  }
  for (const unsigned size : {0u, 9u, 255u}) {
    EXPECT_FALSE(lying([&](BinaryList& list) { list.wrongReferenceSize = size; })) << size;
  }
}

TEST(BinaryPropertyList, CyclicReferenceIsUnreadable) {
  EXPECT_FALSE(parse(binaryOf(bytes({0xA1, 0}))));
  EXPECT_FALSE(parse(binaryOf(bytes({0xC2, 0, 0}))));
  EXPECT_FALSE(parse(BinaryList{.objects = {bytes({0xD1, 1, 0}), bytes({0x51, 'a'})}}.build()));
  EXPECT_FALSE(parse(BinaryList{.objects = {bytes({0xA2, 1, 1}), bytes({0xA2, 0, 0})}}.build()));
}

// Returns a list of `depth` arrays, each nested in the previous one.
std::string nested(std::size_t depth) {
  BinaryList list{.objects = {}, .referenceSize = 2};
  for (std::size_t i = 1; i < depth; ++i) list.objects.push_back('\xA1' + BinaryList::bigEndian(i, 2));
  list.objects.push_back(bytes({0xA0}));
  return list.build();
}

TEST(BinaryPropertyList, NestingIsLimitedToMaxDepth) {
  EXPECT_TRUE(parse(nested(propertyListMaxDepth)));
  EXPECT_FALSE(parse(nested(propertyListMaxDepth + 1)));
  EXPECT_FALSE(parse(nested(10'000)));
}

std::string arrayOfTrue(std::size_t count) {
  return BinaryList{
      .objects = {bytes({0xAF, 0x12}) + BinaryList::bigEndian(count, 4) + std::string(count, '\1'),
                  bytes({0x09})},
      .offsetSize = 4}
      .build();
}

TEST(BinaryPropertyList, ObjectsAreLimitedToMaxObjects) {
  EXPECT_TRUE(parse(arrayOfTrue(propertyListMaxObjects - 1)));
  EXPECT_FALSE(parse(arrayOfTrue(propertyListMaxObjects)));
  EXPECT_FALSE(parse(arrayOfTrue(1'000'000)));
}

TEST(BinaryPropertyList, SharedObjectIsCountedForEachReference) {
  // Ten levels of four references each expand to a million strings.
  BinaryList list;
  for (unsigned level = 1; level <= 10; ++level)
    list.objects.push_back(bytes({0xA4, level, level, level, level}));
  list.objects.push_back(bytes({0x51, 'a'}));
  EXPECT_FALSE(parse(list.build()));
}

TEST(BinaryPropertyList, SharedTextIsCountedForEachReference) {
  const auto shared = [](std::size_t size, std::size_t times) {
    return BinaryList{
        .objects = {bytes({0xAF, 0x11}) + BinaryList::bigEndian(times, 2) + std::string(times, '\1'),
                    bytes({0x5F, 0x12}) + BinaryList::bigEndian(size, 4) + std::string(size, 'a')},
        .offsetSize = 4}
        .build();
  };
  EXPECT_TRUE(parse(shared(propertyListMaxBytes / 8, 8)));
  EXPECT_FALSE(parse(shared(propertyListMaxBytes / 8, 9)));
  EXPECT_FALSE(parse(shared(propertyListMaxBytes / 8, 10'000)));
}

TEST(BinaryPropertyList, SharedDataIsCountedForEachReference) {
  const auto shared = [](std::size_t size, std::size_t times) {
    return BinaryList{
        .objects = {bytes({0xAF, 0x11}) + BinaryList::bigEndian(times, 2) + std::string(times, '\1'),
                    bytes({0x4F, 0x12}) + BinaryList::bigEndian(size, 4) + std::string(size, 'a')},
        .offsetSize = 4}
        .build();
  };
  EXPECT_TRUE(parse(shared(propertyListMaxBytes / 8, 8)));
  EXPECT_FALSE(parse(shared(propertyListMaxBytes / 8, 9)));
  EXPECT_FALSE(parse(shared(propertyListMaxBytes / 8, 1'000)));
}

TEST(BinaryPropertyList, SharedKeyIsCountedForEachReference) {
  const auto shared = [](std::size_t size, std::size_t times) {
    return BinaryList{
        .objects = {bytes({0xDF, 0x11}) + BinaryList::bigEndian(times, 2) + std::string(times, '\1') +
                        std::string(times, '\2'),
                    bytes({0x5F, 0x12}) + BinaryList::bigEndian(size, 4) + std::string(size, 'a'),
                    bytes({0x09})},
        .offsetSize = 4}
        .build();
  };
  EXPECT_TRUE(parse(shared(propertyListMaxBytes / 8, 8)));
  EXPECT_FALSE(parse(shared(propertyListMaxBytes / 8, 9)));
  EXPECT_TRUE(parse(shared(1, (propertyListMaxObjects - 1) / 2)));
  EXPECT_FALSE(parse(shared(1, propertyListMaxObjects / 2)));
}

TEST(BinaryPropertyList, SharedUidIsCountedAsThreeObjectsForEachReference) {
  const auto shared = [](std::size_t times) {
    return BinaryList{
        .objects = {bytes({0xAF, 0x11}) + BinaryList::bigEndian(times, 2) + std::string(times, '\1'),
                    bytes({0x80, 7})},
        .offsetSize = 4}
        .build();
  };
  EXPECT_TRUE(parse(shared((propertyListMaxObjects - 1) / 3)));
  EXPECT_FALSE(parse(shared((propertyListMaxObjects - 1) / 3 + 1)));
}

TEST(BinaryPropertyList, TextSizeIsCountedInUtf8) {
  const auto letters = [](std::size_t count) {
    return BinaryList{
        .objects = {bytes({0x6F, 0x12}) + BinaryList::bigEndian(count, 4) + repeated("\x4E\x01", count)},
        .offsetSize = 4}
        .build();
  };
  EXPECT_TRUE(parse(letters(propertyListMaxBytes / 3)));
  EXPECT_FALSE(parse(letters(propertyListMaxBytes / 3 + 1)));
}

TEST(BinaryPropertyList, ListShorterThanItsTrailerIsUnreadable) {
  EXPECT_FALSE(parse("bplist0"));
  EXPECT_FALSE(parse("bplist00"));
  EXPECT_FALSE(parse("bplist00" + std::string(31, '\0')));
  EXPECT_FALSE(parse("bplist00" + std::string(32, '\0')));
}

}  // namespace
