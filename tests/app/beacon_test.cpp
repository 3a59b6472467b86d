#include "app/beacon.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

namespace {

const std::string kPage = "https://www.tovalin.example/product/nimba/binary/GATovalin.html";

std::string addressOf(const std::string& category, const std::string& value) {
  return beaconAddress("https://www.tovalin.example", category, value);
}

TEST(EscapedForAddress, EveryByteStaysOrBecomesItsEscape) {
  const std::string kept =
      "!$&'()*+,-./0123456789:;=?@ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz~";
  for (int byte = 0; byte < 256; ++byte) {
    const char character = static_cast<char>(byte);
    char escape[4];
    std::snprintf(escape, sizeof escape, "%%%02X", byte);
    const std::string expected =
        kept.find(character) == std::string::npos ? escape : std::string(1, character);
    EXPECT_EQ(escapedForAddress(std::string_view(&character, 1)), expected) << "byte " << byte;
  }
}

TEST(EscapedForAddress, NothingStaysNothing) {
  EXPECT_EQ(escapedForAddress(""), "");
}

TEST(EscapedForAddress, LettersBeyondAsciiBecomeTheEscapesOfTheirBytes) {
  EXPECT_EQ(escapedForAddress("\u00e4 \u20ac \U0001f600"), "%C3%A4%20%E2%82%AC%20%F0%9F%98%80");
}

TEST(EscapedForAddress, WhatIsEscapedAlreadyIsEscapedAgain) {
  EXPECT_EQ(escapedForAddress("a%20b"), "a%2520b");
}

TEST(EscapedForAddress, ZeroByteDoesNotEndTheText) {
  EXPECT_EQ(escapedForAddress(std::string_view("a\0b", 3)), "a%00b");
}

TEST(BeaconAddress, CategoryIsValueAndKey) {
  EXPECT_EQ(addressOf("clickaction", "Visit Site"), kPage + "?category=clickaction&clickaction=Visit%20Site");
}

TEST(BeaconAddress, OfTheLaunch) {
  EXPECT_EQ(addressOf("applaunch", "version1.0.0"), kPage + "?category=applaunch&applaunch=version1.0.0");
}

TEST(BeaconAddress, SeparatorsOfTheValueStay) {
  EXPECT_EQ(addressOf("c", "a&b=c?d"), kPage + "?category=c&c=a&b=c?d");
}

TEST(BeaconAddress, LineEndDoesNotStay) {
  EXPECT_EQ(addressOf("c", "a\r\nb"), kPage + "?category=c&c=a%0D%0Ab");
}

TEST(BeaconAddress, EmptyPartsLeaveTheirSeparators) {
  EXPECT_EQ(addressOf("", ""), kPage + "?category=&=");
}

}  // namespace
