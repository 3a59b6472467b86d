#include <gmock/gmock.h>

#include <algorithm>

#include "tests/end_to_end/support/support_fixture.h"

namespace {

using test_support::Colour;
using test_support::XPicture;

// In points from the window's lower left corner.
struct Frame {
  const char* what;
  int x, y, width, height;
};

// The visible parts of the controls' frames.
constexpr Frame icon{"icon", 0, 165, 135, 65}, name{"name", 0, 129, 135, 30},
    version{"version", 0, 105, 135, 30}, update{"Update", 10, 40, 120, 45}, faq{"FAQ", 150, 40, 120, 45},
    logFile{"Log file", 290, 40, 120, 45}, heading{"Notice", 135, 185, 280, 30},
    first{"first link", 140, 165, 280, 20}, second{"second link", 140, 135, 280, 20},
    description{"description", 140, 125, 240, 60}, copyright{"copyright", 0, 85, 420, 20},
    bannerFrame{"banner", 0, 0, 420, 40};

// The bounds of what is drawn in the picture, in points.
struct Ink {
  double left = 1e6, right = -1, bottom = 1e6, top = -1;
  [[nodiscard]] bool isThere() const { return right >= 0; }
  [[nodiscard]] double middleX() const { return (left + right) / 2; }
};

// Runs at one and at two device pixels per point.
class SupportFrames : public SupportTest {
 protected:
  // Captures the window once it no longer changes.
  void lookAtWindow() {
    ASSERT_TRUE(test_support::moveMouse(display_.name(), 2, 2));
    background_ = colourOf(bareSpot);
    std::vector<XPicture> two{whole(), whole()};
    ASSERT_TRUE(test_support::waitUntil([&] {
      two[0] = std::move(two[1]);
      two[1] = whole();
      return two[0] == two[1] && !(two[0].at(0, two[0].height() - 1) == background_);
    }));
    picture_ = std::make_unique<XPicture>(two[1]);
  }

  [[nodiscard]] bool drawnAt(int x, int y) const { return !(picture_->at(x, y) == background_); }

  [[nodiscard]] Ink inkIn(const Frame& frame) const {
    const int n = screenScale();
    Ink ink;
    for (int y = (240 - frame.y - frame.height) * n; y < (240 - frame.y) * n; ++y) {
      for (int x = frame.x * n; x < std::min(frame.x + frame.width, 420) * n; ++x) {
        if (!drawnAt(x, y)) continue;
        const double up = 240 - static_cast<double>(y) / n;
        ink.left = std::min(ink.left, static_cast<double>(x) / n);
        ink.right = std::max(ink.right, static_cast<double>(x + 1) / n);
        ink.top = std::max(ink.top, up);
        ink.bottom = std::min(ink.bottom, up - 1.0 / n);
      }
    }
    return ink;
  }

  void expectDrawnInThese(const std::vector<Frame>& frames) const {
    for (const Frame& frame : frames) EXPECT_TRUE(inkIn(frame).isThere()) << frame.what;
    const int n = screenScale();
    int outside = 0;
    for (int y = 0; y < picture_->height(); ++y) {
      for (int x = 0; x < picture_->width(); ++x) {
        const int pointX = x / n, pointY = 239 - y / n;
        const bool inside = std::ranges::any_of(frames, [&](const Frame& frame) {
          return pointX >= frame.x && pointX < frame.x + frame.width && pointY >= frame.y &&
                 pointY < frame.y + frame.height;
        });
        if (!inside && drawnAt(x, y)) ++outside;
      }
    }
    EXPECT_EQ(outside, 0) << "pixels are drawn outside of every control";
  }

  std::unique_ptr<XPicture> picture_;
  Colour background_;

 private:
  [[nodiscard]] XPicture whole() const { return pictureOfPart({0, 0}, 420, 240); }
};

TEST_F(SupportFrames, BackgroundIsUniformLightGrey) {
  launchAndOpen();
  const Colour grey = colourOf(bareSpot);
  EXPECT_NEAR(grey.red, 229.5, 1);
  EXPECT_TRUE(grey.red == grey.green && grey.green == grey.blue);
  EXPECT_EQ(window_.width, 420 * screenScale());
  EXPECT_EQ(window_.height, 240 * screenScale());
}

TEST_F(SupportFrames, WithNetworkAllIsDrawnInsideFrames) {
  launchAndOpen();
  lookAtWindow();
  if (HasFatalFailure()) return;
  expectDrawnInThese(
      {icon, name, version, update, faq, logFile, heading, first, second, copyright, bannerFrame});
}

TEST_F(SupportFrames, WithoutNetworkDescriptionIsDrawnInsideItsFrame) {
  server_.reset();
  launchAndOpen();
  lookAtWindow();
  if (HasFatalFailure()) return;
  expectDrawnInThese(
      {icon, name, version, update, faq, logFile, heading, description, copyright, bannerFrame});
  // At least three lines, which is more than half of the frame.
  const Ink text = inkIn(description);
  EXPECT_GT(text.top - text.bottom, 30);
}

TEST_F(SupportFrames, TextsAreAligned) {
  launchAndOpen();
  lookAtWindow();
  if (HasFatalFailure()) return;
  for (const Frame& centred : {icon, name, version})
    EXPECT_NEAR(inkIn(centred).middleX(), 70, 1.5) << centred.what;
  EXPECT_NEAR(inkIn(copyright).middleX(), 210, 1.5);
  EXPECT_LT(inkIn(heading).left, 135 + 5);
  EXPECT_LT(inkIn(first).left, 140 + 8);
  EXPECT_LT(inkIn(second).left, 140 + 8);
}

// Cap height is three quarters of the font size.
TEST_F(SupportFrames, TextsHaveTheirSizesAndStartAtTopOfFrames) {
  launchAndOpen();
  lookAtWindow();
  if (HasFatalFailure()) return;
  const auto expectText = [this](const Frame& frame, double height, double below) {
    const Ink ink = inkIn(frame);
    EXPECT_NEAR(ink.top - ink.bottom, height, 1) << frame.what;
    EXPECT_NEAR(frame.y + frame.height - ink.top, below, 1.5) << frame.what;
  };
  expectText({"name above the version", 0, 135, 135, 24}, 0.75 * 20, 4);
  expectText(version, 0.75 * 12 + 1, 1.5);
  expectText(heading, 0.75 * 14, 2);
  expectText(first, 0.75 * 12 + 3, 4);  // includes its underline
  expectText(second, 0.75 * 12 + 3, 4);
  expectText(copyright, 0.75 * 10 + 2.5, 1.5);  // includes the descenders of "p" and "y"
  EXPECT_NEAR(inkIn(icon).top, 230, 2.5);
  EXPECT_NEAR(inkIn(icon).top - inkIn(icon).bottom, 62, 2);
}

TEST_F(SupportFrames, ButtonsAreCentredInTheirFrames) {
  launchAndOpen();
  lookAtWindow();
  if (HasFatalFailure()) return;
  for (const Frame& button : {update, faq, logFile}) {
    const Ink ink = inkIn(button);
    EXPECT_NEAR(ink.middleX(), button.x + button.width / 2.0, 1) << button.what;
    EXPECT_NEAR((ink.top + ink.bottom) / 2, button.y + button.height / 2.0, 1.5) << button.what;
    EXPECT_GT(ink.right - ink.left, 100) << button.what;
    EXPECT_GT(ink.top - ink.bottom, 25) << button.what;
  }
}

TEST_F(SupportFrames, ButtonsAreClickableUpToTheirBezels) {
  launchAndOpen();
  // FAQ's bezel: 108 by 32 points in the middle of its frame.
  for (const Place inside : {Place{158, 48}, Place{262, 48}, Place{158, 76}, Place{262, 76}}) {
    timeline_.clear();
    clickAt(inside);
    EXPECT_TRUE(waitForText("log 6: -[nimbatrayAppDelegate faqBtnClick:]")) << inside.x << ", " << inside.y;
  }
  timeline_.clear();
  for (const Place outside : {Place{151, 62}, Place{268, 62}, Place{210, 42}, Place{210, 83}, Place{140, 62}})
    clickAt(outside);
  expectNothingRun();
}

TEST_F(SupportFrames, BannerFillsItsBand) {
  launchAndOpen();
  lookAtWindow();
  if (HasFatalFailure()) return;
  const int n = screenScale();
  int wrong = 0;
  for (int y = 199 * n; y < 240 * n; ++y) {
    for (int x = 0; x < 420 * n; ++x) wrong += (picture_->at(x, y) == red) != (y >= 200 * n) ? 1 : 0;
  }
  EXPECT_EQ(wrong, 0);
}

// Except for the focused button, which is drawn with the desktop's highlight.
TEST_F(SupportFrames, DarkDesktopLooksTheSame) {
  const auto look = [&] {
    lookAtWindow();
    return std::vector<XPicture>{pictureOfPart({0, 85}, 420, 155), pictureOfPart({130, 0}, 290, 85)};
  };
  launchAndOpen();
  const auto light = look();
  terminateAgent();
  ASSERT_TRUE(portal_.start(bus_, "1"));
  launchInPanel();
  openWindow();
  EXPECT_TRUE(light == look());
}

}  // namespace
