#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <string>

#include "tests/end_to_end/notices/notice_pipe.h"
#include "tests/end_to_end/running_agent.h"
#include "tests/end_to_end/screen_scale.h"
#include "tests/end_to_end/test_desktop.h"
#include "tests/harness/desktop/x_input.h"
#include "tests/harness/desktop/x_picture.h"
#include "tests/harness/desktop/x_windows.h"
#include "tests/harness/processes/child_process.h"
#include "tests/harness/processes/wait_until.h"

// A position in the support window, in points from its lower left corner, as in its layout.
struct Place {
  int x = 0;
  int y = 0;
};

inline constexpr Place updateMiddle{70, 62}, faqMiddle{210, 62}, logMiddle{350, 62};
inline constexpr Place firstLink{150, 177}, secondLink{150, 147}, bannerMiddle{210, 20};
// The default button of a sheet.
inline constexpr Place sheetsDefault{350, 163};
// A position where only the background is drawn.
inline constexpr Place bareSpot{4, 60};

inline bool isSupportWindow(const test_support::XWindow& window) {
  return window.name == "Support Tovalin";
}

// Uses the agent's support window, opened from the panel's menu, like its user.
class SupportWindowDriver {
 public:
  SupportWindowDriver(TestDesktop& desktop, RunningAgent& agent, NoticePipe& pipe)
      : windowDesktop_(desktop), windowAgent_(agent), windowPipe_(pipe) {}
  SupportWindowDriver(const SupportWindowDriver&) = delete;
  SupportWindowDriver& operator=(const SupportWindowDriver&) = delete;

  void choose(const std::string& line = "Support Tovalin") { ASSERT_TRUE(windowDesktop_.host_.click(line)); }

  // Chooses the window in the menu and waits until it is shown and focused.
  void openWindow() {
    ASSERT_NO_FATAL_FAILURE(choose());
    waitForSupportWindow();
  }
  void waitForSupportWindow() {
    const auto found = test_support::waitForWindow(windowDesktop_.display_.name(), isSupportWindow);
    ASSERT_TRUE(found) << windowAgent_.console();
    window_ = *found;
    ASSERT_TRUE(becomesActive(window_.id));
    ASSERT_TRUE(test_support::waitUntil([&] { return colourOf(bareSpot).red > 220; }));
  }
  void launchAndOpen() {
    windowPipe_.launchInPanel();
    if (!testing::Test::HasFatalFailure()) openWindow();
  }

  // Opens another program's windows, one of which gets the input focus.
  void switchToAnotherProgram() {
    ASSERT_TRUE(
        program_.start({TOVALIN_SAMPLE_WINDOW_PROGRAM}, {.environment = windowDesktop_.environment_}));
    const auto other =
        test_support::waitForWindow(windowDesktop_.display_.name(), test_support::windowNamed("High"));
    ASSERT_TRUE(other);
    windowDesktop_.runOnDisplay({"xdotool", "windowactivate", std::to_string(other->id)});
  }

  [[nodiscard]] bool windowDisappears() const {
    return test_support::waitForNoWindow(windowDesktop_.display_.name(), isSupportWindow);
  }
  // Waits longer than the agent waits for the next focused window before it hides its own.
  [[nodiscard]] bool windowStays() const {
    return !test_support::waitForNoWindow(windowDesktop_.display_.name(), isSupportWindow,
                                          std::chrono::milliseconds(500));
  }
  void closeWindow() {
    test_support::requestClose(windowDesktop_.display_.name(), window_.id);
    ASSERT_TRUE(windowDisappears());
  }
  [[nodiscard]] bool becomesActive(std::uint32_t window) const {
    return test_support::waitUntil(
        [&] { return test_support::activeWindowOn(windowDesktop_.display_.name()) == window; });
  }
  [[nodiscard]] int supportWindows() const {
    return static_cast<int>(
        std::ranges::count_if(test_support::windowsOn(windowDesktop_.display_.name()), isSupportWindow));
  }

  // Display coordinates of the upper left pixel of that point.
  [[nodiscard]] int screenX(Place place) const { return window_.x + place.x * screenScale(); }
  [[nodiscard]] int screenY(Place place) const { return window_.y + (239 - place.y) * screenScale(); }
  void clickAt(Place place) {
    ASSERT_TRUE(test_support::clickMouse(windowDesktop_.display_.name(), screenX(place), screenY(place)));
  }
  void press(const std::string& key) {
    ASSERT_TRUE(test_support::pressKey(windowDesktop_.display_.name(), key));
  }
  [[nodiscard]] test_support::Colour colourOf(Place place) const {
    return test_support::colourAt(windowDesktop_.display_.name(), screenX(place), screenY(place))
        .value_or(test_support::Colour{});
  }
  // Returns a picture of a part of the window in points, given by its lower left corner.
  [[nodiscard]] test_support::XPicture pictureOfPart(Place corner, int width, int height) const {
    const Place upperLeft{corner.x, corner.y + height - 1};
    return test_support::pictureOf(
               windowDesktop_.display_.name(),
               {screenX(upperLeft), screenY(upperLeft), width * screenScale(), height * screenScale()})
        .value_or(test_support::XPicture({}, {}));
  }

  // A sheet dims the part of the window that it does not cover.
  [[nodiscard]] bool sheetIsUp() const {
    return test_support::waitUntil([&] { return colourOf(bareSpot).red < 200; });
  }
  [[nodiscard]] bool sheetIsGone() const {
    return test_support::waitUntil([&] { return colourOf(bareSpot).red > 220; });
  }

  // Returns the upper part of the sheet, whose message distinguishes it from other sheets.
  [[nodiscard]] test_support::XPicture messageOfSheet() const { return pictureOfPart({100, 180}, 300, 55); }

  void openFirstSheet() {
    clickAt(logMiddle);
    ASSERT_TRUE(sheetIsUp());
  }
  // Returns once the second sheet is open. Uses a click, because a key that is still held down when the
  // collection ends would answer that sheet, too.
  void collect() {
    ASSERT_NO_FATAL_FAILURE(openFirstSheet());
    const auto question = messageOfSheet();
    clickAt(sheetsDefault);
    waitForSheetAfter(question);
  }
  void waitForSheetAfter(const test_support::XPicture& question) {
    ASSERT_TRUE(test_support::waitUntil(
        [&] { return !(messageOfSheet() == question) && colourOf(bareSpot).red < 200; }));
  }

  // Returns once the agent has processed all earlier input.
  void waitUntilInputIsProcessed() {
    choose("Automount Off");
    ASSERT_TRUE(windowAgent_.waitForText("pipe: -u"));
  }
  // Expects that the agent answers clicks on the menu and ran no command for the earlier input.
  void expectNothingRun() {
    choose("Automount Off");
    ASSERT_TRUE(windowAgent_.waitForText("pipe: -u"));
    EXPECT_EQ(windowAgent_.count("run: "), 0) << testing::PrintToString(windowAgent_.texts());
  }

  test_support::XWindow window_;
  // The other program of switchToAnotherProgram().
  test_support::ChildProcess program_;

 private:
  TestDesktop& windowDesktop_;
  RunningAgent& windowAgent_;
  NoticePipe& windowPipe_;
};
