#include "tests/end_to_end/soak.h"
#include "tests/end_to_end/support/support_fixture.h"

namespace {

class SupportSoak : public SupportTest {
 protected:
  void openAndClose(int times) {
    for (int i = 0; i < times && !HasFatalFailure(); ++i) {
      choose();
      waitForSupportWindow();
      clickAt(logMiddle);
      ASSERT_TRUE(sheetIsUp());
      press("Escape");
      ASSERT_TRUE(sheetIsGone());
      closeWindow();
      timeline_.clear();
      host_.clearEvents();
    }
  }
};

TEST_F(SupportSoak, OpeningAndClosingWithSheetLeaksNothing) {
  const int openings = timesAsked("TOVALIN_SOAK_OPENINGS", 30);
  launchInPanel();
  expectNoGrowth(*this, {.what = "openings", .times = openings, .warmUp = 20, .maxGrowth = 2048},
                 [this](int times) { openAndClose(times); });
}

}  // namespace
