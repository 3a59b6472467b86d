#include "tests/harness/desktop/x_windows.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "tests/harness/desktop/test_display.h"
#include "tests/harness/desktop/x_connection.h"
#include "tests/harness/desktop/x_input.h"
#include "tests/harness/desktop/x_picture.h"
#include "tests/harness/processes/child_process.h"

namespace test_support {
namespace {

using namespace std::chrono_literals;

constexpr Colour kLowColour{200, 100, 50};
constexpr Colour kHighColour{10, 20, 30};

// A display with a program that has the windows "Low" and, kept above, "High".
class XWindowsTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(display_.start());
    ASSERT_TRUE(sample_.start({TOVALIN_SAMPLE_WINDOW_PROGRAM}, {.environment = {{"DISPLAY", name()}}}));
    ASSERT_TRUE(waitForWindow(name(), windowNamed("Low")));
    const auto isAbove = [](const XWindow& window) {
      return window.name == "High" && !window.states.empty();
    };
    ASSERT_TRUE(waitForWindow(name(), isAbove));
  }

  [[nodiscard]] const std::string& name() const { return display_.name(); }
  [[nodiscard]] XWindow window(const std::string& title) const {
    return waitForWindow(name(), windowNamed(title)).value_or(XWindow{});
  }
  [[nodiscard]] bool waitForColour(const XWindow& of, Colour colour) const {
    return waitUntil([&] { return colourAt(name(), of.x + 5, of.y + 5) == colour; });
  }

  TestDisplay display_;
  ChildProcess sample_;
};

TEST_F(XWindowsTest, ReportsWindowAttributes) {
  const XWindow low = window("Low");
  EXPECT_EQ(low.className, "sample_window_program");
  EXPECT_EQ(low.width, 300);
  EXPECT_EQ(low.height, 200);
  EXPECT_GT(low.titleHeight, 5);
  EXPECT_TRUE(low.managed);
  EXPECT_THAT(window("High").states, testing::Contains("_NET_WM_STATE_ABOVE"));
}

TEST_F(XWindowsTest, PositionIsThatOfContent) {
  const XWindow low = window("Low");
  ASSERT_TRUE(waitForColour(low, kLowColour));
  EXPECT_EQ(colourAt(name(), low.x, low.y), kLowColour);
  EXPECT_NE(colourAt(name(), low.x, low.y - 2), kLowColour);
  EXPECT_EQ(colourAt(name(), low.x + 299, low.y + 199), kLowColour);
  EXPECT_NE(colourAt(name(), low.x + 300, low.y + 199), kLowColour);
}

TEST_F(XWindowsTest, WindowsAreListedBottomToTop) {
  std::vector<std::string> names;
  for (const XWindow& each : windowsOn(name())) {
    if (each.className == "sample_window_program") names.push_back(each.name);
  }
  EXPECT_THAT(names, testing::ElementsAre("Low", "High"));
}

TEST_F(XWindowsTest, ClickReachesProgramAtItsPosition) {
  const XWindow low = window("Low");
  ASSERT_TRUE(clickMouse(name(), low.x + 30, low.y + 40, 3));
  EXPECT_EQ(sample_.readLine(), "press Low 30 40 2");
  EXPECT_EQ(sample_.readLine(), "release Low 30 40 2");
}

TEST_F(XWindowsTest, ButtonIsReleasedAtSecondPosition) {
  const XWindow low = window("Low");
  ASSERT_TRUE(pressMouse(name(), low.x + 30, low.y + 40));
  ASSERT_TRUE(releaseMouse(name(), low.x + 50, low.y + 60));
  EXPECT_EQ(sample_.readLine(), "press Low 30 40 1");
  EXPECT_EQ(sample_.readLine(), "release Low 50 60 1");
}

TEST_F(XWindowsTest, KeysReachFocusedWindow) {
  const XWindow low = window("Low");
  ASSERT_TRUE(clickMouse(name(), low.x + 30, low.y + 40));
  ASSERT_TRUE(waitUntil([&] { return activeWindowOn(name()) == low.id; }));
  ASSERT_TRUE(sample_.readLine());
  ASSERT_TRUE(sample_.readLine());
  ASSERT_TRUE(pressKey(name(), "x"));
  EXPECT_EQ(sample_.readLine(), "key x");
  ASSERT_TRUE(typeText(name(), "yz"));
  EXPECT_EQ(sample_.readLine(), "key y");
  EXPECT_EQ(sample_.readLine(), "key z");
}

TEST_F(XWindowsTest, CloseRequestReachesProgram) {
  requestClose(name(), window("High").id);
  EXPECT_EQ(sample_.readLine(), "close High");
  EXPECT_TRUE(waitForNoWindow(name(), windowNamed("High")));
  EXPECT_TRUE(waitForWindow(name(), windowOfClass("sample_window_program")));
}

TEST_F(XWindowsTest, ProgramAnswersPing) {
  EXPECT_TRUE(waitForAnswerToPing(name(), window("Low").id));
}

TEST_F(XWindowsTest, WaitsEndAtTimeout) {
  EXPECT_FALSE(waitForAnswerToPing(name(), XConnection(name()).root(), 50ms));
  EXPECT_FALSE(waitForWindow(name(), windowNamed("Absent"), 50ms));
  EXPECT_FALSE(waitForNoWindow(name(), windowNamed("Low"), 50ms));
}

TEST_F(XWindowsTest, PictureShowsAreaOfDisplay) {
  const XWindow high = window("High");
  ASSERT_TRUE(waitForColour(high, kHighColour));
  const auto picture = pictureOf(name(), {high.x - 1, high.y, high.width + 1, high.height});
  ASSERT_TRUE(picture);
  EXPECT_EQ(picture->width(), 121);
  EXPECT_NE(picture->at(0, 0), kHighColour);
  EXPECT_EQ(picture->at(1, 0), kHighColour);
  EXPECT_EQ(picture->at(120, 89), kHighColour);
  EXPECT_THROW((void)picture->at(121, 0), std::out_of_range);
}

TEST_F(XWindowsTest, PictureIsSavedInItsColours) {
  const XWindow high = window("High");
  ASSERT_TRUE(waitForColour(high, kHighColour));
  const auto picture = pictureOf(name(), {high.x, high.y, high.width, high.height});
  ASSERT_TRUE(picture);
  ASSERT_TRUE(picture->save("/tmp/high.ppm"));
  ChildProcess identify;
  ASSERT_TRUE(identify.start({"convert", "/tmp/high.ppm", "-format", "%wx%h %[pixel:p{5,5}]", "info:"}));
  EXPECT_EQ(identify.readLine(), "120x90 srgb(10,20,30)");
}

TEST_F(XWindowsTest, AreaBeyondDisplayHasNoPicture) {
  EXPECT_FALSE(colourAt(name(), 1280, 0));
  EXPECT_TRUE(colourAt(name(), 1279, 799));
}

TEST_F(XWindowsTest, QueriesOnStoppedDisplayReturnNothing) {
  display_.stop();
  EXPECT_TRUE(windowsOn(name()).empty());
  EXPECT_FALSE(activeWindowOn(name()));
  EXPECT_FALSE(colourAt(name(), 0, 0));
  EXPECT_FALSE(clickMouse(name(), 0, 0));
  requestClose(name(), 1);
}

}  // namespace
}  // namespace test_support
