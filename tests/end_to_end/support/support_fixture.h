#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tests/end_to_end/notices/notice_fixture.h"
#include "tests/end_to_end/screen_scale.h"
#include "tests/harness/desktop/x_input.h"
#include "tests/harness/desktop/x_picture.h"
#include "tests/harness/servers/product_server_double.h"

inline constexpr const char* noticeFile = "/product/nimba/binary/tovalinnotice.xml";
inline constexpr const char* bannerFolder = "/product/nimba/banner/";
inline constexpr const char* bannerListFile = "/product/nimba/banner/tovalinbanner.xml";
inline constexpr const char* versionFile = "/product/nimba/binary/tovalin_recent_version_info.xml";

inline constexpr test_support::Colour red{200, 20, 20};
inline constexpr test_support::Colour blue{20, 20, 200};

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

inline std::string plist(const std::string& content) {
  return "<?xml version=\"1.0\"?><plist version=\"1.0\">" + content + "</plist>";
}
inline std::string dictionary(const std::vector<std::pair<std::string, std::string>>& strings) {
  std::string text = "<dict>";
  for (const auto& [key, value] : strings)
    text.append("<key>").append(key).append("</key><string>").append(value).append("</string>");
  return text + "</dict>";
}
inline std::string noticeEntry(const std::string& key, const std::string& subject, const std::string& link) {
  return "<key>" + key + "</key>" + dictionary({{"subject", subject}, {"link", link}});
}
inline std::string noticeList(const std::string& firstLinkText = "http://one.example/a",
                              const std::string& secondLinkText = "http://two.example/b?c=d#e") {
  return plist("<dict>" + noticeEntry("notice_1", "The first notice", firstLinkText) +
               noticeEntry("notice_2", "The second notice", secondLinkText) + "</dict>");
}
inline std::string banner(const std::string& fileName, const std::string& link) {
  return dictionary({{"file_name", fileName}, {"link", link}});
}
inline std::string bannerList(const std::string& entries) {
  return plist("<array>" + entries + "</array>");
}

// A picture of one colour, as PPM.
inline std::string pictureFile(test_support::Colour colour, int width = 420, int height = 40) {
  std::string bytes = "P6\n" + std::to_string(width) + " " + std::to_string(height) + "\n255\n";
  for (int i = 0; i < width * height; ++i)
    bytes.append(
        {static_cast<char>(colour.red), static_cast<char>(colour.green), static_cast<char>(colour.blue)});
  return bytes;
}

inline bool isSupportWindow(const test_support::XWindow& window) {
  return window.name == "Support Tovalin";
}

// The real agent in a panel, with a product server that has all that the support window shows: an update, a
// notice, and one red banner.
class SupportTest : public NoticeTest {
 protected:
  void SetUp() override {
    NoticeTest::SetUp();
    if (HasFatalFailure()) return;
    install("/tmp/Applications/Tovalin.app");
    setServers(server_->origin());
    server_->putVersion("9.0.0");
    server_->put(noticeFile, noticeList());
    server_->put(bannerListFile, bannerList(banner("red.ppm", "http://banner.example/red")));
    server_->put(bannerFolder + std::string("red.ppm"), pictureFile(red));
    ASSERT_TRUE(host_.start(bus_));
  }

  void launchInPanel() {
    launch();
    ASSERT_TRUE(host_.waitForEvent("registered"));
  }
  void choose(const std::string& line = "Support Tovalin") { ASSERT_TRUE(host_.click(line)); }

  // Chooses the window in the menu and waits until it stands there with the keyboard.
  void openWindow() {
    ASSERT_NO_FATAL_FAILURE(choose());
    waitForSupportWindow();
  }
  void waitForSupportWindow() {
    const auto found = test_support::waitForWindow(display_.name(), isSupportWindow);
    ASSERT_TRUE(found) << console();
    window_ = *found;
    ASSERT_TRUE(becomesActive(window_.id));
    ASSERT_TRUE(test_support::waitUntil([&] { return colourOf(bareSpot).red > 220; }));
  }
  void launchAndOpen() {
    launchInPanel();
    if (!HasFatalFailure()) openWindow();
  }

  // Another program's windows, of which one gets the keyboard.
  void turnToAnotherProgram() {
    ASSERT_TRUE(program_.start({TOVALIN_SAMPLE_WINDOW_PROGRAM}, {.environment = environment_}));
    const auto other = test_support::waitForWindow(display_.name(), test_support::windowNamed("High"));
    ASSERT_TRUE(other);
    runOnDisplay({"xdotool", "windowactivate", std::to_string(other->id)});
  }

  [[nodiscard]] bool windowGoes() const {
    return test_support::waitForNoWindow(display_.name(), isSupportWindow);
  }
  // For longer than the agent waits for the keyboard to be handed on before it hides the window.
  [[nodiscard]] bool windowStays() const {
    return !test_support::waitForNoWindow(display_.name(), isSupportWindow, std::chrono::milliseconds(500));
  }
  void closeWindow() {
    test_support::requestClose(display_.name(), window_.id);
    ASSERT_TRUE(windowGoes());
  }
  [[nodiscard]] bool becomesActive(std::uint32_t window) const {
    return test_support::waitUntil([&] { return test_support::activeWindowOn(display_.name()) == window; });
  }
  [[nodiscard]] int supportWindows() const {
    return static_cast<int>(std::ranges::count_if(test_support::windowsOn(display_.name()), isSupportWindow));
  }

  // The middle of the point's upper left pixel and so on, as the display counts.
  [[nodiscard]] int screenX(Place place) const { return window_.x + place.x * screenScale(); }
  [[nodiscard]] int screenY(Place place) const { return window_.y + (239 - place.y) * screenScale(); }
  void clickAt(Place place) {
    ASSERT_TRUE(test_support::clickMouse(display_.name(), screenX(place), screenY(place)));
  }
  void press(const std::string& key) { ASSERT_TRUE(test_support::pressKey(display_.name(), key)); }
  [[nodiscard]] test_support::Colour colourOf(Place place) const {
    return test_support::colourAt(display_.name(), screenX(place), screenY(place))
        .value_or(test_support::Colour{});
  }
  // Of a part of the window in points, its lower left corner first.
  [[nodiscard]] test_support::XPicture pictureOfPart(Place corner, int width, int height) const {
    const Place upperLeft{corner.x, corner.y + height - 1};
    return test_support::pictureOf(display_.name(), {screenX(upperLeft), screenY(upperLeft),
                                                     width * screenScale(), height * screenScale()})
        .value_or(test_support::XPicture({}, {}));
  }

  // A sheet shades all of the window that it does not cover.
  [[nodiscard]] bool sheetIsUp() const {
    return test_support::waitUntil([&] { return colourOf(bareSpot).red < 200; });
  }
  [[nodiscard]] bool sheetIsGone() const {
    return test_support::waitUntil([&] { return colourOf(bareSpot).red > 220; });
  }

  // What tells one sheet from the other: the message, on the sheet's upper part.
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

  // What the agent has written on standard error so far.
  [[nodiscard]] std::string console() { return console_ += agent_.takeErrorOutput(); }
  [[nodiscard]] int linesInConsole(const std::string& line) {
    const std::string text = "\n" + console();
    int found = 0;
    for (std::size_t at = text.find(line); at != std::string::npos; at = text.find(line, at + 1)) ++found;
    return found;
  }

  // The paths that were fetched since the call before.
  [[nodiscard]] std::vector<std::string> takeFetches() {
    std::vector<std::string> targets;
    const auto requests = server_->requests();
    for (; seenRequests_ < requests.size(); ++seenRequests_) {
      if (requests[seenRequests_].method == "GET") targets.push_back(requests[seenRequests_].target);
    }
    return targets;
  }
  [[nodiscard]] std::vector<std::string> runs() {
    std::vector<std::string> all = texts();
    std::erase_if(all, [](const std::string& text) { return !text.starts_with("run: "); });
    return all;
  }
  [[nodiscard]] int beaconsOf(const std::string& value) {
    return static_cast<int>(std::ranges::count(beacons(), "?category=clickaction&clickaction=" + value));
  }
  [[nodiscard]] bool waitForClickBeacon(const std::string& value) {
    return waitForBeacon("?category=clickaction&clickaction=" + value);
  }
  // Returns when the agent has taken in all that the user did before.
  void serveAll() {
    choose("Automount Off");
    ASSERT_TRUE(waitForText("pipe: -u"));
  }
  // The agent answers clicks on the menu, and did nothing with what the user did before.
  void expectNothingRun() {
    choose("Automount Off");
    ASSERT_TRUE(waitForText("pipe: -u"));
    EXPECT_EQ(count("run: "), 0) << testing::PrintToString(texts());
  }

  std::unique_ptr<test_support::ProductServerDouble> server_ =
      std::make_unique<test_support::ProductServerDouble>();
  test_support::XWindow window_;
  test_support::ChildProcess program_;

 private:
  std::string console_;
  std::size_t seenRequests_ = 0;
};
