#include <cstdio>
#include <cstdlib>

#include "tests/end_to_end/support_fixture.h"

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

// The first twenty openings warm everything up that is kept for good.
TEST_F(SupportSoak, OpeningAndClosingWithASheetCostsNoMemoryAndNoDescriptors) {
  const char* asked = std::getenv("TOVALIN_SOAK_OPENINGS");
  const int openings = asked != nullptr ? std::atoi(asked) : 30;
  constexpr int warmUp = 20;
  ASSERT_GT(openings, warmUp);
  launchInPanel();
  openAndClose(warmUp);
  const auto openOnce = [this] { openAndClose(1); };
  const long memory = memoryWithAllPictures(openOnce), open = descriptors();
  openAndClose(openings - warmUp);
  EXPECT_TRUE(test_support::waitUntil([&] { return descriptors() == open; }))
      << descriptors() << " for " << open;
#ifdef __SANITIZE_ADDRESS__
  GTEST_SKIP() << "the address sanitizer keeps freed memory, so the agent's size says nothing here";
#endif
  const long end = memoryWithAllPictures(openOnce);
  EXPECT_LE(std::labs(end - memory), 2048);
  std::printf("%d openings: %ld kB after %d, %ld kB at the end\n", openings, memory, warmUp, end);
}

}  // namespace
