#include "platform/image.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <filesystem>
#include <limits>
#include <string>
#include <utility>

#include <QBuffer>
#include <QGuiApplication>
#include <QImage>

#include "platform/linux/images/image_impl.h"

namespace platform {
namespace {

TEST(ImageNamed, ReturnsNewImageAtEachCall) {
  const auto first = imageNamed("icon.png");
  const auto second = imageNamed("icon.png");
  ASSERT_NE(first, nullptr);
  EXPECT_NE(first, second);
  first->setSize({60, 60});
  EXPECT_EQ(second->size(), (Size{512, 512}));
}

TEST(ImageNamed, HasSizeInPointsAndRepresentationForScreen) {
  const auto icon = imageNamed("mount on.png");
  ASSERT_NE(icon, nullptr);
  EXPECT_EQ(icon->size(), (Size{20, 20}));
  const double scale = qGuiApp->devicePixelRatio();
  EXPECT_EQ(icon->pixelSize(), (Size{20 * scale, 20 * scale}));
  for (const QImage& representation : icon->impl().representations)
    EXPECT_EQ(representation.devicePixelRatio(), 1) << "the representation has a device pixel ratio";
}

TEST(ImageNamed, ReturnsNullForMissingPicture) {
  EXPECT_EQ(imageNamed("no such picture.png"), nullptr);
}

TEST(ImageNamed, ReturnsNullForOtherFile) {
  EXPECT_EQ(imageNamed("../MacOS/image_test"), nullptr);
}

TEST(ImageNamed, DrawingDoesNotChangeLaterImages) {
  const auto first = imageNamed("icon.png");
  ASSERT_NE(first, nullptr);
  const QImage before = first->impl().representations.front().copy();
  first->impl().representations.front().fill(Qt::red);
  EXPECT_EQ(imageNamed("icon.png")->impl().representations.front(), before);
}

TEST(ImageNamed, ChangedPictureIsReadAgain) {
  const std::string toTheTop = "../../../../../../../../../../../../../../../../../../../..";
  for (const int side : {4, 6}) {
    ASSERT_TRUE(QImage(side, side, QImage::Format_ARGB32).save(QStringLiteral("/tmp/changing.png")));
    const auto picture = imageNamed(toTheTop + "/tmp/changing.png");
    ASSERT_NE(picture, nullptr);
    EXPECT_EQ(picture->size().width, side);
  }
}

TEST(ImageNamed, ChangedPictureOfSameLengthIsReadAgain) {
  const std::string toTheTop = "../../../../../../../../../../../../../../../../../../../..";
  const auto second = std::filesystem::file_time_type::clock::now() - std::chrono::hours(1);
  const auto first = second - std::chrono::seconds(1);
  for (const auto& [colour, time] : {std::pair(Qt::red, first), std::pair(Qt::blue, second)}) {
    QImage picture(4, 4, QImage::Format_RGB32);
    picture.fill(colour);
    ASSERT_TRUE(picture.save(QStringLiteral("/tmp/same length.bmp")));
    std::filesystem::last_write_time("/tmp/same length.bmp", time);
    const auto image = imageNamed(toTheTop + "/tmp/same length.bmp");
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->impl().representations.front().pixelColor(0, 0), QColor(colour));
  }
}

TEST(Image, HasPixelsForScaleOfScreen) {
  const double scale = qGuiApp->devicePixelRatio();
  EXPECT_EQ(Image({20, 17}).pixelSize(), (Size{20 * scale, 17 * scale}));
  EXPECT_EQ(Image({10.4, 3.2}).pixelSize(), (Size{std::ceil(10.4 * scale), std::ceil(3.2 * scale)}));
}

TEST(Image, IsInitiallyTransparent) {
  const Image image({2, 2});
  ASSERT_TRUE(image.isValid());
  EXPECT_EQ(image.impl().representations.front().pixelColor(0, 0).alpha(), 0);
}

TEST(Image, IsInvalidIfEmptyOrTooLarge) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  for (const Size size :
       {Size{0, 20}, Size{20, 0}, Size{-20, 20}, Size{nan, 20}, Size{1e6, 1e6}, Size{1e300, 1}}) {
    const Image image(size);
    EXPECT_FALSE(image.isValid()) << size.width << " by " << size.height;
    EXPECT_EQ(image.pixelSize(), Size{});
  }
}

std::string encoded(const QImage& image, const char* format) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  EXPECT_TRUE(image.save(&buffer, format));
  return bytes.toStdString();
}

QImage pixels(int width, int height, QImage::Format format = QImage::Format_RGB32) {
  QImage image(width, height, format);
  image.fill(Qt::red);
  return image;
}

TEST(Image, IsLimitedTo64MillionPixels) {
  const double side = 8000 / qGuiApp->devicePixelRatio();
  EXPECT_TRUE(Image({side, side}).isValid());
  EXPECT_FALSE(Image({side, side + 1}).isValid());
}

TEST(Image, ShrinkIntoNeverEnlarges) {
  const Image image({40, 20});
  EXPECT_EQ(image.impl().shrinkInto({400, 400}), 1.0);
  EXPECT_EQ(image.impl().shrinkInto({20, 20}), 0.5);
  EXPECT_EQ(image.impl().shrinkInto({40, 5}), 0.25);
}

TEST(ImageWithData, HasOnePointPerPixel) {
  for (const char* format : {"PNG", "JPG", "BMP", "PPM"}) {
    const auto image = imageWithData(encoded(pixels(42, 4), format));
    ASSERT_NE(image, nullptr) << format;
    EXPECT_EQ(image->size(), (Size{42, 4}));
    EXPECT_EQ(image->pixelSize(), (Size{42, 4}));
  }
}

TEST(ImageWithData, ReturnsNullForInvalidPicture) {
  const std::string png = encoded(pixels(42, 4), "PNG");
  for (const std::string& bytes : {std::string(), std::string("text"), png.substr(0, 20), png.substr(1)})
    EXPECT_EQ(imageWithData(bytes), nullptr);
}

// 4096 x 4096 pixels of four bytes take 64 MiB.
TEST(ImageWithData, IsLimitedTo64Mebibytes) {
  EXPECT_NE(imageWithData(encoded(pixels(4096, 4096), "PNG")), nullptr);
  EXPECT_EQ(imageWithData(encoded(pixels(4096, 4097), "PNG")), nullptr);
  EXPECT_EQ(imageWithData(encoded(pixels(4096, 3000, QImage::Format_RGBA64), "PNG")), nullptr);
}

TEST(ImageWithData, BombIsDetectedByItsHeader) {
  std::string bomb = encoded(pixels(1, 1), "BMP");
  // Offsets of width and height in the header of a BMP file.
  for (const std::size_t at : {18u, 22u}) bomb.replace(at, 4, std::string("\x30\x75\0\0", 4));
  EXPECT_EQ(imageWithData(bomb), nullptr);
}

TEST(ImageWithData, SvgIsRefused) {
  EXPECT_EQ(imageWithData("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"42\" height=\"4\"/>"), nullptr);
}

TEST(ImageFocus, InvalidSourceOrTargetIsNoOp) {
  Image nowhere({0, 0});
  const Image source({4, 4});
  ImageFocus(nowhere).draw(source, {0, 0}, {0, 0, 4, 4}, CompositingOperation::Copy, 1.0);
  EXPECT_FALSE(nowhere.isValid());

  Image target({4, 4});
  ImageFocus(target).draw(nowhere, {0, 0}, {0, 0, 4, 4}, CompositingOperation::Copy, 1.0);
  EXPECT_EQ(target.impl().representations.front().pixelColor(1, 1).alpha(), 0);
}

TEST(ImageFocus, HighInterpolationDrawsCurrentPixels) {
  Image source({8, 8});
  for (const Qt::GlobalColor colour : {Qt::red, Qt::blue}) {
    source.impl().representations.front().fill(colour);
    Image target({4, 4});
    ImageFocus focus(target);
    focus.setImageInterpolation(ImageInterpolation::High);
    focus.draw(source, {0, 0}, {0, 0, 4, 4}, CompositingOperation::Copy, 1.0);
    EXPECT_EQ(target.impl().representations.front().pixelColor(1, 1), QColor(colour));
  }
}

TEST(ImageFocus, DrawingIntoScaledImageDoesNotChangeOthers) {
  Image source({8, 8}), first({4, 4}), second({4, 4});
  source.impl().representations.front().fill(Qt::red);
  const auto drawInto = [&](Image& target) {
    ImageFocus focus(target);
    focus.setImageInterpolation(ImageInterpolation::High);
    focus.draw(source, {0, 0}, {0, 0, 8, 8}, CompositingOperation::Copy, 1.0);
  };
  source.setScalesWhenResized(true);
  drawInto(first);
  first.impl().representations.front().fill(Qt::blue);
  drawInto(second);
  EXPECT_EQ(second.impl().representations.front().pixelColor(1, 1), QColor(Qt::red));
}

// A named picture, whose scaled pixels are cached.
TEST(ImageFocus, PartsOfOnePictureAreCachedSeparately) {
  const std::string toTheTop = "../../../../../../../../../../../../../../../../../../../..";
  QImage quarters(8, 8, QImage::Format_RGB32);
  const std::array colours = {Qt::red, Qt::green, Qt::blue, Qt::white};
  for (int i = 0; i < 64; ++i)
    quarters.setPixelColor(i % 8, i / 8, colours[static_cast<std::size_t>(i % 8 / 4 + i / 32 * 2)]);
  ASSERT_TRUE(quarters.save(QStringLiteral("/tmp/quarters.bmp")));
  const auto source = imageNamed(toTheTop + "/tmp/quarters.bmp");
  ASSERT_NE(source, nullptr);
  for (std::size_t i = 0; i < colours.size(); ++i) {
    Image target({4, 4});
    ImageFocus focus(target);
    focus.setImageInterpolation(ImageInterpolation::High);
    const double x = i % 2 == 0 ? 0 : 4, y = i < 2 ? 4 : 0;
    focus.draw(*source, {0, 0}, {x, y, 4, 4}, CompositingOperation::Copy, 1.0);
    EXPECT_EQ(target.impl().representations.front().pixelColor(1, 1), QColor(colours[i])) << i;
  }
}

TEST(ImageFocus, FractionBlendsWithHighInterpolation) {
  Image source({4, 4}), target({4, 4});
  source.impl().representations.front().fill(Qt::white);
  target.impl().representations.front().fill(Qt::black);
  ImageFocus focus(target);
  focus.setImageInterpolation(ImageInterpolation::High);
  focus.draw(source, {0, 0}, {0, 0, 4, 4}, CompositingOperation::Copy, 0.5);
  EXPECT_NEAR(target.impl().representations.front().pixelColor(1, 1).red(), 128, 2);
}

TEST(ImageFocus, OriginIsLowerLeft) {
  Image source({4, 4}), target({4, 4});
  source.impl().representations.front().fill(Qt::red);
  ImageFocus(target).draw(source, {0, 0}, {0, 0, 4, 1}, CompositingOperation::Copy, 1.0);
  const QImage& pixels = target.impl().representations.front();
  EXPECT_EQ(pixels.pixelColor(0, pixels.height() - 1), QColor(Qt::red));
  EXPECT_EQ(pixels.pixelColor(0, 0).alpha(), 0);
}

TEST(ImageFocus, CopyReplacesAndSourceOverBlends) {
  Image clear({2, 2}), copied({2, 2}), covered({2, 2});
  for (Image* image : {&copied, &covered}) image->impl().representations.front().fill(Qt::blue);
  ImageFocus(copied).draw(clear, {0, 0}, {0, 0, 2, 2}, CompositingOperation::Copy, 1.0);
  ImageFocus(covered).draw(clear, {0, 0}, {0, 0, 2, 2}, CompositingOperation::SourceOver, 1.0);
  EXPECT_EQ(copied.impl().representations.front().pixelColor(0, 0).alpha(), 0);
  EXPECT_EQ(covered.impl().representations.front().pixelColor(0, 0), QColor(Qt::blue));
}

TEST(ImageFocus, StretchesSourceOnlyIfItScalesWhenResized) {
  for (const bool scales : {false, true}) {
    Image source({2, 2}), target({4, 4});
    source.impl().representations.front().fill(Qt::red);
    source.setScalesWhenResized(scales);
    source.setSize({4, 4});
    ImageFocus(target).draw(source, {0, 0}, {0, 0, 4, 4}, CompositingOperation::Copy, 1.0);
    const QColor upperRight = target.impl().representations.front().pixelColor(
        target.impl().representations.front().width() - 1, 0);
    EXPECT_EQ(upperRight.alpha(), scales ? 255 : 0);
  }
}

}  // namespace
}  // namespace platform
