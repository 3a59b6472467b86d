#include "notices/image_resize.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include <QGuiApplication>

#include "platform/image.h"
#include "platform/linux/images/image_impl.h"

namespace {

using platform::Image;
using platform::Size;

// Returns an image whose left half is opaque red and whose right half is transparent.
std::unique_ptr<Image> halfRed(double side) {
  auto image = std::make_unique<Image>(Size{side, side});
  QImage& pixels = image->impl().representations.front();
  for (int y = 0; y < pixels.height(); ++y) {
    for (int x = 0; x < pixels.width() / 2; ++x) pixels.setPixelColor(x, y, Qt::red);
  }
  return image;
}

std::size_t occurrences(const std::string& text, const std::string& word) {
  std::size_t count = 0;
  for (std::size_t at = text.find(word); at != std::string::npos; at = text.find(word, at + 1)) ++count;
  return count;
}

TEST(ImageResize, NullSourceReturnsNullAndLogsOnce) {
  testing::internal::CaptureStderr();
  EXPECT_EQ(imageResize(nullptr, 20, 20), nullptr);
  EXPECT_EQ(occurrences(testing::internal::GetCapturedStderr(), "Invalid Image\n"), 1u);
}

TEST(ImageResize, InvalidSourceReturnsNullAndKeepsItsSize) {
  Image source({0, 7});
  testing::internal::CaptureStderr();
  EXPECT_EQ(imageResize(&source, 20, 20), nullptr);
  EXPECT_EQ(occurrences(testing::internal::GetCapturedStderr(), "Invalid Image\n"), 1u);
  EXPECT_EQ(source.size(), (Size{0, 7}));
}

TEST(ImageResize, InvalidSourceStillScalesWhenResized) {
  Image source({0, 7});
  testing::internal::CaptureStderr();
  EXPECT_EQ(imageResize(&source, 20, 20), nullptr);
  testing::internal::GetCapturedStderr();
  EXPECT_TRUE(source.impl().scalesWhenResized);
}

TEST(ImageResize, SetsNewSizeOfSource) {
  Image source({100, 100});
  const auto resized = imageResize(&source, 240, 240);
  ASSERT_NE(resized, nullptr);
  EXPECT_EQ(resized->size(), (Size{240, 240}));
  EXPECT_EQ(source.size(), (Size{240, 240}));
  EXPECT_TRUE(source.impl().scalesWhenResized);
}

TEST(ImageResize, ReturnsNewImageAndLogsNothing) {
  Image source({20, 20});
  testing::internal::CaptureStderr();
  const auto resized = imageResize(&source, 20, 20);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_NE(resized.get(), &source);
}

TEST(ImageResize, FillsNewImageOfAnyProportions) {
  for (const Size size : {Size{240, 240}, Size{420, 40}, Size{20, 17}, Size{7, 90}}) {
    const auto resized = imageResize(halfRed(100).get(), size.width, size.height);
    ASSERT_NE(resized, nullptr);
    const QImage& pixels = resized->impl().representations.front();
    const int right = pixels.width() - 1, bottom = pixels.height() - 1;
    EXPECT_EQ(pixels.pixelColor(0, 0), QColor(Qt::red));
    EXPECT_EQ(pixels.pixelColor(0, bottom), QColor(Qt::red));
    EXPECT_EQ(pixels.pixelColor(right, 0).alpha(), 0);
    EXPECT_EQ(pixels.pixelColor(right, bottom).alpha(), 0);
  }
}

TEST(ImageResize, ShrinkingAveragesPixelsByArea) {
  Image stripes({200, 200});
  QImage& pixels = stripes.impl().representations.front();
  for (int y = 0; y < pixels.height(); ++y) {
    for (int x = 0; x < pixels.width(); ++x) pixels.setPixelColor(x, y, x % 2 == 0 ? Qt::black : Qt::white);
  }
  const auto resized = imageResize(&stripes, 10, 10);
  const QColor middle = resized->impl().representations.front().pixelColor(5, 5);
  EXPECT_NEAR(middle.red(), 128, 6);
}

// Each column of the small picture covers twenty of the large one, so the line has a weight of one twentieth.
TEST(ImageResize, ShrinkingKeepsThinLineAtAnyPosition) {
  for (int line = 0; line < 40; ++line) {
    Image large({200, 200});
    QImage& pixels = large.impl().representations.front();
    pixels = pixels.scaled(200, 200);
    pixels.fill(Qt::white);
    for (int y = 0; y < pixels.height(); ++y) pixels.setPixelColor(line, y, Qt::black);
    const auto resized = imageResize(&large, 10, 10);
    QImage small = resized->impl().representations.front();
    int darkness = 0;
    for (int x = 0; x < small.width(); ++x) darkness += 255 - small.pixelColor(x, small.height() / 2).red();
    EXPECT_NEAR(darkness, 255.0 * small.width() / pixels.width(), 3) << "line " << line;
  }
}

TEST(ImageResize, StatusIconHasOnePixelPerScreenPixel) {
  const double scale = qGuiApp->devicePixelRatio();
  const auto source = platform::imageNamed("mount on.png");
  const auto icon = imageResize(source.get(), 20, 20);
  ASSERT_NE(icon, nullptr);
  EXPECT_EQ(icon->pixelSize(), (Size{20 * scale, 20 * scale}));
  // The representation of exactly this size is copied pixel by pixel.
  EXPECT_EQ(
      icon->impl().representations.front(),
      source->impl().representationFor(20 * scale).convertToFormat(QImage::Format_ARGB32_Premultiplied));
}

TEST(ImageResize, InvalidSizeReturnsInvalidImageAndLogsOnce) {
  testing::internal::CaptureStderr();
  const auto resized = imageResize(halfRed(10).get(), -1, 20);
  EXPECT_EQ(occurrences(testing::internal::GetCapturedStderr(), "Invalid Image\n"), 1u);
  ASSERT_NE(resized, nullptr);
  EXPECT_FALSE(resized->isValid());
}

}  // namespace
