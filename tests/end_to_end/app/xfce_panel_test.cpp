#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <functional>

#include "tests/end_to_end/agent_test.h"
#include "tests/end_to_end/app/tray_windows.h"
#include "tests/harness/contrast.h"
#include "tests/harness/desktop/x_input.h"
#include "tests/harness/desktop/x_picture.h"

namespace {

using test_support::ChildProcess;
using test_support::Colour;
using test_support::Redirection;
using test_support::ScreenArea;
using test_support::XWindow;

constexpr double leastContrast = 3;
constexpr int panelHeight = 32;
// The right part of the panel, without the clock.
constexpr int iconsBegin = 900;
constexpr ScreenArea icons{.x = iconsBegin, .y = 0, .width = 1280 - iconsBegin, .height = panelHeight};

double luminance(Colour colour) {
  return test_support::luminance(colour.red, colour.green, colour.blue);
}

double contrast(Colour one, Colour other) {
  return test_support::contrastRatio(luminance(one), luminance(other));
}

bool isMenuOfPanel(const XWindow& window) {
  return !window.managed && !tray_test::isAgents(window) && window.height > 100;
}

// The agent in a panel of XFCE, which recolours the icon and shows the menu itself. `GetParam`: whether the
// panel is dark.
class XfcePanel : public AgentTest, public testing::WithParamInterface<bool> {
 protected:
  void SetUp() override {
    AgentTest::SetUp();
    if (HasFatalFailure()) return;
    environment_["NO_AT_BRIDGE"] = "1";
    environment_["GSETTINGS_BACKEND"] = "memory";
    std::filesystem::copy(
        TOVALIN_DESKTOP_CONFIG, "/tmp/home/.config",
        std::filesystem::copy_options::recursive | std::filesystem::copy_options::overwrite_existing);
    startSettings();
    runOnDisplay({"xfconf-query", "--channel", "xfce4-panel", "--property", "/panels/dark-mode", "--set",
                  GetParam() ? "true" : "false"});
    ASSERT_TRUE(panel_.start({"xfce4-panel", "--disable-wm-check"},
                             {.environment = environment_, .error = Redirection::null()}));
    ASSERT_TRUE(test_support::waitUntil([this] { return isHostRegistered(); }));
    launchAgent();
    ASSERT_TRUE(test_support::waitUntil([this] { return findIcon(); }));
  }

  void startSettings() {
    ASSERT_TRUE(settings_.start(
        {"sh", "-c", "exec $(sed -n s/^Exec=//p /usr/share/dbus-1/services/org.xfce.Xfconf.service)"},
        {.environment = environment_, .error = Redirection::null()}));
    ASSERT_TRUE(test_support::waitUntil([this] {
      return !attempt("xfconf-query --channel xfce4-panel --property /panels/dark-mode 2>&-").empty();
    }));
  }

  // Returns the output of a command that may fail while a program starts.
  std::string attempt(const std::string& command) { return runOnDisplay({"sh", "-c", command + " || true"}); }

  [[nodiscard]] bool isHostRegistered() {
    const std::string answer = attempt(
        "dbus-send --print-reply --dest=org.kde.StatusNotifierWatcher /StatusNotifierWatcher "
        "org.freedesktop.DBus.Properties.Get string:org.kde.StatusNotifierWatcher "
        "string:IsStatusNotifierHostRegistered 2>&1");
    return answer.find("boolean true") != std::string::npos;
  }

  // Finds the pixels that differ from the panel's colour. Returns false unless they are an icon.
  bool findIcon() {
    const auto picture = test_support::pictureOf(display_.name(), icons);
    if (!picture) return false;
    const Colour panel = picture->at(0, panelHeight / 2);
    left_ = top_ = icons.width;
    right_ = bottom_ = -1;
    panelColour_ = panel;
    for (int y = 4; y < panelHeight - 4; ++y) {
      for (int x = 0; x < icons.width; ++x) {
        if (contrast(picture->at(x, y), panel) < leastContrast) continue;
        left_ = std::min(left_, x), right_ = std::max(right_, x);
        top_ = std::min(top_, y), bottom_ = std::max(bottom_, y);
      }
    }
    return right_ - left_ >= 8 && right_ - left_ < panelHeight && bottom_ - top_ >= 12;
  }

  [[nodiscard]] std::optional<XWindow> openMenu(int button) {
    EXPECT_TRUE(test_support::clickMouse(display_.name(), iconsBegin + (left_ + right_) / 2,
                                         (top_ + bottom_) / 2, button));
    return test_support::waitForWindow(display_.name(), isMenuOfPanel);
  }
  // Repeats the input, because a menu that has just opened may not have its grab yet.
  [[nodiscard]] bool menuCloses(const std::function<bool()>& input) {
    return test_support::waitUntil([&] {
      EXPECT_TRUE(input());
      return test_support::waitForNoWindow(display_.name(), isMenuOfPanel, std::chrono::milliseconds(300));
    });
  }

  ChildProcess settings_;
  ChildProcess panel_;
  int left_ = 0, top_ = 0, right_ = 0, bottom_ = 0;
  Colour panelColour_;
};

TEST_P(XfcePanel, ShowsVisibleIconAndItsMenuOnBothButtons) {
  EXPECT_EQ(luminance(panelColour_) < 0.2, GetParam());
  for (const int button : {1, 3}) {
    const auto menu = openMenu(button);
    ASSERT_TRUE(menu) << button;
    EXPECT_LE(std::abs(menu->y - panelHeight), panelHeight) << button;
    EXPECT_LE(menu->x, iconsBegin + right_) << button;
    EXPECT_GE(menu->x + menu->width, iconsBegin + left_) << button;
    EXPECT_TRUE(menuCloses([this] { return test_support::pressKey(display_.name(), "Escape"); })) << button;
    ASSERT_TRUE(openMenu(button)) << button;
    EXPECT_TRUE(menuCloses([this] { return test_support::clickMouse(display_.name(), 300, 600); })) << button;
  }
  EXPECT_FALSE(test_support::waitForWindow(display_.name(), tray_test::isMenu, std::chrono::milliseconds(0)));
}

INSTANTIATE_TEST_SUITE_P(LightAndDark, XfcePanel, testing::Bool(),
                         [](const auto& panel) { return panel.param ? "Dark" : "Light"; });

}  // namespace
