#include "app/beacon.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

namespace {

const std::string kPage = "https://www.tovalin.example/product/nimba/binary/GATovalin.html";

std::string addressOf(const std::string& category, const std::string& value) {
  return beaconAddress("https://www.tovalin.example", category, value);
}

TEST(EscapedForAddress, EveryByteIsKeptOrEscaped) {
  const std::string unescaped =
      "!$&'()*+,-./0123456789:;=?@ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz~";
  for (int byte = 0; byte < 256; ++byte) {
    const char character = static_cast<char>(byte);
    char escape[4];
    std::snprintf(escape, sizeof escape, "%%%02X", byte);
    const std::string expected =
        unescaped.find(character) == std::string::npos ? escape : std::string(1, character);
    EXPECT_EQ(escapedForAddress(std::string_view(&character, 1)), expected) << "byte " << byte;
  }
}

TEST(EscapedForAddress, EmptyTextIsUnchanged) {
  EXPECT_EQ(escapedForAddress(""), "");
}

TEST(EscapedForAddress, NonAsciiIsEscapedByUtf8Bytes) {
  EXPECT_EQ(escapedForAddress("\u00e4 \u20ac \U0001f600"), "%C3%A4%20%E2%82%AC%20%F0%9F%98%80");
}

TEST(EscapedForAddress, ExistingEscapeIsEscapedAgain) {
  EXPECT_EQ(escapedForAddress("a%20b"), "a%2520b");
}

TEST(EscapedForAddress, NulByteIsEscaped) {
  EXPECT_EQ(escapedForAddress(std::string_view("a\0b", 3)), "a%00b");
}

TEST(BeaconAddress, CategoryIsValueAndParameterName) {
  EXPECT_EQ(addressOf("clickaction", "Visit Site"), kPage + "?category=clickaction&clickaction=Visit%20Site");
}

TEST(BeaconAddress, LaunchHasVersion) {
  EXPECT_EQ(addressOf("applaunch", "version1.0.0"), kPage + "?category=applaunch&applaunch=version1.0.0");
}

TEST(BeaconAddress, SeparatorsInValueAreKept) {
  EXPECT_EQ(addressOf("c", "a&b=c?d"), kPage + "?category=c&c=a&b=c?d");
}

TEST(BeaconAddress, LineEndIsEscaped) {
  EXPECT_EQ(addressOf("c", "a\r\nb"), kPage + "?category=c&c=a%0D%0Ab");
}

TEST(BeaconAddress, EmptyPartsKeepSeparators) {
  EXPECT_EQ(addressOf("", ""), kPage + "?category=&=");
}

TEST(BeaconAddress, BracketsOfIpv6HostAreKept) {
  const std::string rest = "/product/nimba/binary/GATovalin.html?category=c&c=v";
  for (const char* server :
       {"http://[::1]:8090", "https://[2001:db8::a]", "http://[::ffff:127.0.0.1]", "HTTP://user:word@[::1]",
        "http://[fe80::1%25eth0]:8090", "http://[fe80::1%25br-0.7_a~]"})
    EXPECT_EQ(beaconAddress(server, "c", "v"), server + rest);
}

TEST(BeaconAddress, OtherBracketsAreEscaped) {
  EXPECT_EQ(addressOf("c", "[::1]"), kPage + "?category=c&c=%5B::1%5D");
  EXPECT_EQ(beaconAddress("http://a/[b]", "c", "v").substr(0, 16), "http://a/%5Bb%5D");
  EXPECT_EQ(beaconAddress("http://a?://[b]", "c", "v").substr(0, 19), "http://a?://%5Bb%5D");
  for (const char* unclosed : {"http://[::1", "http://::1]", "http://a[::1]"})
    EXPECT_EQ(beaconAddress(unclosed, "c", "v").find_first_of("[]"), std::string::npos) << unclosed;
}

TEST(BeaconAddress, BracketsAroundOtherThanIpv6AddressAreEscaped) {
  for (const char* server : {"http://[a b]", "http://[[::1]]", "http://[]", "http://[fe80::1%25]",
                             "http://[fe80::1%lo]", "http://[x]"})
    EXPECT_EQ(beaconAddress(server, "c", "v").find_first_of("[] "), std::string::npos) << server;
}

}  // namespace
