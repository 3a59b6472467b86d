#include <chrono>
#include <utility>

#include "tests/end_to_end/app/menu_fixture.h"

namespace {

TEST_F(Menu, IconFollowsStateInLightPanel) {
  launchAgentInPanel();
  EXPECT_TRUE(showsIcon("mount on"));
  terminateAgent();
  writeProperties({.active = false});
  launchAgent();
  ASSERT_TRUE(host_.waitForEvent("registered"));
  EXPECT_TRUE(iconBecomes("mount off"));
}

TEST_F(Menu, IconFollowsStateInDarkPanel) {
  ASSERT_TRUE(portal_.start(bus_, "1"));
  launchAgentInPanel();
  EXPECT_TRUE(showsIcon("mount on reverse"));
  EXPECT_EQ(visibleLabels().front(), "Automount Off");
  terminateAgent();
  writeProperties({.active = false});
  launchAgent();
  ASSERT_TRUE(host_.waitForEvent("registered"));
  EXPECT_TRUE(iconBecomes("mount off reverse"));
}

TEST_F(Menu, IconFollowsAppearanceChanges) {
  ASSERT_TRUE(portal_.start(bus_, "0"));
  launchAgentInPanel();
  ASSERT_TRUE(portal_.set("1"));
  EXPECT_TRUE(iconBecomes("mount on reverse"));
  ASSERT_TRUE(portal_.set("2"));
  EXPECT_TRUE(iconBecomes("mount on"));
}

TEST_F(Menu, ChangesOtherThanDarkOrLightKeepIcon) {
  ASSERT_TRUE(portal_.start(bus_, "0"));
  launchAgentInPanel();
  for (const char* value : {"2", "0", "17", "string Dark"}) ASSERT_TRUE(portal_.set(value));
  ASSERT_TRUE(portal_.signalUnrelatedChange());
  ASSERT_TRUE(portal_.set("1"));
  // The agent toggles its icon at each change, so after an unwanted toggle this change would show the other
  // icon.
  EXPECT_TRUE(iconBecomes("mount on reverse"));
}

TEST_F(Menu, AppliesChangesFromLatePortal) {
  launchAgentInPanel();
  ASSERT_TRUE(portal_.start(bus_, "0"));
  ASSERT_TRUE(portal_.set("1"));
  EXPECT_TRUE(iconBecomes("mount on reverse"));
}

TEST_F(Menu, AppliesAppearanceFromLatePortal) {
  launchAgentInPanel();
  EXPECT_TRUE(showsIcon("mount on"));
  ASSERT_TRUE(portal_.start(bus_, "1"));
  EXPECT_TRUE(iconBecomes("mount on reverse"));
}

TEST_F(Menu, AppliesChangeMissedWhilePortalWasAway) {
  ASSERT_TRUE(portal_.start(bus_, "0"));
  launchAgentInPanel();
  for (const auto& [value, icon] : {std::pair("1", "mount on reverse"), std::pair("2", "mount on")}) {
    endPortal();
    ASSERT_TRUE(portal_.start(bus_, value));
    EXPECT_TRUE(iconBecomes(icon));
  }
}

TEST_F(Menu, UnchangedPortalThatReturnsKeepsIcon) {
  ASSERT_TRUE(portal_.start(bus_, "1"));
  launchAgentInPanel();
  endPortal();
  ASSERT_TRUE(portal_.start(bus_, "1"));
  ASSERT_TRUE(portal_.waitForEvent("read"));
  ASSERT_TRUE(portal_.set("0"));
  // The agent toggles its icon at each change, so after an unwanted toggle this change would show the other
  // icon.
  EXPECT_TRUE(iconBecomes("mount on"));
}

TEST_F(Menu, PortalEndingWithoutReplyKeepsIconAndMenu) {
  ASSERT_TRUE(portal_.start(bus_, "1"));
  ASSERT_TRUE(portal_.delayAnswers(std::chrono::minutes(10)));
  launchAgentInPanel();
  // By now the agent has abandoned the first request and waits for the second.
  for (int i = 0; i < 2; ++i) ASSERT_TRUE(portal_.waitForEvent("read"));
  endPortal();
  EXPECT_TRUE(showsIcon("mount on"));
  clickAndWait("Automount Off");
  EXPECT_TRUE(iconBecomes("mount off"));
  terminateAgent();
}

TEST_F(Menu, SwitchAndAppearanceChangeIndependently) {
  ASSERT_TRUE(portal_.start(bus_, "0"));
  launchAgentInPanel();
  clickAndWait("Automount Off");
  ASSERT_TRUE(portal_.set("1"));
  EXPECT_TRUE(iconBecomes("mount off reverse"));
  clickAndWait("Automount On");
  EXPECT_TRUE(iconBecomes("mount on reverse"));
}

}  // namespace
