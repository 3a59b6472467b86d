#include "platform/portable/http/content_coding.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

#include "tests/harness/servers/compressed.h"

namespace {

using platform::withoutContentCodings;
using test_support::compressed;
using test_support::CompressedFormat;
using testing::Optional;

constexpr std::size_t kLimit = 100'000;
const std::string kText = "some text, some more text";

std::string gzip(std::string_view bytes) {
  return compressed(bytes, CompressedFormat::Gzip);
}
std::string zlib(std::string_view bytes) {
  return compressed(bytes, CompressedFormat::Zlib);
}
std::string rawDeflate(std::string_view bytes) {
  return compressed(bytes, CompressedFormat::RawDeflate);
}

std::optional<std::string> decoded(const std::string& body, std::string_view codings) {
  return withoutContentCodings(body, codings, kLimit);
}

TEST(ContentCoding, EncodedBytesRoundTrip) {
  std::string bytes;
  for (int i = 0; i < 99'999; ++i) bytes += static_cast<char>(i * 7 + i / 256);
  for (const std::string& body : {std::string(), std::string(1, '\0'), bytes}) {
    EXPECT_THAT(decoded(gzip(body), "gzip"), Optional(body));
    EXPECT_THAT(decoded(zlib(body), "deflate"), Optional(body));
    EXPECT_THAT(decoded(rawDeflate(body), "deflate"), Optional(body));
  }
}

TEST(ContentCoding, BodyOfOtherCodingIsUnchanged) {
  EXPECT_THAT(decoded(gzip(kText), "deflate"), Optional(gzip(kText)));
  EXPECT_THAT(decoded(zlib(kText), "gzip"), Optional(zlib(kText)));
  EXPECT_THAT(decoded(rawDeflate(kText), "gzip"), Optional(rawDeflate(kText)));
}

TEST(ContentCoding, UnnamedOrUnknownCodingIsNotDecoded) {
  for (const char* codings :
       {"", "identity", "utf-8", "gzipped", "gzi", "zgzip", "x-deflate", "gzip;q=0", "g zip"})
    EXPECT_THAT(decoded(gzip(kText), codings), Optional(gzip(kText))) << codings;
}

TEST(ContentCoding, TruncatedBodyIsUnchanged) {
  for (const auto& [whole, coding] : {std::pair<std::string, const char*>(gzip(kText), "gzip"),
                                      {zlib(kText), "deflate"},
                                      {rawDeflate(kText), "deflate"}}) {
    for (std::size_t size = 0; size < whole.size(); ++size) {
      const std::string body = whole.substr(0, size);
      EXPECT_THAT(decoded(body, coding), Optional(body)) << coding << size;
    }
  }
}

TEST(ContentCoding, BodyWithWrongChecksumIsUnchanged) {
  for (const auto& [whole, coding] :
       {std::pair<std::string, const char*>(gzip(kText), "gzip"), {zlib(kText), "deflate"}}) {
    std::string body = whole;
    body[body.size() - (coding == std::string("gzip") ? 5 : 1)] ^= 1;
    EXPECT_THAT(decoded(body, coding), Optional(body)) << coding;
  }
}

TEST(ContentCoding, GzipMembersAreConcatenated) {
  EXPECT_THAT(decoded(gzip("a") + gzip("") + gzip("b"), "gzip"), Optional(std::string("ab")));
}

TEST(ContentCoding, TruncatedMemberLeavesWholeBodyUnchanged) {
  const std::string body = gzip("a") + gzip("b").substr(0, 15);
  EXPECT_THAT(decoded(body, "gzip"), Optional(body));
}

TEST(ContentCoding, BytesAfterCompleteStreamAreIgnored) {
  for (const std::string& behind : {std::string("\n"), std::string(512, '\0'), std::string("garbage")}) {
    EXPECT_THAT(decoded(gzip(kText) + behind, "gzip"), Optional(kText));
    EXPECT_THAT(decoded(zlib(kText) + behind, "deflate"), Optional(kText));
  }
}

TEST(ContentCoding, BytesAfterMemberWithoutGzipHeaderAreIgnored) {
  const std::string behind[] = {"\x1f",
                                "\x1f\x8b",
                                "\x1f\x8b\x08",
                                "\x1f\x8bgarbage",
                                "\x1f\x8b\x07\x01garbage",
                                "\x1f\x8b\x08\x20garbage"};
  for (const std::string& bytes : behind)
    EXPECT_THAT(decoded(gzip("a") + gzip("b") + bytes, "gzip"), Optional(std::string("ab")));
}

TEST(ContentCoding, DamagedMemberLeavesWholeBodyUnchanged) {
  std::string body = gzip("a") + gzip("b");
  body.back() ^= 1;
  EXPECT_THAT(decoded(body, "gzip"), Optional(body));
  const std::string header("\x1f\x8b\x08\0", 4);
  EXPECT_THAT(decoded(gzip("a") + header + "garbage", "gzip"), Optional(gzip("a") + header + "garbage"));
}

TEST(ContentCoding, TextResemblingRawDeflateIsUnchanged) {
  const std::string body = rawDeflate(kText) + "behind";
  EXPECT_THAT(decoded(body, "deflate"), Optional(body));
  for (const char* text : {"success", "saved", "OK", "<html></html>", "{}", "0", "ko"})
    EXPECT_THAT(decoded(text, "deflate"), Optional(std::string(text)));
}

TEST(ContentCoding, SeveralCodingsAreDecodedInReverseOrder) {
  EXPECT_THAT(decoded(zlib(gzip(kText)), "gzip, deflate"), Optional(kText));
  EXPECT_THAT(decoded(zlib(gzip(kText)), "deflate, gzip"), Optional(gzip(kText)));
  EXPECT_THAT(decoded(gzip(gzip(kText)), "gzip,x-gzip"), Optional(kText));
  EXPECT_THAT(decoded(gzip(kText), "gzip, gzip"), Optional(kText)) << "named twice, applied once";
  EXPECT_THAT(decoded(zlib(gzip(kText)), " ,gzip,,\tutf-8 , deflate,"), Optional(kText));
}

TEST(ContentCoding, MoreThanFiveCodingsAreNotDecoded) {
  std::string body = kText;
  std::string codings;
  for (int i = 0; i < 5; ++i, codings += "gzip,") body = gzip(body);
  EXPECT_THAT(decoded(body, codings), Optional(kText));
  EXPECT_THAT(decoded(gzip(body), codings + "gzip"), Optional(gzip(body)));
  EXPECT_THAT(decoded(body, "utf-8,text," + codings + "8bit"), Optional(kText));
}

TEST(ContentCoding, LimitAppliesToEachStep) {
  const std::string within(kLimit, 'x');
  const std::string over(kLimit + 1, 'x');
  for (const char* coding : {"gzip", "deflate"}) {
    const bool isGzip = coding == std::string("gzip");
    EXPECT_THAT(decoded(isGzip ? gzip(within) : zlib(within), coding), Optional(within));
    EXPECT_EQ(decoded(isGzip ? gzip(over) : zlib(over), coding), std::nullopt);
  }
  EXPECT_EQ(decoded(rawDeflate(over), "deflate"), std::nullopt);
  EXPECT_EQ(decoded(gzip(within) + gzip("x"), "gzip"), std::nullopt) << "two members";
  EXPECT_EQ(decoded(gzip(gzip(over)), "gzip, gzip"), std::nullopt);
}

TEST(ContentCoding, DamagedBombExceedsLimit) {
  std::string bomb = gzip(std::string(kLimit * 100, 'x'));
  bomb.back() ^= 1;
  EXPECT_EQ(decoded(bomb, "gzip"), std::nullopt);
}

TEST(ContentCoding, ManyEmptyMembersAndNamesAreDecodedQuickly) {
  std::string members;
  for (const std::string member = gzip(""); members.size() < std::size_t{16} << 20;) members += member;
  std::string names;
  while (names.size() < std::size_t{1} << 20) names += "gzip,";
  const auto start = std::chrono::steady_clock::now();
  EXPECT_THAT(decoded(members, "gzip"), Optional(std::string()));
  EXPECT_THAT(decoded(members, names), Optional(members));
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

}  // namespace
