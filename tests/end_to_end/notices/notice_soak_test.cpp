#include "tests/end_to_end/notices/notice_fixture.h"
#include "tests/end_to_end/soak.h"

namespace {

class NoticeSoak : public NoticeTest {
 protected:
  void showAndHideBoth(int pairs) {
    for (int i = 0; i < pairs && !HasFatalFailure(); ++i) {
      for (const char* message : {"-non", "-noff", "-neon", "-neoff"}) send(message);
      // The main thread's last action for a pair: no work is pending when the next one begins.
      ASSERT_TRUE(waitForText("run: osascript"));
      timeline_.clear();
    }
    ASSERT_TRUE(hides(isAccessNotice) && hides(isLoadingNotice));
  }
};

TEST_F(NoticeSoak, ShowingAndHidingLeaksNothing) {
  const int pairs = timesAsked("TOVALIN_SOAK_PAIRS", 200);
  launch();
  expectNoGrowth(*this, {.what = "pairs", .times = pairs, .warmUp = 100, .maxGrowth = 1024},
                 [this](int times) { showAndHideBoth(times); });
}

}  // namespace
