#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

#include <QImage>

#include "tests/end_to_end/app/menu_fixture.h"
#include "tests/harness/servers/product_server_double.h"

namespace {

using test_support::ExitStatus;
using testing::ElementsAre;

TEST_F(Menu, HasElevenLines) {
  launchAgentInPanel();
  EXPECT_THAT(visibleLabels(),
              ElementsAre("Automount Off", "--", "Like us on Facebook", "Share Tovalin on Facebook",
                          "Share Tovalin on Twitter", "--", "Visit our website now", "Review Tovalin",
                          "Support Tovalin", "--", "Quit Tovalin"));
}

TEST_F(Menu, TitleNamesWhatClickDoes) {
  writeProperties({.active = false});
  launchAgentInPanel();
  EXPECT_EQ(visibleLabels().front(), "Automount On");
}

TEST_F(Menu, EveryTitledLineIsEnabled) {
  launchAgentInPanel();
  std::vector<std::string> enabled;
  for (const auto& item : host_.menu()) {
    if (item.enabled && item.visible && !item.separator) enabled.push_back(item.label);
  }
  EXPECT_THAT(enabled, ElementsAre("Automount Off", "Like us on Facebook", "Share Tovalin on Facebook",
                                   "Share Tovalin on Twitter", "Visit our website now", "Review Tovalin",
                                   "Support Tovalin", "Quit Tovalin"));
}

TEST_F(Menu, TwoClicksOnSwitchSendOffThenOn) {
  launchAgentInPanel();
  clickAndWait("Automount Off");
  ASSERT_TRUE(waitForText("pipe: -u"));
  EXPECT_TRUE(iconBecomes("mount off"));
  EXPECT_EQ(visibleLabels().front(), "Automount On");
  clickAndWait("Automount On");
  ASSERT_TRUE(waitForText("pipe: -m"));
  EXPECT_TRUE(iconBecomes("mount on"));
  EXPECT_EQ(visibleLabels().front(), "Automount Off");
}

TEST_F(Menu, ClicksDuringPauseRunAfterItInOrder) {
  launchAgentInPanel();
  const auto begin = std::chrono::steady_clock::now();
  ASSERT_TRUE(host_.click("Automount Off"));
  ASSERT_TRUE(waitForText("pipe: -u"));
  // The main thread sleeps; the panel still shows the menu as it was.
  ASSERT_TRUE(host_.clickKnown("Automount Off"));
  ASSERT_TRUE(host_.clickKnown("Automount Off"));
  ASSERT_TRUE(host_.clickKnown("Quit Tovalin"));
  EXPECT_EQ(endOfAgent(), ExitStatus{.code = 0});

  std::vector<test_support::TimelineEvent> messages;
  for (const auto& event : timeline_.events()) {
    if (event.text.starts_with("pipe: ")) messages.push_back(event);
  }
  ASSERT_EQ(messages.size(), 5u);
  EXPECT_EQ(messages[1].text, "pipe: -u");
  EXPECT_EQ(messages[2].text, "pipe: -m");
  EXPECT_EQ(messages[3].text, "pipe: -u");
  EXPECT_EQ(messages[4].text, "pipe: -toff");
  for (std::size_t i = 2; i <= 4; ++i) {
    // Each pause takes 2 s, so the next message cannot be earlier.
    EXPECT_GE(messages[i].time - begin, (i - 1) * std::chrono::milliseconds(1990)) << i;
  }
}

TEST_F(Menu, SwitchWorksWithoutReader) {
  std::filesystem::remove("/tmp/KMPIPE");
  ASSERT_TRUE(host_.start(bus_));
  startAgent();
  ASSERT_TRUE(host_.waitForEvent("registered"));
  clickAndWait("Automount Off");
  EXPECT_TRUE(iconBecomes("mount off"));
}

TEST_F(Menu, SupportHasNoBadgeWithoutUpdate) {
  launchAgentInPanel();
  const auto items = host_.menu();
  ASSERT_GE(items.size(), 11u);
  for (const auto& item : items) EXPECT_EQ(item.iconSize, "0x0") << item.label;
}

TEST_F(Menu, SupportHasBadgeWithUpdate) {
  test_support::ProductServerDouble server;
  server.putVersion("99.0.0");
  install("/tmp/Applications/Tovalin.app");
  setServers(server.origin());
  launchAgentInPanel();
  const std::string badge = std::to_string(20 * screenScale()) + "x" + std::to_string(17 * screenScale());
  int badges = 0;
  for (const auto& item : host_.menu()) {
    EXPECT_EQ(item.iconSize, item.label == "Support Tovalin" ? badge : "0x0") << item.label;
    badges += item.iconSize == badge ? 1 : 0;
  }
  EXPECT_EQ(badges, 1);
  ASSERT_TRUE(host_.saveMenuIcon("Support Tovalin", "/tmp/badge.png"));
  const std::string picture = screenScale() > 1 ? "n@2x.png" : "n.png";
  const QImage wanted(QString::fromStdString(agentContents() + "/Resources/" + picture));
  EXPECT_EQ(QImage("/tmp/badge.png").convertToFormat(QImage::Format_ARGB32_Premultiplied),
            wanted.convertToFormat(QImage::Format_ARGB32_Premultiplied));
}

TEST_F(Menu, QuitRunsStepsInOrder) {
  launchAgentInPanel();
  ASSERT_TRUE(waitForText("log 6: read_pipe read pipe message : "));  // the last event of the launch
  timeline_.clear();
  ASSERT_TRUE(host_.click("Quit Tovalin"));
  EXPECT_EQ(endOfAgent(), ExitStatus{.code = 0});
  EXPECT_THAT(texts(), ElementsAre(killRun, "pipe: -toff", unloadRun, killRun));
  EXPECT_TRUE(host_.waitForEvent("unregistered"));
}

TEST_F(Menu, QuitWaitsOneSecondBeforeUnload) {
  launchAgentInPanel();
  const auto begin = std::chrono::steady_clock::now();
  ASSERT_TRUE(host_.click("Quit Tovalin"));
  EXPECT_EQ(endOfAgent(), ExitStatus{.code = 0});
  EXPECT_LT(position("pipe: -toff"), position(unloadRun));
  EXPECT_GE(timeline_.waitFor(unloadRun)->time - begin, std::chrono::milliseconds(990));
}

TEST_F(Menu, QuitSendsBeacon) {
  launchAgentInPanel();
  ASSERT_TRUE(host_.click("Quit Tovalin"));
  EXPECT_EQ(endOfAgent(), ExitStatus{.code = 0});
  EXPECT_TRUE(waitForBeacon("?category=clickaction&clickaction=quit"));
}

TEST_F(Menu, EachSwitchSendsBeacon) {
  launchAgentInPanel();
  ASSERT_TRUE(host_.click("Automount Off"));
  EXPECT_TRUE(waitForBeacon("?category=clickaction&clickaction=turnoff"));
  ASSERT_TRUE(test_support::waitUntil([&] { return visibleLabels().front() == "Automount On"; }));
  ASSERT_TRUE(host_.click("Automount On"));
  EXPECT_TRUE(waitForBeacon("?category=clickaction&clickaction=turnon"));
}

struct Link {
  const char* label;
  const char* value;  // percent-encoded as in the beacon
  const char* page;
};

class Links : public InstalledAgentTest, public testing::WithParamInterface<Link> {};

TEST_P(Links, OpenPageVerbatimAndSendOneBeacon) {
  install("/tmp/Applications/Tovalin.app");
  launchAgentInPanel();
  ASSERT_TRUE(waitForBeacon("=version1.0.0"));
  timeline_.clear();
  ASSERT_TRUE(host_.click(GetParam().label));
  const auto run = timeline_.waitFor("run: open");
  ASSERT_TRUE(run);
  EXPECT_THAT(run->arguments, ElementsAre(GetParam().page));
  const std::string query = std::string("?category=clickaction&clickaction=") + GetParam().value;
  ASSERT_TRUE(waitForBeacon(query));
  terminateAgent();
  EXPECT_THAT(beacons(), ElementsAre(query));
  EXPECT_EQ(count("run: open"), 1);
}

INSTANTIATE_TEST_SUITE_P(
    Menu, Links,
    testing::Values(
        Link{"Like us on Facebook", "Like.F", "https://www.facebook.com/kesmoor"},
        Link{"Share Tovalin on Facebook", "Share.F",
             "https://www.facebook.com/sharer/sharer.php?u=http://127.0.0.1:1/tovalin"},
        Link{"Share Tovalin on Twitter", "Share.T",
             "https://twitter.com/intent/tweet?text=[Tovalin]%20Easily%20manage%20the%20files%20in%20your%20"
             "iDevice.%20And%20transfer%20contents%20via%20Finder.%20No%20iTunes%20No%20jailbreak.%20FREE!%20"
             "http://127.0.0.1:1/tovalin/"},
        Link{"Visit our website now", "Visit%20Site", "http://127.0.0.1:1/tovalin"},
        Link{"Review Tovalin", "Review", "http://127.0.0.1:1/tovalin/review"}));

TEST_F(Menu, FailingBrowserIsIgnored) {
  launchAgentInPanel();
  timeline_.setStatus("open", 1);
  ASSERT_TRUE(host_.click("Review Tovalin"));
  ASSERT_TRUE(waitForText("run: open"));
  terminateAgent();
}

TEST_F(Menu, QuitContinuesIfCommandsFail) {
  launchAgentInPanel();
  timeline_.setStatus("killall", 1);
  timeline_.setStatus("launchctl", 1);
  ASSERT_TRUE(host_.click("Quit Tovalin"));
  EXPECT_EQ(endOfAgent(), ExitStatus{.code = 0});
  EXPECT_EQ(count("pipe: -toff"), 1);
}

TEST_F(Menu, QuitUnloadsWithoutBundle) {
  launchAgentInPanel();
  // A change ends the watch on the bundle, so that only the quit ends the agent.
  std::ofstream(bundle_ + "/Contents/new file") << "text";
  ASSERT_TRUE(waitForText("log 6: filestreamcallback event flag : 0, 0x0"));
  std::filesystem::remove_all(bundle_);
  ASSERT_TRUE(host_.click("Quit Tovalin"));
  EXPECT_EQ(endOfAgent(), ExitStatus{.code = 0});
  EXPECT_EQ(count(unloadRun), 1);
}

TEST_F(Menu, HelpersPrecedeSystemCommandsOnPath) {
  launchAgentInPanel();
  ASSERT_TRUE(host_.click("Quit Tovalin"));
  EXPECT_EQ(endOfAgent(), ExitStatus{.code = 0});
  const auto run = timeline_.waitFor(unloadRun);
  ASSERT_TRUE(run);
  EXPECT_TRUE(run->searchPath.starts_with("/tmp/runtime/TovalinTray/helpers:")) << run->searchPath;
  EXPECT_FALSE(std::filesystem::exists("/tmp/runtime/TovalinTray/helpers"));
}

TEST_F(Menu, MissingPicturesRemoveIconAndMenuStillOpens) {
  std::filesystem::remove_all(agentContents() + "/Resources");
  ASSERT_TRUE(host_.start(bus_));
  launchAgent();
  // An agent without an icon opens its menu on a second start.
  test_support::ChildProcess second;
  test_support::ChildOptions options;
  options.environment = environment_;
  ASSERT_TRUE(second.start({agentProgram()}, options));
  EXPECT_EQ(second.wait(), ExitStatus{.code = 0});
  EXPECT_NE(runOnDisplay({"xdotool", "search", "--sync", "--onlyvisible", "--class", "Tovalin"}), "");
  EXPECT_TRUE(host_.items().empty());
}

}  // namespace
