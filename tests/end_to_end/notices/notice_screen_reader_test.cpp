#include "tests/end_to_end/notices/notice_fixture.h"
#include "tests/harness/desktop/screen_reader.h"

namespace {

class NoticeForScreenReader : public NoticeTest {
 protected:
  test_support::ScreenReader reader_;
};

TEST_F(NoticeForScreenReader, IsAnnouncedAsAlertWithItsText) {
  ASSERT_TRUE(reader_.start(bus_));
  launch();
  send("-non");
  EXPECT_TRUE(reader_.waitForEvent(
      "active alert 'Tovalin Notification': To allow access, please respond on your iDevice."));
  send("-noff");
  send("-neon");
  EXPECT_TRUE(reader_.waitForEvent("active alert 'Tovalin Notification': Now Loading..."));
}

}  // namespace
