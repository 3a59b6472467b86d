#include "support/address.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(Address, EveryByteThatMayStandInOneAndNoOther) {
  const std::string allowed =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~:/?#[]@!$&'()*+,;=";
  for (int byte = 0; byte < 256; ++byte) {
    const char character = static_cast<char>(byte);
    EXPECT_EQ(isAddress(std::string("a") + character + "b"), allowed.find(character) != std::string::npos)
        << byte;
  }
}

TEST(Address, EmptyOneIsNone) {
  EXPECT_FALSE(isAddress(""));
}

TEST(Address, EscapesMustBeWhole) {
  for (const char* good : {"%20", "a%2Fb", "%aF%00", "%25%25"}) EXPECT_TRUE(isAddress(good)) << good;
  for (const char* bad : {"%", "a%", "%2", "a%2", "%2g", "%g2", "%%20", "% 20", "%-1"})
    EXPECT_FALSE(isAddress(bad)) << bad;
}

TEST(Link, NeedsAScheme) {
  for (const char* good :
       {"http://a", "https://www.tovalin.example/x?y=1#z", "mailto:a@b", "x-app+1.0:y", "HTTP://A"})
    EXPECT_TRUE(isLink(good)) << good;
  for (const char* bad : {"", "a", "/tmp/evil.app", "//host/x", "-h", "1http://a", ":", "://a", "a b:c",
                          "ht_tp://a", "a/b:c", "?a:b"})
    EXPECT_FALSE(isLink(bad)) << bad;
}

TEST(Link, ThatIsNoAddressIsNone) {
  for (const char* bad : {"http://a b", "http://a\n", "http://a\"", "http://%zz", "http://\xc3\xa4",
                          "http://a`id`", "http://a|b", "http://a\\b"})
    EXPECT_FALSE(isLink(bad)) << bad;
}

TEST(Link, ToAFileOfThisMachineIsNone) {
  for (const char* bad : {"file:///etc/passwd", "FILE:/x", "File:x"}) EXPECT_FALSE(isLink(bad)) << bad;
  EXPECT_TRUE(isLink("files:x"));
}

}  // namespace
