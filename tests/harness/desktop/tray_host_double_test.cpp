#include "tests/harness/desktop/tray_host_double.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include "tests/harness/desktop/test_display.h"

namespace test_support {
namespace {

using namespace std::chrono_literals;
using testing::Contains;
using testing::ElementsAre;
using testing::Pair;

std::string pixelOf(const std::string& file) {
  ChildProcess identify;
  if (!identify.start({"convert", file, "-format", "%wx%h %[pixel:p{5,5}]", "info:"}) || !identify.wait())
    return {};
  return identify.takeOutput();
}

class TrayHostDoubleTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(display_.start({.windowManager = false}));
    ASSERT_TRUE(bus_.start());
  }

  void startHost() { ASSERT_TRUE(host_.start(bus_)); }
  void startSample() {
    const ChildOptions options{
        .environment = {{"DISPLAY", display_.name()}, {"DBUS_SESSION_BUS_ADDRESS", bus_.address()}}};
    ASSERT_TRUE(sample_.start({TOVALIN_SAMPLE_TRAY_PROGRAM}, options));
    ASSERT_TRUE(host_.waitForEvent("registered "));
  }

  TestDisplay display_;
  SessionBus bus_;
  TrayHostDouble host_;
  ChildProcess sample_;
};

TEST_F(TrayHostDoubleTest, HasNoItemsInitially) {
  startHost();
  EXPECT_THAT(host_.items(), ElementsAre());
  EXPECT_EQ(host_.ask("menu").text, "no item is registered");
  EXPECT_FALSE(host_.ask("menu").ok);
}

TEST_F(TrayHostDoubleTest, UnknownCommandIsRejected) {
  startHost();
  startSample();
  EXPECT_EQ(host_.ask("dance").text, "unknown command dance");
}

TEST_F(TrayHostDoubleTest, WaitForEventEndsAtTimeout) {
  startHost();
  EXPECT_EQ(host_.waitForEvent("registered", 50ms), std::nullopt);
}

TEST_F(TrayHostDoubleTest, ReportsItemsRegisteredAndUnregistered) {
  startHost();
  startSample();
  EXPECT_EQ(host_.items().size(), 1U);
  sample_.kill();
  EXPECT_TRUE(host_.waitForEvent("unregistered "));
  EXPECT_THAT(host_.items(), ElementsAre());
}

TEST_F(TrayHostDoubleTest, IntrospectionListsProperties) {
  startHost();
  ChildProcess call;
  ASSERT_TRUE(call.start({"dbus-send", "--bus=" + bus_.address(), "--print-reply",
                          "--dest=org.kde.StatusNotifierWatcher", "/StatusNotifierWatcher",
                          "org.freedesktop.DBus.Introspectable.Introspect"}));
  ASSERT_TRUE(call.wait());
  EXPECT_THAT(call.takeOutput(), testing::HasSubstr("IsStatusNotifierHostRegistered"));
}

TEST_F(TrayHostDoubleTest, HostCanBeUnregistered) {
  startHost();
  const std::vector<std::string> get{"dbus-send",
                                     "--bus=" + bus_.address(),
                                     "--print-reply",
                                     "--dest=org.kde.StatusNotifierWatcher",
                                     "/StatusNotifierWatcher",
                                     "org.freedesktop.DBus.Properties.Get",
                                     "string:org.kde.StatusNotifierWatcher",
                                     "string:IsStatusNotifierHostRegistered"};
  ChildProcess call;
  ASSERT_TRUE(call.start(get));
  ASSERT_TRUE(call.wait());
  EXPECT_THAT(call.takeOutput(), testing::HasSubstr("boolean true"));
  ASSERT_TRUE(host_.setHostRegistered(false));
  ASSERT_TRUE(call.start(get));
  ASSERT_TRUE(call.wait());
  EXPECT_THAT(call.takeOutput(), testing::HasSubstr("boolean false"));
}

TEST_F(TrayHostDoubleTest, ReturnsItemProperties) {
  startHost();
  startSample();
  const auto properties = host_.properties();
  EXPECT_THAT(properties, Contains(Pair("ToolTip", "Sample tip")));
  EXPECT_THAT(properties, Contains(Pair("Status", "Active")));
  EXPECT_THAT(properties, Contains(Pair("Menu", "/MenuBar")));
  EXPECT_THAT(properties, Contains(Pair("IconPixmap", testing::HasSubstr("22x22"))));
}

TEST_F(TrayHostDoubleTest, ReturnsMenu) {
  startHost();
  startSample();
  const std::vector<TrayMenuItem> menu = host_.menu();
  ASSERT_GE(menu.size(), 8U);
  EXPECT_EQ(menu[0].label, "Change");
  EXPECT_EQ(menu[0].iconSize, "16x16");
  EXPECT_TRUE(menu[0].enabled);
  EXPECT_TRUE(menu[1].separator);
  EXPECT_EQ(menu[2].label, "Never");
  EXPECT_FALSE(menu[2].enabled);
  EXPECT_FALSE(menu[3].visible);
  EXPECT_EQ(menu[4].label, "More");
  EXPECT_EQ(menu[4].iconSize, "0x0");
  EXPECT_EQ(menu[5].label, "Ticked");
  EXPECT_EQ(menu[5].parent, menu[4].id);
  EXPECT_TRUE(menu[5].checked);
}

TEST_F(TrayHostDoubleTest, SavesIconsInTheirColours) {
  startHost();
  startSample();
  ASSERT_TRUE(host_.saveIcon("/tmp/icon.png", "22"));
  EXPECT_EQ(pixelOf("/tmp/icon.png"), "22x22 srgba(200,100,50,1)");
  ASSERT_TRUE(host_.saveMenuIcon("Change", "/tmp/menu_icon.png"));
  EXPECT_THAT(pixelOf("/tmp/menu_icon.png"), testing::StartsWith("16x16 srgb"));
  EXPECT_FALSE(host_.saveIcon("/tmp/icon.png", "23"));
  EXPECT_FALSE(host_.saveMenuIcon("Never", "/tmp/menu_icon.png"));
}

TEST_F(TrayHostDoubleTest, ClickReachesProgram) {
  startHost();
  startSample();
  ASSERT_TRUE(host_.click("Change"));
  EXPECT_EQ(sample_.readLine(), "changed");
  EXPECT_TRUE(host_.waitForEvent("clicked Change"));
  EXPECT_TRUE(host_.waitForEvent("NewIcon"));
  ASSERT_TRUE(host_.saveIcon("/tmp/icon.png", "22x22"));
  EXPECT_EQ(pixelOf("/tmp/icon.png"), "22x22 srgba(0,0,255,1)");
}

TEST_F(TrayHostDoubleTest, ClickKnownUsesLastFetchedMenu) {
  startHost();
  startSample();
  EXPECT_FALSE(host_.clickKnown("Change"));
  ASSERT_FALSE(host_.menu().empty());
  EXPECT_TRUE(host_.clickKnown("Change"));
  EXPECT_EQ(sample_.readLine(), "changed");
}

TEST_F(TrayHostDoubleTest, DisabledHiddenAndAbsentItemsAreNotClickable) {
  startHost();
  startSample();
  EXPECT_FALSE(host_.click("Never"));
  EXPECT_FALSE(host_.click("Hidden"));
  EXPECT_FALSE(host_.click("Absent"));
}

TEST_F(TrayHostDoubleTest, ReportsMenuChanges) {
  startHost();
  startSample();
  ASSERT_TRUE(host_.click("Grow"));
  ASSERT_TRUE(host_.waitForEvent("clicked Grow"));
  EXPECT_TRUE(host_.waitForEvent("LayoutUpdated"));
  EXPECT_EQ(host_.menu().back().label, "Grown");
}

TEST_F(TrayHostDoubleTest, ClickMayEndProgram) {
  startHost();
  startSample();
  ASSERT_TRUE(host_.click("Quit"));
  EXPECT_TRUE(host_.waitForEvent("unregistered "));
  EXPECT_EQ(sample_.wait(), ExitStatus{.code = 0});
}

TEST_F(TrayHostDoubleTest, UnansweredCallFailsWhenProgramEnds) {
  startHost();
  startSample();
  sample_.signal(SIGSTOP);
  ASSERT_TRUE(host_.activate(10, 20));
  sample_.kill();
  EXPECT_TRUE(host_.waitForEvent("failed called Activate"));
}

TEST_F(TrayHostDoubleTest, ActivateReachesProgram) {
  startHost();
  startSample();
  ASSERT_TRUE(host_.activate(10, 20));
  EXPECT_TRUE(host_.waitForEvent("called Activate"));
  EXPECT_EQ(sample_.readLine(), "activated");
}

TEST_F(TrayHostDoubleTest, ItemRegistersWithRestartedHost) {
  startHost();
  startSample();
  host_.process().kill();
  ASSERT_TRUE(host_.process().wait());
  startHost();
  EXPECT_TRUE(host_.waitForEvent("registered "));
}

}  // namespace
}  // namespace test_support
