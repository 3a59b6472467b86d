#include <gtest/gtest.h>

#include <string>

#include <QBuffer>
#include <QImage>

#include "platform/image.h"
#include "platform/linux/images/image_impl.h"

namespace platform {
namespace {

std::string encodedPicture(const QImage& image, const char* format) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  EXPECT_TRUE(image.save(&buffer, format));
  return bytes.toStdString();
}

QImage pixels() {
  QImage image(6, 4, QImage::Format_ARGB32);
  image.fill(QColor(200, 100, 50, 128));
  return image;
}

TEST(ImageWithData, PngIsReadWithoutTexts) {
  QImage image = pixels();
  image.setText(QStringLiteral("a"), QString(1000, QLatin1Char('b')));
  const auto picture = imageWithData(encodedPicture(image, "PNG"));
  ASSERT_NE(picture, nullptr);
  EXPECT_EQ(picture->impl().representations.front().convertToFormat(QImage::Format_ARGB32), pixels());
  EXPECT_TRUE(picture->impl().representations.front().textKeys().isEmpty());
}

TEST(ImageWithData, PngKeepsPaletteAndTransparency) {
  QImage image(6, 4, QImage::Format_Indexed8);
  image.setColorTable({qRgba(200, 100, 50, 128)});
  image.fill(0);
  const auto picture = imageWithData(encodedPicture(image, "PNG"));
  ASSERT_NE(picture, nullptr);
  EXPECT_EQ(picture->impl().representations.front().pixelColor(0, 0), QColor(200, 100, 50, 128));
}

}  // namespace
}  // namespace platform
