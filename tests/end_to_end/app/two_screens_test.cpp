#include <algorithm>
#include <cstdlib>
#include <ostream>
#include <string>

#include "tests/end_to_end/app/icon_in_panel.h"
#include "tests/end_to_end/support/support_fixture.h"

namespace {

using test_support::Colour;
using test_support::XPicture;
using test_support::XWindow;

constexpr int screenWidth = 1280;
constexpr int screenHeight = 800;

// Device pixels per point; the first screen is the primary one.
struct Scales {
  int first;
  int second;
};

void PrintTo(const Scales& scales, std::ostream* out) {
  *out << scales.first << " beside " << scales.second;
}

bool isNotice(const XWindow& window) {
  return window.name == "Tovalin Notification";
}
bool isDockedIcon(const XWindow& window) {
  return window.className == "Tovalin" && window.width >= 20;
}

// Returns the mean difference, of 255 levels, between the colours of two pictures of the same size.
double meanDifference(const XPicture& one, const XPicture& other) {
  if (one.width() != other.width() || one.height() != other.height()) return 255;
  long sum = 0;
  for (int y = 0; y < one.height(); ++y) {
    for (int x = 0; x < one.width(); ++x) {
      const Colour a = one.at(x, y), b = other.at(x, y);
      sum += std::abs(a.red - b.red) + std::abs(a.green - b.green) + std::abs(a.blue - b.blue);
    }
  }
  return static_cast<double>(sum) / (3.0 * one.width() * one.height());
}

void useDisplay(TestDesktop& desktop, const test_support::DisplayOptions& options,
                const std::string& scales) {
  ASSERT_TRUE(desktop.display_.start(options));
  desktop.environment_["DISPLAY"] = desktop.display_.name();
  desktop.environment_["QT_SCREEN_SCALE_FACTORS"] = scales;
}

// Sets up two adjacent screens with different scales.
void useTwoScreens(TestDesktop& desktop, const Scales& scales) {
  useDisplay(desktop,
             {.width = 2 * screenWidth,
              .monitors = {{screenWidth, screenHeight, 0, 0}, {screenWidth, screenHeight, screenWidth, 0}}},
             std::to_string(scales.first) + ";" + std::to_string(scales.second));
}

class TwoScreens : public SupportTest, public testing::WithParamInterface<Scales> {
 protected:
  void SetUp() override {
    SupportTest::SetUp();
    if (!HasFatalFailure()) useTwoScreens(*this, GetParam());
  }

  // Expects a window of this size in points in the middle of the first screen.
  void expectCentred(const XWindow& window, int width, int height) {
    EXPECT_EQ(window.width, width * GetParam().first);
    EXPECT_EQ(window.height, height * GetParam().first);
    EXPECT_NEAR(window.x + window.width / 2.0, screenWidth / 2.0, 1);
    EXPECT_NEAR(window.y + window.height / 2.0, screenHeight / 2.0, 1);
  }

  [[nodiscard]] XPicture pictureOfNotice() const {
    const auto window = test_support::waitForWindow(display_.name(), isNotice);
    if (!window) return {{}, {}};
    return test_support::pictureOf(display_.name(), {window->x, window->y, window->width, window->height})
        .value_or(XPicture({}, {}));
  }
  // Returns the notice once it shows its text and no longer changes.
  [[nodiscard]] XPicture settledNotice() {
    launch();
    send("-non");
    XPicture before = pictureOfNotice(), now = before;
    const bool settled = test_support::waitUntil([&] {
      before = std::exchange(now, pictureOfNotice());
      return now == before && isInkIn(now);
    });
    EXPECT_TRUE(settled);
    terminateAgent();
    return now;
  }
  // Returns whether the text is drawn.
  [[nodiscard]] static bool isInkIn(const XPicture& notice) {
    for (int x = notice.width() / 4; x < notice.width(); ++x) {
      if (!(notice.at(x, notice.height() / 2) == notice.at(0, 0))) return true;
    }
    return false;
  }

  void moveSupportWindow(int x, int y) {
    runOnDisplay({"xdotool", "windowmove", std::to_string(window_.id), std::to_string(x), std::to_string(y)});
  }
  [[nodiscard]] bool supportWindowTakesScale(int scale) {
    return test_support::waitForWindow(display_.name(),
                                       [&](const XWindow& window) {
                                         window_ = isSupportWindow(window) ? window : window_;
                                         return isSupportWindow(window) && window.width == 420 * scale &&
                                                window.height == 240 * scale;
                                       })
        .has_value();
  }
};

TEST_P(TwoScreens, WindowsAreCentredOnPrimaryScreenAtItsScale) {
  launchInPanel();
  send("-non");
  const auto notice = test_support::waitForWindow(display_.name(), isNotice);
  ASSERT_TRUE(notice);
  expectCentred(*notice, 420, 80);
  send("-noff");
  openWindow();
  expectCentred(window_, 420, 240);
}

// Letters and the scaled icon differ slightly at their edges; drawn at the other screen's scale, the notice
// would differ by at least 3.5.
TEST_P(TwoScreens, NoticeIsAsSharpAsOnSingleScreenOfThatScale) {
  const XPicture notice = settledNotice();
  useDisplay(*this, {}, std::to_string(GetParam().first));
  EXPECT_LT(meanDifference(notice, settledNotice()), 2);
}

TEST_P(TwoScreens, WindowMovedToOtherScreenTakesItsScaleAndStaysInside) {
  launchInPanel();
  openWindow();
  moveSupportWindow(screenWidth + 20, 30);
  EXPECT_TRUE(supportWindowTakesScale(GetParam().second));
  EXPECT_GE(window_.x, screenWidth);
  EXPECT_GE(window_.y, window_.titleHeight);
  moveSupportWindow(screenWidth - 500, screenHeight - 300);
  EXPECT_TRUE(supportWindowTakesScale(GetParam().first));
  EXPECT_LE(window_.x + window_.width, screenWidth);
  EXPECT_LE(window_.y + window_.height, screenHeight);
}

TEST_P(TwoScreens, PanelOnBusGetsUnscaledIconForBothScales) {
  launchInPanel();
  for (const int scale : {1, 2})
    EXPECT_TRUE(panelShows(host_, agentContents() + "/Resources", "mount on", scale)) << scale;
}

INSTANTIATE_TEST_SUITE_P(, TwoScreens, testing::Values(Scales{1, 2}, Scales{2, 1}));

// An X tray on one of the two screens.
class TrayOnTwoScreens : public testing::TestWithParam<Scales>,
                         protected TestDesktop,
                         protected InstalledBundle,
                         protected RunningAgent {
 protected:
  TrayOnTwoScreens() : RunningAgent(*this, *this) {}
  void SetUp() override {
    setUpAgent();
    if (!HasFatalFailure()) useTwoScreens(*this, GetParam());
  }
  void TearDown() override { tearDownAgent(); }

  void startTray(const std::string& monitor) {
    ASSERT_TRUE(tray_.start({"trayer", "--edge", "bottom", "--align", "left", "--monitor", monitor,
                             "--SetDockType", "true", "--height", "48"},
                            {.environment = environment_, .error = test_support::Redirection::null()}));
  }

  // Returns whether the docked icon equals, pixel by pixel, the agent's picture of this scale, centred in the
  // tray's slot. The centre may lie between two pixels.
  [[nodiscard]] bool isDocked(int scale) {
    const auto slot = test_support::waitForWindow(display_.name(), isDockedIcon);
    if (!slot) return false;
    const int side = 20 * scale;
    const int x = slot->x + (slot->width - side) / 2, y = slot->y + (slot->height - side) / 2;
    for (const int up : {0, 1}) {
      const auto shown = test_support::pictureOf(display_.name(), {x, y - up, side, side});
      if (shown && isPicture(*shown, scale)) return true;
    }
    return false;
  }

  [[nodiscard]] bool isPicture(const XPicture& shown, int scale) const {
    const QImage wanted(
        QString::fromStdString(agentContents() + "/Resources/mount on" + (scale > 1 ? "@2x.png" : ".png")));
    // A corner that the picture does not cover.
    const Colour panel = shown.at(0, 0);
    for (int y = 0; y < wanted.height(); ++y) {
      for (int x = 0; x < wanted.width(); ++x) {
        if (!isBlend(shown.at(x, y), wanted.pixelColor(x, y), panel)) return false;
      }
    }
    return true;
  }

  [[nodiscard]] static bool isBlend(Colour shown, QColor ink, Colour panel) {
    const auto isNear = [&](int seen, int above, int below) {
      return std::abs(seen - (above * ink.alpha() + below * (255 - ink.alpha())) / 255) <= 2;
    };
    return isNear(shown.red, ink.red(), panel.red) && isNear(shown.green, ink.green(), panel.green) &&
           isNear(shown.blue, ink.blue(), panel.blue);
  }

  test_support::ChildProcess tray_;
};

TEST_P(TrayOnTwoScreens, ShowsUnscaledIconOnPrimaryScreen) {
  startTray("0");
  launchAgent();
  EXPECT_TRUE(test_support::waitUntil([&] { return isDocked(GetParam().first); }));
}

INSTANTIATE_TEST_SUITE_P(, TrayOnTwoScreens, testing::Values(Scales{1, 2}, Scales{2, 1}, Scales{2, 2}));

// The tray sizes the icon's slot for the scale of the primary screen.
class TrayOnTheCoarserScreen : public TrayOnTwoScreens {};

TEST_P(TrayOnTheCoarserScreen, ShowsUnscaledIcon) {
  startTray("1");
  launchAgent();
  EXPECT_TRUE(test_support::waitUntil([&] { return isDocked(GetParam().second); }));
}

INSTANTIATE_TEST_SUITE_P(, TrayOnTheCoarserScreen, testing::Values(Scales{2, 1}));

}  // namespace
