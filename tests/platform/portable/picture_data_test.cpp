#include "platform/portable/picture_data.h"

#include <gtest/gtest.h>

#include <string>

namespace platform {
namespace {

const std::string signature = "\x89PNG\r\n\x1a\n";

std::string chunk(const std::string& name, const std::string& contents) {
  return std::string(3, '\0') + static_cast<char>(contents.size()) + name + contents + "sum.";
}

TEST(PictureData, PngKeepsChunksOfPixels) {
  const std::string bare = signature + chunk("IHDR", "head") + chunk("PLTE", "colours") + chunk("tRNS", "a") +
                           chunk("IDAT", "pixels") + chunk("IDAT", "") + chunk("IEND", "");
  EXPECT_EQ(boundedPictureData(bare), bare);
}

TEST(PictureData, PngDropsOtherChunks) {
  const std::string head = signature + chunk("IHDR", "head"),
                    end = chunk("IDAT", "pixels") + chunk("IEND", "");
  for (const char* name : {"tEXt", "zTXt", "iTXt", "iCCP", "eXIf", "sPLT", "gAMA", "xxXx"})
    EXPECT_EQ(boundedPictureData(std::string(head).append(chunk(name, "much")).append(end)), head + end)
        << name;
  EXPECT_EQ(boundedPictureData(head + end + "what follows"), head + end);
}

TEST(PictureData, PngWithChunkBeyondEndIsRefused) {
  const std::string head = signature + chunk("IHDR", "head");
  EXPECT_FALSE(boundedPictureData(head + "\x7f\xff\xff\xfftEXt" + chunk("IEND", "")).has_value());
  EXPECT_FALSE(boundedPictureData(head + std::string("\0\0\0\x05IDATfoursum.", 16)).has_value());
}

TEST(PictureData, PngWithoutEndChunkIsRefused) {
  const std::string whole = signature + chunk("IHDR", "head") + chunk("IEND", "");
  for (std::size_t size = signature.size(); size < whole.size(); ++size)
    EXPECT_FALSE(boundedPictureData(whole.substr(0, size)).has_value()) << size;
}

TEST(PictureData, JpegIsLimitedTo64Scans) {
  std::string picture = "\xff\xd8";
  for (int i = 0; i < 64; ++i) picture += "\xff\xda pass";
  EXPECT_EQ(boundedPictureData(picture), picture);
  EXPECT_FALSE(boundedPictureData(picture + "\xff\xda").has_value());
}

TEST(PictureData, OtherFormatIsUnchanged) {
  const std::string bitmap = "BM" + std::string(100, '\xff') + "\xff\xda";
  for (const std::string& bytes : {std::string(), bitmap, signature.substr(0, 7)})
    EXPECT_EQ(boundedPictureData(bytes), bytes);
}

}  // namespace
}  // namespace platform
