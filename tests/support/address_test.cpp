#include "support/address.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(Address, AcceptsAllowedBytesOnly) {
  const std::string allowed =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~:/?#[]@!$&'()*+,;=";
  for (int byte = 0; byte < 256; ++byte) {
    const char character = static_cast<char>(byte);
    EXPECT_EQ(isAddress(std::string("a") + character + "b"), allowed.find(character) != std::string::npos)
        << byte;
  }
}

TEST(Address, EmptyTextIsRejected) {
  EXPECT_FALSE(isAddress(""));
}

TEST(Address, IncompleteEscapeIsRejected) {
  for (const char* good : {"%20", "a%2Fb", "%aF%00", "%25%25"}) EXPECT_TRUE(isAddress(good)) << good;
  for (const char* bad : {"%", "a%", "%2", "a%2", "%2g", "%g2", "%%20", "% 20", "%-1"})
    EXPECT_FALSE(isAddress(bad)) << bad;
}

TEST(Link, AbsoluteHttpAddressIsAccepted) {
  for (const char* good : {"http://a", "https://www.tovalin.example/x?y=1#z", "HTTP://A", "HttpS://a:8443",
                           "http://a:", "http://a?b", "http://a#b", "http://127.0.0.1/",
                           "http://[::1]:8090/x", "http://[::ffff:127.0.0.1]",
                           "http://u:p@[::1]:80/a;b=c?d=e#f", "https://xn--bcher-kva.example/%C3%A4",
                           "http://a_b.example/", "http://a/file:///etc/passwd", "http://a/?q=javascript:x"})
    EXPECT_TRUE(isLink(good)) << good;
}

TEST(Link, OtherSchemeIsRejected) {
  for (const char* bad : {"file:///etc/passwd",
                          "FILE:/x",
                          "File:x",
                          "files:x",
                          "smb://host/share",
                          "sftp://host/x",
                          "dav://host/",
                          "davs://host/",
                          "ftp://host/x",
                          "mailto:a@b?attach=/etc/passwd",
                          "mailto:a@b",
                          "admin:///etc/passwd",
                          "jar:file:///a!/b",
                          "view-source:file:///a",
                          "view-source:http://a",
                          "javascript:alert(1)",
                          "data:text/html,x",
                          "x-app+1.0:y",
                          "x1:evil.html",
                          "x1://host/evil.html",
                          "httpx://a",
                          "xhttp://a",
                          "http+unix://a",
                          "https.://a",
                          "trash:///",
                          "recent:///",
                          "about:blank",
                          "tel:1"})
    EXPECT_FALSE(isLink(bad)) << bad;
}

TEST(Link, RelativeAddressOrMissingHostIsRejected) {
  for (const char* bad : {"",
                          "a",
                          "/tmp/evil.app",
                          "//host/x",
                          "-h",
                          "1http://a",
                          ":",
                          "://a",
                          "a b:c",
                          "ht_tp://a",
                          "a/b:c",
                          "?a:b",
                          "http",
                          "http:",
                          "http:a",
                          "http:/a",
                          "http:a.html",
                          "https:///etc/passwd",
                          "http://",
                          "http:///",
                          "http://?a",
                          "http://#a",
                          "http://:80/",
                          "http://u@",
                          "http://u@/",
                          "http://u:p@:80/"})
    EXPECT_FALSE(isLink(bad)) << bad;
}

TEST(Link, InvalidHostIsRejected) {
  for (const char* bad : {"http://%61/", "http://a%2Fb/", "http://a%00/", "http://a:b/", "http://a:80x/",
                          "http://a:-1/", "http://::1/", "http://[::1/", "http://::1]/", "http://[]/",
                          "http://[x]/", "http://[::1]x/", "http://[::1]:x/", "http://a[::1]/", "http://a,b/",
                          "http://a;b/", "http://(a)/", "http://$a/", "http://a'b/"})
    EXPECT_FALSE(isLink(bad)) << bad;
}

TEST(Link, InvalidAddressIsRejected) {
  using namespace std::string_literals;
  for (const std::string& bad :
       {"http://a b"s, "http://a\n"s, " http://a"s, "\thttp://a"s, "http://a "s, "http://a\0"s,
        "http://a/\0b"s, "http://a/\x7f"s, "http://a/\x1b[2J"s, "http://a/\xc2\x85"s,
        "http://a/\xe2\x80\xae"s, "http://a\""s, "http://a/%zz"s, "http://\xc3\xa4"s, "http://a`id`"s,
        "http://a|b"s, "http://a\\b"s, "http:\\\\a"s, "ht\ntp://a"s})
    EXPECT_FALSE(isLink(bad)) << testing::PrintToString(bad);
}

}  // namespace
