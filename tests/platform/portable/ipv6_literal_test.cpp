#include "platform/ipv6_literal.h"

#include <gtest/gtest.h>

namespace {

using platform::isIpv6Literal;
using platform::isIpv6LiteralWithZone;

TEST(Ipv6Literal, AddressInBracketsIsAccepted) {
  for (const char* host : {"[::1]", "[::]", "[2001:db8::AbCd]", "[::ffff:192.0.2.1]"}) {
    EXPECT_TRUE(isIpv6Literal(host)) << host;
    EXPECT_TRUE(isIpv6LiteralWithZone(host)) << host;
  }
}

TEST(Ipv6Literal, ZoneIsAcceptedOnlyWhereNamed) {
  EXPECT_FALSE(isIpv6Literal("[fe80::1%25eth0]"));
  EXPECT_TRUE(isIpv6LiteralWithZone("[fe80::1%25eth0]"));
}

TEST(Ipv6Literal, OtherTextIsRefused) {
  for (const char* host : {"", "[", "]", "[]", "::1", "[::1", "::1]", "[::1]x", "[::g]", "[::1%]",
                           "[fe80::1%eth0]", "[::1]:80", "[::1 ]", "[a.example]"}) {
    EXPECT_FALSE(isIpv6Literal(host)) << host;
    EXPECT_FALSE(isIpv6LiteralWithZone(host)) << host;
  }
}

}  // namespace
