#include <gmock/gmock.h>

#include "tests/end_to_end/support/support_fixture.h"
#include "tests/harness/desktop/screen_reader.h"

namespace {

using testing::Contains;

class SupportForScreenReader : public SupportTest {
 protected:
  void SetUp() override {
    SupportTest::SetUp();
    if (HasFatalFailure()) return;
    ASSERT_TRUE(reader_.start(bus_));
  }

  [[nodiscard]] bool isFocused(const std::string& control) {
    return reader_.waitForEvent("focus " + control + " in dialog 'Support Tovalin'").has_value();
  }

  test_support::ScreenReader reader_;
};

TEST_F(SupportForScreenReader, WindowIsModalDialog) {
  launchAndOpen();
  EXPECT_TRUE(reader_.waitForEvent("active dialog 'Support Tovalin':"));
  EXPECT_THAT(reader_.controls(), Contains("dialog 'Support Tovalin' enabled modal"));
}

TEST_F(SupportForScreenReader, FocusFollowsOrderOnScreenAndBannerNamesItsAddress) {
  launchAndOpen();
  EXPECT_TRUE(isFocused("push button 'Update'"));
  for (const char* next :
       {"push button 'FAQ'", "push button 'Log file'", "link 'Banner, opens banner.example/red'",
        "link 'The first notice'", "link 'The second notice'", "push button 'Update'"}) {
    press("Tab");
    EXPECT_TRUE(isFocused(next)) << next;
  }
}

TEST_F(SupportForScreenReader, SheetIsModalDialogAndNothingBehindItIsReachable) {
  constexpr const char* sheet = "dialog 'Log file will be created. It takes a few minutes.'";
  launchAndOpen();
  for (const char* key : {"Tab", "Tab", "Return"}) press(key);
  ASSERT_TRUE(reader_.waitForEvent("focus push button 'Continue' in " + std::string(sheet)));
  const auto controls = reader_.controls();
  EXPECT_THAT(controls, Contains(sheet + std::string(" enabled modal")));
  for (const char* reachable : {"push button 'Continue'", "push button 'Cancel'"})
    EXPECT_THAT(controls, Contains(reachable + std::string(" enabled focusable")));
  for (const char* behind :
       {"push button 'Update'", "push button 'FAQ'", "push button 'Log file'", "link 'The first notice'",
        "link 'The second notice'", "link 'Banner, opens banner.example/red'"})
    EXPECT_THAT(controls, Contains(std::string(behind)));
  press("Escape");
  EXPECT_TRUE(isFocused("push button 'Log file'"));
  EXPECT_THAT(reader_.controls(), Contains("link 'The first notice' enabled focusable"));
}

}  // namespace
