#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "platform/linux/helpers/web_view/address_lines.h"

namespace helpers {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(WebAddress, AcceptsHttpAndHttpsCaseInsensitively) {
  for (const char* address :
       {"http://a", "https://a", "HTTP://a", "hTTps://a", "http://127.0.0.1:80/?a=b%20c#d"})
    EXPECT_TRUE(isWebAddress(address)) << address;
}

TEST(WebAddress, RejectsOtherSchemes) {
  for (const char* text :
       {"", "http://", "https://", "http:/a", "http:a", "ftp://a", "file:///etc/passwd", "data:text/html,x",
        "javascript:alert(1)", "about:blank", " http://a", "xhttp://a"})
    EXPECT_FALSE(isWebAddress(text)) << text;
}

TEST(WebAddress, RejectsBytesOtherThanVisibleAscii) {
  for (int byte = 0; byte < 256; ++byte) {
    const std::string address = std::string("http://a/") + static_cast<char>(byte);
    EXPECT_EQ(isWebAddress(address), byte > ' ' && byte < 127) << byte;
  }
}

TEST(PageNavigation, AllowsHttpAndEmptyPage) {
  for (const char* address :
       {"http://a", "HTTPS://a", "http://127.0.0.1:80/?a=b%20c#d", "about:blank", "about:srcdoc"})
    EXPECT_TRUE(isAllowedAddress(address)) << address;
}

TEST(PageNavigation, RejectsOtherSchemes) {
  for (const char* address : {"", "file:///etc/passwd", "FILE:///etc/passwd", "ftp://a", "data:text/html,x",
                              "blob:http://a/b", "javascript:alert(1)", "resource:///a", "webkit://gpu",
                              "about:", "about:gpu", "about:blank2", "http:"})
    EXPECT_FALSE(isAllowedAddress(address)) << address;
  EXPECT_FALSE(isAllowedAddress(nullptr));
}

TEST(AddressLines, SplitsSeveralLinesOfOneRead) {
  EXPECT_THAT(AddressLines().take("http://a\nhttp://b\n"), ElementsAre("http://a", "http://b"));
}

TEST(AddressLines, JoinsLineOfSeveralReads) {
  AddressLines lines;
  for (const char* piece : {"h", "ttp:", "//", "a"}) EXPECT_THAT(lines.take(piece), IsEmpty());
  EXPECT_THAT(lines.take("b\nhttp://"), ElementsAre("http://ab"));
  EXPECT_THAT(lines.take("c\n"), ElementsAre("http://c"));
}

TEST(AddressLines, LineWithoutNewlineIsIncomplete) {
  EXPECT_THAT(AddressLines().take("http://a"), IsEmpty());
}

TEST(AddressLines, InvalidLinesAreSkipped) {
  using namespace std::string_view_literals;
  EXPECT_THAT(AddressLines().take("\n\n\0\xff\xfe\r\nfile:///x\nhttp://a b\nhttp://a\r\nhttp://good\n"sv),
              ElementsAre("http://good"));
}

TEST(AddressLines, LineOfMaximumLengthIsAccepted) {
  std::string line = "http://";
  line.resize(AddressLines::maxLineLength, 'a');
  EXPECT_THAT(AddressLines().take(line + "\n"), ElementsAre(line));
}

TEST(AddressLines, OverlongLineIsSkipped) {
  std::string line = "http://";
  line.resize(AddressLines::maxLineLength + 1, 'a');
  EXPECT_THAT(AddressLines().take(line + "\nhttp://b\n"), ElementsAre("http://b"));
}

TEST(AddressLines, TailOfOverlongLineIsDiscarded) {
  AddressLines lines;
  EXPECT_THAT(lines.take(std::string(AddressLines::maxLineLength, 'x')), IsEmpty());
  EXPECT_THAT(lines.take("x"), IsEmpty());
  EXPECT_THAT(lines.take("http://tail\nhttp://b\n"), ElementsAre("http://b"));
}

}  // namespace
}  // namespace helpers
