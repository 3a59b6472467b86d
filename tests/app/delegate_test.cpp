#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <new>
#include <span>
#include <string_view>
#include <vector>

#include "app/globals.h"
#include "app/nimbatrayAppDelegate.h"
#include "platform/status_item.h"

namespace {

TEST(Delegate, HasThirtyFieldsInOrder) {
  const nimbatrayAppDelegate delegate;
  const std::vector<const void*> fields = {&delegate.window,         &delegate.supportWindow,
                                           &delegate.logButton,      &delegate.updateButton,
                                           &delegate.statusItem,     &delegate.menu,
                                           &delegate.stream,         &delegate.bsupportWindow,
                                           &delegate.statusOnImg,    &delegate.statusOnImg_Reverse,
                                           &delegate.statusOffImg,   &delegate.statusOffImg_Reverse,
                                           &delegate.currentVersion, &delegate.recentVersion,
                                           &delegate.bUpdateEnabled, &delegate.bannerLink,
                                           &delegate.bannerImgView,  &delegate.bannerImg,
                                           &delegate.serverNotice,   &delegate.bannerList,
                                           &delegate.gaWebView,      &delegate.bThreadRun,
                                           &delegate.isDarkModeOn,   &delegate.bActive,
                                           &delegate.notiWindow,     &delegate.notiEnumWindow,
                                           &delegate.bTvlDataUpload, &delegate.tvlDataTimer,
                                           &delegate.strStartTime,   &delegate.dataUploadURL};
  ASSERT_EQ(fields.size(), 30u);
  EXPECT_TRUE(std::ranges::is_sorted(fields, std::ranges::less_equal()));
}

// Another field would lie in the padding after the thirtieth or enlarge the object.
TEST(Delegate, HasNoFieldAfterLast) {
  constexpr std::byte paint{0xA5};
  constexpr std::size_t size = sizeof(nimbatrayAppDelegate);
  alignas(nimbatrayAppDelegate) std::array<std::byte, size> memory;
  memory.fill(paint);
  auto* const delegate = new (memory.data()) nimbatrayAppDelegate;
  const auto* const last = reinterpret_cast<const std::byte*>(&delegate->dataUploadURL);
  const auto behind =
      std::span(memory).subspan(static_cast<std::size_t>(last + sizeof(std::int32_t) - memory.data()));
  EXPECT_LT(behind.size(), alignof(nimbatrayAppDelegate));
  EXPECT_TRUE(std::ranges::all_of(behind, [](std::byte byte) { return byte == paint; }));
  delegate->~nimbatrayAppDelegate();
}

TEST(Delegate, FieldsAreInitiallyEmpty) {
  const nimbatrayAppDelegate delegate;
  EXPECT_EQ(delegate.window, nullptr);
  EXPECT_EQ(delegate.supportWindow, nullptr);
  EXPECT_EQ(delegate.logButton, nullptr);
  EXPECT_EQ(delegate.updateButton, nullptr);
  EXPECT_EQ(delegate.statusItem, nullptr);
  EXPECT_EQ(delegate.menu, nullptr);
  EXPECT_EQ(delegate.stream, nullptr);
  EXPECT_FALSE(delegate.bsupportWindow);
  EXPECT_EQ(delegate.statusOnImg, nullptr);
  EXPECT_EQ(delegate.statusOnImg_Reverse, nullptr);
  EXPECT_EQ(delegate.statusOffImg, nullptr);
  EXPECT_EQ(delegate.statusOffImg_Reverse, nullptr);
  EXPECT_EQ(delegate.currentVersion, std::nullopt);
  EXPECT_EQ(delegate.recentVersion, std::nullopt);
  EXPECT_FALSE(delegate.bUpdateEnabled);
  EXPECT_EQ(delegate.bannerLink, std::nullopt);
  EXPECT_EQ(delegate.bannerImgView, nullptr);
  EXPECT_EQ(delegate.bannerImg, nullptr);
  EXPECT_EQ(delegate.serverNotice, nullptr);
  EXPECT_EQ(delegate.bannerList, nullptr);
  EXPECT_EQ(delegate.gaWebView, nullptr);
  EXPECT_FALSE(delegate.bThreadRun);
  EXPECT_FALSE(delegate.isDarkModeOn);
  EXPECT_EQ(delegate.bActive, 0u);
  EXPECT_EQ(delegate.notiWindow, nullptr);
  EXPECT_EQ(delegate.notiEnumWindow, nullptr);
  EXPECT_FALSE(delegate.bTvlDataUpload);
  EXPECT_EQ(delegate.tvlDataTimer, nullptr);
  EXPECT_EQ(delegate.strStartTime.tm_year, 0);
  EXPECT_EQ(delegate.dataUploadURL, 0);
}

TEST(Delegate, PropertiesAreNonOwning) {
  nimbatrayAppDelegate delegate;
  int anything = 0;
  auto* window = reinterpret_cast<platform::Window*>(&anything);
  delegate.window = window;
  EXPECT_EQ(delegate.window, window);
  delegate.window = nullptr;
  EXPECT_EQ(delegate.window, nullptr);
}

TEST(Delegate, ReopenBeforeLaunchIsNoOp) {
  nimbatrayAppDelegate delegate;
  delegate.applicationShouldHandleReopen();
  EXPECT_EQ(delegate.statusItem, nullptr);
}

TEST(Globals, NetworkIsInitiallyOnline) {
  EXPECT_TRUE(isNetworkOnline);
}

TEST(Globals, BundlePathIsZeroFilled) {
  ASSERT_EQ(sizeof gBundlePath, 1024u);
  EXPECT_TRUE(std::ranges::all_of(gBundlePath, [](char c) { return c == '\0'; }));
}

}  // namespace
