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

// A place in the support window in points from its lower left corner, as its layout counts.
struct Place {
  int x = 0;
  int y = 0;
};

inline constexpr Place updateMiddle{70, 62}, faqMiddle{210, 62}, logMiddle{350, 62};
inline constexpr Place firstLink{150, 177}, secondLink{150, 147}, bannerMiddle{210, 20};
// The button of a sheet that Return presses.
inline constexpr Place sheetsDefault{350, 163};
// Where nothing is ever drawn but the background.
inline constexpr Place bareSpot{4, 60};

inline bool isSupportWindow(const test_support::XWindow& window) {
  return window.name == "Support Tovalin";
}

// The agent's support window as its user sees and uses it, chosen in the panel's menu.
class SupportWindowDriver {
 public:
  SupportWindowDriver(TestDesktop& desktop, RunningAgent& agent, NoticePipe& pipe)
      : windowDesktop_(desktop), windowAgent_(agent), windowPipe_(pipe) {}
  SupportWindowDriver(const SupportWindowDriver&) = delete;
  SupportWindowDriver& operator=(const SupportWindowDriver&) = delete;

  void choose(const std::string& line = "Support Tovalin") { ASSERT_TRUE(windowDesktop_.host_.click(line)); }

  // Chooses the window in the menu and waits until it stands there with the keyboard.
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

  // Another program's windows, of which one gets the keyboard.
  void turnToAnotherProgram() {
    ASSERT_TRUE(
        program_.start({TOVALIN_SAMPLE_WINDOW_PROGRAM}, {.environment = windowDesktop_.environment_}));
    const auto other =
        test_support::waitForWindow(windowDesktop_.display_.name(), test_support::windowNamed("High"));
    ASSERT_TRUE(other);
    windowDesktop_.runOnDisplay({"xdotool", "windowactivate", std::to_string(other->id)});
  }

  [[nodiscard]] bool windowGoes() const {
    return test_support::waitForNoWindow(windowDesktop_.display_.name(), isSupportWindow);
  }
  // For longer than the agent waits for the keyboard to be handed on before it hides the window.
  [[nodiscard]] bool windowStays() const {
    return !test_support::waitForNoWindow(windowDesktop_.display_.name(), isSupportWindow,
                                          std::chrono::milliseconds(500));
  }
  void closeWindow() {
    test_support::requestClose(windowDesktop_.display_.name(), window_.id);
    ASSERT_TRUE(windowGoes());
  }
  [[nodiscard]] bool becomesActive(std::uint32_t window) const {
    return test_support::waitUntil(
        [&] { return test_support::activeWindowOn(windowDesktop_.display_.name()) == window; });
  }
  [[nodiscard]] int supportWindows() const {
    return static_cast<int>(
        std::ranges::count_if(test_support::windowsOn(windowDesktop_.display_.name()), isSupportWindow));
  }

  // The middle of the point's upper left pixel and so on, as the display counts.
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
  // Of a part of the window in points, its lower left corner first.
  [[nodiscard]] test_support::XPicture pictureOfPart(Place corner, int width, int height) const {
    const Place upperLeft{corner.x, corner.y + height - 1};
    return test_support::pictureOf(
               windowDesktop_.display_.name(),
               {screenX(upperLeft), screenY(upperLeft), width * screenScale(), height * screenScale()})
        .value_or(test_support::XPicture({}, {}));
  }

  // A sheet shades all of the window that it does not cover.
  [[nodiscard]] bool sheetIsUp() const {
    return test_support::waitUntil([&] { return colourOf(bareSpot).red < 200; });
  }
  [[nodiscard]] bool sheetIsGone() const {
    return test_support::waitUntil([&] { return colourOf(bareSpot).red > 220; });
  }

  // The upper part of the sheet, which shows its message and distinguishes it from other sheets.
  [[nodiscard]] test_support::XPicture messageOfSheet() const { return pictureOfPart({100, 180}, 300, 55); }

  void openFirstSheet() {
    clickAt(logMiddle);
    ASSERT_TRUE(sheetIsUp());
  }
  // Returns when the second sheet is up. A key that is held down while the agent collects might answer that
  // one too, a click does not.
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

  // Returns when the agent has taken in all that the user did before.
  void serveAll() {
    choose("Automount Off");
    ASSERT_TRUE(windowAgent_.waitForText("pipe: -u"));
  }
  // The agent answers clicks on the menu, and did nothing with what the user did before.
  void expectNothingRun() {
    choose("Automount Off");
    ASSERT_TRUE(windowAgent_.waitForText("pipe: -u"));
    EXPECT_EQ(windowAgent_.count("run: "), 0) << testing::PrintToString(windowAgent_.texts());
  }

  test_support::XWindow window_;
  // Another program's, once the test has turned to it.
  test_support::ChildProcess program_;

 private:
  TestDesktop& windowDesktop_;
  RunningAgent& windowAgent_;
  NoticePipe& windowPipe_;
};
