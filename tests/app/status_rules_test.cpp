#include "app/status_rules.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

constexpr std::uint32_t kGreatest = std::numeric_limits<std::uint32_t>::max();

TEST(StatusIcon, DependsOnAutomountAndPanel) {
  EXPECT_EQ(statusIconFor(1, false), StatusIcon::On);
  EXPECT_EQ(statusIconFor(1, true), StatusIcon::OnReverse);
  EXPECT_EQ(statusIconFor(0, false), StatusIcon::Off);
  EXPECT_EQ(statusIconFor(0, true), StatusIcon::OffReverse);
}

TEST(StatusIcon, NonZeroIsOn) {
  EXPECT_EQ(statusIconFor(2, false), StatusIcon::On);
  EXPECT_EQ(statusIconFor(256, true), StatusIcon::OnReverse);
  EXPECT_EQ(statusIconFor(kGreatest, false), StatusIcon::On);
}

TEST(StatusIcon, HasSymbolOfSameMeaning) {
  EXPECT_STREQ(symbolFor(StatusIcon::On), "tovalin-mount-on-symbolic");
  EXPECT_STREQ(symbolFor(StatusIcon::Off), "tovalin-mount-off-symbolic");
  EXPECT_STREQ(symbolFor(StatusIcon::OnReverse), "tovalin-mount-on-reverse-symbolic");
  EXPECT_STREQ(symbolFor(StatusIcon::OffReverse), "tovalin-mount-off-reverse-symbolic");
}

TEST(StateText, NamesState) {
  EXPECT_STREQ(stateTextFor(1), "Automount is on");
  EXPECT_STREQ(stateTextFor(kGreatest), "Automount is on");
  EXPECT_STREQ(stateTextFor(0), "Automount is off");
}

TEST(SwitchTitle, NamesActionOfClick) {
  EXPECT_STREQ(switchTitleFor(1), "Automount Off");
  EXPECT_STREQ(switchTitleFor(0), "Automount On");
}

TEST(SwitchTitle, NonZeroIsOn) {
  EXPECT_STREQ(switchTitleFor(256), "Automount Off");
  EXPECT_STREQ(switchTitleFor(kGreatest), "Automount Off");
}

}  // namespace
