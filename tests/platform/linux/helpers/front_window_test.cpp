#include "platform/linux/helpers/front_window.h"

#include <gtest/gtest.h>

#include <string>

namespace helpers {
namespace {

ManagedWindow viewable(Window window, std::vector<std::string> types = {}, std::uint32_t desktop = 0) {
  return {.window = window, .viewable = true, .types = std::move(types), .desktop = desktop};
}

ManagedWindow hidden(Window window) {
  return {.window = window, .viewable = false, .types = {}, .desktop = 0};
}

std::string type(const std::string& name) {
  return "_NET_WM_WINDOW_TYPE_" + name;
}

TEST(FrontWindow, IsActiveWindowEvenBelowAnother) {
  EXPECT_EQ(1U, frontWindow({.active = viewable(1), .stacking = {viewable(1), viewable(2)}}));
}

TEST(FrontWindow, IsActiveWindowOfAnyType) {
  EXPECT_EQ(1U, frontWindow({.active = viewable(1, {type("DESKTOP")}), .stacking = {viewable(2)}}));
}

TEST(FrontWindow, IsTopmostIfNoneIsActive) {
  EXPECT_EQ(3U, frontWindow({.active = {}, .stacking = {viewable(1), viewable(2), viewable(3)}}));
}

TEST(FrontWindow, IsTopmostIfActiveWindowIsGone) {
  EXPECT_EQ(2U, frontWindow({.active = hidden(3), .stacking = {viewable(1), viewable(2), hidden(3)}}));
}

TEST(FrontWindow, IsNulloptOnEmptyDesktop) {
  EXPECT_EQ(std::nullopt, frontWindow({}));
  EXPECT_EQ(std::nullopt, frontWindow({.active = hidden(1), .stacking = {hidden(1)}}));
}

TEST(FrontWindow, IsNotOnAnotherDesktop) {
  const ScreenState screen{.active = {},
                           .currentDesktop = 1,
                           .stacking = {viewable(1, {}, 1), viewable(2, {}, 0), viewable(3, {}, 2)}};
  EXPECT_EQ(1U, frontWindow(screen));
}

TEST(FrontWindow, MayBeOnAllDesktops) {
  const ScreenState screen{
      .active = {}, .currentDesktop = 1, .stacking = {viewable(1, {}, 1), viewable(2, {}, onAllDesktops)}};
  EXPECT_EQ(2U, frontWindow(screen));
}

TEST(FrontWindow, IsNormalWindowOrDialog) {
  const struct {
    std::vector<std::string> types;
    bool counts;
  } cases[] = {
      {{}, true},
      {{type("NORMAL")}, true},
      {{type("DIALOG")}, true},
      {{"_VENDOR_TYPE"}, true},
      {{""}, true},
      {{"_VENDOR_TYPE", type("DOCK")}, false},
      {{type("DOCK"), type("NORMAL")}, false},
      {{type("NORMAL"), type("DOCK")}, true},
      {{type("DESKTOP")}, false},
      {{type("DOCK")}, false},
      {{type("UTILITY")}, false},
      {{type("SPLASH")}, false},
      {{type("NOTIFICATION")}, false},
      {{type("POPUP_MENU")}, false},
  };
  for (const auto& [types, counts] : cases) {
    EXPECT_EQ(counts ? 2U : 1U, frontWindow({.active = {}, .stacking = {viewable(1), viewable(2, types)}}))
        << testing::PrintToString(types);
  }
}

}  // namespace
}  // namespace helpers
