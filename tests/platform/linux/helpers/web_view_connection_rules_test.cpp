#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "platform/linux/helpers/web_view/connection_rules.h"
#include "platform/linux/helpers/web_view/own_networks.h"

namespace helpers {
namespace {

bool isPublicText(const std::string& text) {
  sockaddr_in address4{};
  address4.sin_family = AF_INET;
  if (::inet_pton(AF_INET, text.c_str(), &address4.sin_addr) == 1) {
    return isPublic(reinterpret_cast<const sockaddr&>(address4));
  }
  sockaddr_in6 address6{};
  address6.sin6_family = AF_INET6;
  EXPECT_EQ(::inet_pton(AF_INET6, text.c_str(), &address6.sin6_addr), 1) << text;
  return isPublic(reinterpret_cast<const sockaddr&>(address6));
}

TEST(ConnectionRules, SpecialPurposeAddressIsNotPublic) {
  for (const char* text : {"0.0.0.0",
                           "0.255.255.255",
                           "10.0.0.0",
                           "10.255.255.255",
                           "100.64.0.0",
                           "100.127.255.255",
                           "127.0.0.1",
                           "127.255.255.255",
                           "169.254.0.0",
                           "169.254.169.254",
                           "172.16.0.0",
                           "172.31.255.255",
                           "192.0.0.1",
                           "192.0.2.1",
                           "192.168.0.0",
                           "192.168.255.255",
                           "198.18.0.0",
                           "198.19.255.255",
                           "198.51.100.1",
                           "203.0.113.1",
                           "224.0.0.1",
                           "239.255.255.255",
                           "240.0.0.1",
                           "255.255.255.255",
                           "::",
                           "::1",
                           "::7f00:1",
                           "::ffff:127.0.0.1",
                           "::ffff:10.1.2.3",
                           "::ffff:192.168.1.1",
                           "::ffff:0:7f00:1",
                           "64:ff9b::10.0.0.1",
                           "64:ff9b:1::1",
                           "100::1",
                           "2001::1",
                           "2001:1ff::1",
                           "2001:db8::1",
                           "3fff::1",
                           "2002:7f00:1::1",
                           "2002:c0a8:101::1",
                           "fc00::1",
                           "fdff::1",
                           "fe80::1",
                           "febf::1",
                           "fec0::1",
                           "ff02::1"}) {
    EXPECT_FALSE(isPublicText(text)) << text;
  }
}

TEST(ConnectionRules, AddressNextToSpecialRangeIsPublic) {
  for (const char* text :
       {"1.0.0.0",         "9.255.255.255",   "11.0.0.0",        "100.63.255.255",   "100.128.0.0",
        "126.255.255.255", "128.0.0.0",       "169.253.255.255", "169.255.0.0",      "172.15.255.255",
        "172.32.0.0",      "192.0.1.0",       "192.167.255.255", "192.169.0.0",      "198.17.255.255",
        "198.20.0.0",      "223.255.255.255", "::ffff:8.8.8.8",  "64:ff9b::8.8.8.8", "2000::1",
        "2001:200::1",     "2001:db7::1",     "2001:db9::1",     "2002:808:808::1",  "2a00::1",
        "3fff:ffff::1"}) {
    EXPECT_TRUE(isPublicText(text)) << text;
  }
}

TEST(ConnectionRules, OtherAddressFamilyIsNotPublic) {
  sockaddr address{};
  address.sa_family = AF_UNIX;
  EXPECT_FALSE(isPublic(address));
}

TEST(ConnectionRules, LocalHostIsRecognisedByNameAndAddress) {
  for (const char* host : {"localhost",
                           "a.localhost",
                           "localhost.",
                           "a.localhost.",
                           "127.0.0.1",
                           "127.0.0.1.",
                           "10.0.0.1",
                           "::1",
                           "fe80::1",
                           "fe80::1%eth0",
                           "::ffff:7f00:1",
                           "127.1",
                           "0x7f.1",
                           "0x7f000001",
                           "2130706433",
                           "0177.0.0.1",
                           "08.8.8.8",
                           "8.8.2056",
                           "router",
                           "localhost.localdomain",
                           "printer.local",
                           "db.internal",
                           "nas.home.arpa",
                           "",
                           "."})
    EXPECT_TRUE(isLocal(host)) << host;
  for (const char* host :
       {"tovalin.example", "www.notlocalhost", "localhost.example", "8.8.8.8", "8.8.8.8.", "2a00::1",
        "tovalin.example.", "1.example", "0x7f.example", "mylocal.example", "not.mylocal"})
    EXPECT_FALSE(isLocal(host)) << host;
}

TEST(ConnectionRules, EndpointIsNormalised) {
  EXPECT_EQ(endpointOf("WWW.Tovalin.Example", 80), (Endpoint{"www.tovalin.example", 80}));
  EXPECT_EQ(endpointOf("[::1]", 80), (Endpoint{"::1", 80}));
  EXPECT_EQ(endpointOf("2A00:0:0::1", 80), (Endpoint{"2a00::1", 80}));
}

Network network(const std::string& text, unsigned bits) {
  Network result{{}, bits};
  EXPECT_EQ(::inet_pton(AF_INET6, text.c_str(), result.start.data()), 1) << text;
  return result;
}

bool isHeld(const std::vector<Network>& networks, const std::string& text) {
  sockaddr_in address4{};
  address4.sin_family = AF_INET;
  if (::inet_pton(AF_INET, text.c_str(), &address4.sin_addr) == 1) {
    return hold(networks, reinterpret_cast<const sockaddr&>(address4));
  }
  sockaddr_in6 address6{};
  address6.sin6_family = AF_INET6;
  EXPECT_EQ(::inet_pton(AF_INET6, text.c_str(), &address6.sin6_addr), 1) << text;
  return hold(networks, reinterpret_cast<const sockaddr&>(address6));
}

TEST(OwnNetworks, ContainAddressesOfTheirPrefixInEachForm) {
  const std::vector<Network> networks{network("::ffff:9.9.8.1", 96 + 23), network("2a00:1::1", 64),
                                      network("2002:101::", 48), network("::ffff:5.5.5.5", 128)};
  for (const char* text : {"9.9.8.0", "9.9.9.255", "5.5.5.5", "::ffff:9.9.9.9", "64:ff9b::9.9.9.9",
                           "2002:909:909::1", "2a00:1::ffff", "2002:101:0:1::1"})
    EXPECT_TRUE(isHeld(networks, text)) << text;
  for (const char* text :
       {"9.9.7.255", "9.9.10.0", "5.5.5.4", "::ffff:9.9.10.1", "2a00:1:0:1::1", "2002:102::1"})
    EXPECT_FALSE(isHeld(networks, text)) << text;
  EXPECT_FALSE(isHeld({}, "9.9.9.9"));
}

TEST(OwnNetworks, IncludeLoopback) {
  const auto networks = ownNetworks();
  ASSERT_TRUE(networks);
  EXPECT_TRUE(isHeld(*networks, "127.0.0.1"));
  EXPECT_TRUE(isHeld(*networks, "127.255.0.1"));
  EXPECT_FALSE(isHeld(*networks, "8.8.8.8"));
}

// An interface address with prefix length 0.
TEST(OwnNetworks, PrefixLengthZeroContainsOnlyItsAddress) {
  ASSERT_EQ(std::system("ip address add 9.9.9.1/0 dev lo noprefixroute"), 0);
  const auto networks = ownNetworks();
  EXPECT_EQ(std::system("ip address del 9.9.9.1/0 dev lo"), 0);
  ASSERT_TRUE(networks);
  EXPECT_TRUE(isHeld(*networks, "9.9.9.1"));
  EXPECT_FALSE(isHeld(*networks, "8.8.8.8"));
}

struct Case {
  Endpoint target;
  Access access;
};

TEST(ConnectionRules, OriginHasAnyAccessAndOthersPublicTlsOnly) {
  const Endpoint origin{"127.0.0.1", 8090};
  for (const Case& each :
       {Case{{"127.0.0.1", 8090}, Access::Any}, Case{{"127.0.0.1", 8091}, Access::None},
        Case{{"127.0.0.1", 443}, Access::None}, Case{{"127.0.0.2", 8090}, Access::None},
        Case{{"localhost", 443}, Access::None}, Case{{"tovalin.example", 80}, Access::None},
        Case{{"tovalin.example", 8443}, Access::None}, Case{{"tovalin.example", 443}, Access::PublicTls},
        Case{{"8.8.8.8", 443}, Access::PublicTls}, Case{{"::1", 443}, Access::None}}) {
    EXPECT_EQ(accessTo(each.target, origin), each.access) << each.target.host << " " << each.target.port;
  }
}

TEST(ConnectionRules, WithoutOriginOnlyPublicTlsIsAllowed) {
  EXPECT_EQ(accessTo({"127.0.0.1", 8090}, std::nullopt), Access::None);
  EXPECT_EQ(accessTo({"", 0}, std::nullopt), Access::None);
  EXPECT_EQ(accessTo({"tovalin.example", 443}, std::nullopt), Access::PublicTls);
}

}  // namespace
}  // namespace helpers
