#include "platform/linux/tray/icon_pixels.h"

#include <gtest/gtest.h>

#include <string>

#include "notices/image_resize.h"
#include "platform/bundle.h"
#include "platform/image.h"
#include "platform/linux/images/image_impl.h"

namespace {

using platform::IconPixels;
using platform::iconPixels;

std::string bytesOf(const IconPixels& pixels) {
  return pixels.bytes.toStdString();
}

TEST(IconPixels, AreAlphaRedGreenBlueForEveryImageFormat) {
  struct Row {
    QImage::Format format;
    QColor colour;
    std::string bytes;
  };
  for (const Row& row :
       {Row{QImage::Format_ARGB32, QColor(1, 2, 3, 255), "\xff\x01\x02\x03"},
        Row{QImage::Format_ARGB32, QColor(200, 100, 50, 0), std::string("\0\xc8\x64\x32", 4)},
        Row{QImage::Format_ARGB32_Premultiplied, QColor(255, 0, 255, 51), std::string("\x33\xff\0\xff", 4)},
        Row{QImage::Format_RGB32, QColor(1, 2, 3), "\xff\x01\x02\x03"},
        Row{QImage::Format_RGBA8888, QColor(1, 2, 3, 4), "\x04\x01\x02\x03"}}) {
    QImage picture(1, 1, row.format);
    picture.setPixelColor(0, 0, row.colour);
    const IconPixels pixels = iconPixels(picture);
    EXPECT_EQ(pixels.width, 1);
    EXPECT_EQ(pixels.height, 1);
    EXPECT_EQ(bytesOf(pixels), row.bytes) << row.format;
  }
}

// Rows of an image of odd width, at one byte per pixel, end with padding bytes.
TEST(IconPixels, StartAtTopLeftWithoutPaddingBetweenRows) {
  QImage picture(3, 2, QImage::Format_Grayscale8);
  for (int i = 0; i < 6; ++i) picture.setPixelColor(i % 3, i / 3, QColor(i, i, i));
  const IconPixels pixels = iconPixels(picture);
  EXPECT_EQ(pixels.width, 3);
  EXPECT_EQ(pixels.height, 2);
  ASSERT_EQ(pixels.bytes.size(), 24);
  for (int i = 0; i < 6; ++i) EXPECT_EQ(pixels.bytes[4 * i + 1], i);
}

TEST(PanelPixels, HaveImageAtOneTwoAndFourPixelsPerPoint) {
  const platform::Image image({20, 10});
  const auto all = platform::panelPixels(&image);
  ASSERT_EQ(all.size(), 3);
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(all[i].width, 20 << i);
    EXPECT_EQ(all[i].height, 10 << i);
    EXPECT_EQ(all[i].bytes.size(), 4 * (20 << i) * (10 << i));
  }
}

QImage bundled(const char* name) {
  const auto bundle = platform::Bundle::mainBundle();
  return QImage(QString::fromStdString(bundle.value().pathForResource(name)));
}

// Also on screens of scale 1, where the image itself has no finer pixels.
TEST(PanelPixels, ComeFromFinestFileThatIsNeeded) {
  const auto source = platform::imageNamed("mount on.png");
  const auto icon = imageResize(source.get(), 20, 20);
  const auto all = platform::panelPixels(icon.get());
  ASSERT_EQ(all.size(), 3);
  EXPECT_EQ(bytesOf(all[0]), bytesOf(iconPixels(bundled("mount on.png"))));
  EXPECT_EQ(bytesOf(all[1]), bytesOf(iconPixels(bundled("mount on@2x.png"))));
  EXPECT_EQ(bytesOf(all[2]), bytesOf(iconPixels(bundled("mount on@4x.png"))));
}

TEST(PanelPixels, AreEnlargedWhereFileDoesNotShowWholeImage) {
  const auto source = platform::imageNamed("mount on.png");
  const auto icon = imageResize(source.get(), 20, 20);
  platform::ImageFocus(*icon).draw(*platform::imageNamed("n.png"), {0, 0}, {0, 0, 10, 10},
                                   platform::CompositingOperation::SourceOver, 1.0);
  const auto all = platform::panelPixels(icon.get());
  ASSERT_EQ(all.size(), 3);
  EXPECT_EQ(bytesOf(all[2]), bytesOf(iconPixels(icon->impl().scaledTo({80, 80}))));
  EXPECT_NE(bytesOf(all[2]), bytesOf(iconPixels(bundled("mount on@4x.png"))));
}

TEST(PanelPixels, AreEmptyWithoutPicture) {
  EXPECT_TRUE(platform::panelPixels(nullptr).isEmpty());
  const platform::Image invalid({0, 0});
  EXPECT_TRUE(platform::panelPixels(&invalid).isEmpty());
}

}  // namespace
