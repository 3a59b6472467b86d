#include <chrono>
#include <utility>

#include "tests/end_to_end/app/menu_fixture.h"

namespace {

TEST_F(Menu, TheIconFollowsTheStateInALightPanel) {
  launchAgentInPanel();
  EXPECT_TRUE(showsIcon("mount on"));
  terminateAgent();
  writeProperties({.active = false});
  launchAgent();
  ASSERT_TRUE(host_.waitForEvent("registered"));
  EXPECT_TRUE(comesToShowIcon("mount off"));
}

TEST_F(Menu, TheIconFollowsTheStateInADarkPanel) {
  ASSERT_TRUE(portal_.start(bus_, "1"));
  launchAgentInPanel();
  EXPECT_TRUE(showsIcon("mount on reverse"));
  EXPECT_EQ(visibleLabels().front(), "Automount Off");
  terminateAgent();
  writeProperties({.active = false});
  launchAgent();
  ASSERT_TRUE(host_.waitForEvent("registered"));
  EXPECT_TRUE(comesToShowIcon("mount off reverse"));
}

TEST_F(Menu, AppearanceChangesFlipTheIconAndFlipItBack) {
  ASSERT_TRUE(portal_.start(bus_, "0"));
  launchAgentInPanel();
  ASSERT_TRUE(portal_.set("1"));
  EXPECT_TRUE(comesToShowIcon("mount on reverse"));
  ASSERT_TRUE(portal_.set("2"));
  EXPECT_TRUE(comesToShowIcon("mount on"));
}

TEST_F(Menu, ChangesThatAreNotBetweenDarkAndLightFlipNothing) {
  ASSERT_TRUE(portal_.start(bus_, "0"));
  launchAgentInPanel();
  for (const char* value : {"2", "0", "17", "string Dark"}) ASSERT_TRUE(portal_.set(value));
  ASSERT_TRUE(portal_.tellUnrelatedChange());
  ASSERT_TRUE(portal_.set("1"));
  // Had any of them flipped the icon, this change would have flipped it back.
  EXPECT_TRUE(comesToShowIcon("mount on reverse"));
}

TEST_F(Menu, APortalThatComesLateIsHeard) {
  launchAgentInPanel();
  ASSERT_TRUE(portal_.start(bus_, "0"));
  ASSERT_TRUE(portal_.set("1"));
  EXPECT_TRUE(comesToShowIcon("mount on reverse"));
}

TEST_F(Menu, APortalThatComesLateToADarkDesktopIsAsked) {
  launchAgentInPanel();
  EXPECT_TRUE(showsIcon("mount on"));
  ASSERT_TRUE(portal_.start(bus_, "1"));
  EXPECT_TRUE(comesToShowIcon("mount on reverse"));
}

TEST_F(Menu, APortalThatComesBackIsAskedWhatHasChangedMeanwhile) {
  ASSERT_TRUE(portal_.start(bus_, "0"));
  launchAgentInPanel();
  for (const auto& [value, icon] : {std::pair("1", "mount on reverse"), std::pair("2", "mount on")}) {
    endPortal();
    ASSERT_TRUE(portal_.start(bus_, value));
    EXPECT_TRUE(comesToShowIcon(icon));
  }
}

TEST_F(Menu, APortalThatComesBackUnchangedFlipsNothing) {
  ASSERT_TRUE(portal_.start(bus_, "1"));
  launchAgentInPanel();
  endPortal();
  ASSERT_TRUE(portal_.start(bus_, "1"));
  ASSERT_TRUE(portal_.waitForEvent("read"));
  ASSERT_TRUE(portal_.set("0"));
  // Had the answer flipped the icon, this change would have flipped it back.
  EXPECT_TRUE(comesToShowIcon("mount on"));
}

TEST_F(Menu, APortalThatDiesOwingAnAnswerLeavesIconAndMenuAsTheyAre) {
  ASSERT_TRUE(portal_.start(bus_, "1"));
  ASSERT_TRUE(portal_.delayAnswers(std::chrono::minutes(10)));
  launchAgentInPanel();
  // The agent has given the first answer up by now and waits for the second.
  for (int i = 0; i < 2; ++i) ASSERT_TRUE(portal_.waitForEvent("read"));
  endPortal();
  EXPECT_TRUE(showsIcon("mount on"));
  clickAndWait("Automount Off");
  EXPECT_TRUE(comesToShowIcon("mount off"));
  terminateAgent();
}

TEST_F(Menu, AFlipOfTheAppearanceKeepsTheSwitchedStateAndTheOtherWayRound) {
  ASSERT_TRUE(portal_.start(bus_, "0"));
  launchAgentInPanel();
  clickAndWait("Automount Off");
  ASSERT_TRUE(portal_.set("1"));
  EXPECT_TRUE(comesToShowIcon("mount off reverse"));
  clickAndWait("Automount On");
  EXPECT_TRUE(comesToShowIcon("mount on reverse"));
}

}  // namespace
