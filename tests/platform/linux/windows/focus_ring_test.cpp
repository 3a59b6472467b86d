#include "platform/linux/windows/focus_ring.h"

#include <gtest/gtest.h>

#include <QImage>

#include "platform/linux/desktop/appearance.h"
#include "platform/linux/desktop/color_contrast.h"
#include "tests/platform/linux/windows/support_layout.h"
#include "tests/platform/linux/windows/window_fixture.h"

namespace {

using platform::contrastRatio;
using platform::withContrast;

TEST(ColorContrast, IsRatioOfLuminances) {
  EXPECT_NEAR(contrastRatio(Qt::black, Qt::white), 21, 0.01);
  EXPECT_NEAR(contrastRatio(Qt::white, Qt::black), 21, 0.01);
  EXPECT_NEAR(contrastRatio(Qt::blue, Qt::white), 8.59, 0.01);
  EXPECT_NEAR(contrastRatio(QColor(0x76, 0x76, 0x76), Qt::white), 4.54, 0.01);
  EXPECT_NEAR(contrastRatio(Qt::red, Qt::red), 1, 0.01);
}

TEST(ColorContrast, SufficientColourIsKept) {
  EXPECT_EQ(withContrast(Qt::blue, QColor(0xe6, 0xe6, 0xe6), 4.5), QColor(Qt::blue));
  EXPECT_EQ(withContrast(Qt::yellow, Qt::black, 3), QColor(Qt::yellow));
}

TEST(ColorContrast, InsufficientColourIsChangedNoFurtherThanNecessary) {
  struct Row {
    QColor color, background;
    double ratio;
  };
  for (const Row& row :
       {Row{QColor(0x6b, 0xb5, 0xff), QColor(0xe6, 0xe6, 0xe6), 4.5},
        Row{QColor(0x30, 0x8c, 0xc6), QColor(0xe6, 0xe6, 0xe6), 3}, Row{Qt::white, Qt::white, 3},
        Row{Qt::black, Qt::black, 3}, Row{QColor(0x20, 0x20, 0x60), QColor(0x2b, 0x2d, 0x30), 3}}) {
    const double ratio = contrastRatio(withContrast(row.color, row.background, row.ratio), row.background);
    EXPECT_GE(ratio, row.ratio) << row.color.name().toStdString();
    EXPECT_LT(ratio, row.ratio * 1.25) << row.color.name().toStdString();
  }
}

TEST(ColorContrast, ImpossibleRatioYieldsBlackOrWhite) {
  EXPECT_EQ(withContrast(Qt::red, QColor(0x77, 0x77, 0x77), 21), QColor(Qt::black));
  EXPECT_EQ(withContrast(Qt::red, QColor(0x60, 0x60, 0x60), 21), QColor(Qt::white));
}

// The columns and rows, in device pixels, in which two pictures differ.
struct Bounds {
  int left = 100000, top = 100000, right = -1, bottom = -1;
};

class FocusRing : public WindowFixture, public testing::WithParamInterface<bool> {
 protected:
  void SetUp() override {
    WindowFixture::SetUp();
    platform::applyAppearance(GetParam());
    layout_ = std::make_unique<SupportLayout>();
    ASSERT_TRUE(show(*layout_->window));
  }
  void TearDown() override {
    layout_->window->close();
    platform::applyAppearance(false);
  }

  [[nodiscard]] QImage picture() const { return widgetOf(*layout_->window).grab().toImage(); }

  // Returns the pictures of the window without and with the input focus on this widget.
  [[nodiscard]] std::pair<QImage, QImage> picturesOf(QWidget& widget, QWidget& other) const {
    other.setFocus();
    const QImage without = picture();
    widget.setFocus();
    return {without, picture()};
  }

  [[nodiscard]] static Bounds difference(const QImage& one, const QImage& other, const QRect& area) {
    Bounds found;
    for (int y = area.top(); y <= area.bottom(); ++y) {
      for (int x = area.left(); x <= area.right(); ++x) {
        if (one.pixel(x, y) == other.pixel(x, y)) continue;
        found = {std::min(found.left, x), std::min(found.top, y), std::max(found.right, x),
                 std::max(found.bottom, y)};
      }
    }
    return found;
  }

  [[nodiscard]] static QRect pixelsOf(const QWidget& widget) {
    const QPoint place = widget.mapTo(widget.window(), QPoint(0, 0));
    const int scale = static_cast<int>(widget.devicePixelRatioF());
    return {place * scale, widget.size() * scale};
  }

  // Returns how many pixels from (x, y) in this direction have at least 3:1 to what was there before.
  [[nodiscard]] static int visiblePixels(const std::pair<QImage, QImage>& pictures, QPoint from,
                                         QPoint step) {
    int count = 0;
    for (QPoint at = from; contrastRatio(pictures.first.pixelColor(at), pictures.second.pixelColor(at)) >= 3;
         at += step)
      ++count;
    return count;
  }

  // Expects a ring of two points on all sides of what has changed, all of it in the widget's frame.
  void expectRing(QWidget& widget, QWidget& other, const char* what) const {
    const auto pictures = picturesOf(widget, other);
    const QRect frame = pixelsOf(widget);
    const Bounds ring = difference(pictures.first, pictures.second, frame);
    ASSERT_GE(ring.right, 0) << what;
    const int width = 2 * static_cast<int>(widget.devicePixelRatioF());
    const int middleX = (ring.left + ring.right) / 2, middleY = (ring.top + ring.bottom) / 2;
    EXPECT_GE(visiblePixels(pictures, {ring.left, middleY}, {1, 0}), width) << what;
    EXPECT_GE(visiblePixels(pictures, {ring.right, middleY}, {-1, 0}), width) << what;
    EXPECT_GE(visiblePixels(pictures, {middleX, ring.top}, {0, 1}), width) << what;
    EXPECT_GE(visiblePixels(pictures, {middleX, ring.bottom}, {0, -1}), width) << what;
    const Bounds all = difference(pictures.first, pictures.second, pictures.first.rect());
    const QRect others = pixelsOf(other);
    EXPECT_TRUE(all.left >= std::min(frame.left(), others.left()) &&
                all.right <= std::max(frame.right(), others.right()) &&
                all.top >= std::min(frame.top(), others.top()) &&
                all.bottom <= std::max(frame.bottom(), others.bottom()))
        << what;
  }

  std::unique_ptr<SupportLayout> layout_;
};

TEST_P(FocusRing, SurroundsButton) {
  expectRing(widgetOf(*layout_->update), widgetOf(*layout_->log), "Update");
  expectRing(widgetOf(*layout_->log), widgetOf(*layout_->update), "Log file");
}

TEST_P(FocusRing, SurroundsLink) {
  expectRing(widgetOf(*layout_->firstLink), widgetOf(*layout_->update), "short link");
  expectRing(widgetOf(*layout_->secondLink), widgetOf(*layout_->update), "truncated link");
}

INSTANTIATE_TEST_SUITE_P(Appearance, FocusRing, testing::Bool(),
                         [](const auto& test) { return test.param ? "Dark" : "Light"; });

// A picture may have any colours, so two rings are drawn, one of which is visible.
class FocusRingOnPicture : public WindowFixture, public testing::WithParamInterface<int> {};

TEST_P(FocusRingOnPicture, IsVisibleOnAnyGrey) {
  class Picture : public QWidget {
   public:
    bool isFocused = false;
    void paintEvent(QPaintEvent*) override {
      if (isFocused) platform::drawFocusRingOnPicture(*this, rect());
    }
  };
  Picture picture;
  picture.resize(40, 20);
  QPalette palette;
  palette.setColor(QPalette::Window, QColor(GetParam(), GetParam(), GetParam()));
  picture.setPalette(palette);
  const auto before = picture.grab().toImage();
  picture.isFocused = true;
  const auto after = picture.grab().toImage();
  const int scale = static_cast<int>(after.devicePixelRatio());
  int visible = 0;
  for (int x = 0; x < 6 * scale; ++x) {
    const QPoint at(x, 10 * scale);
    if (contrastRatio(before.pixelColor(at), after.pixelColor(at)) >= 3) ++visible;
  }
  EXPECT_GE(visible, 2 * scale);
}

INSTANTIATE_TEST_SUITE_P(Grey, FocusRingOnPicture, testing::Range(0, 256, 15));

}  // namespace
