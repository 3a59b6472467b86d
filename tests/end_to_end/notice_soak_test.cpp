#include <cstdlib>

#include "tests/end_to_end/notice_fixture.h"

namespace {

class NoticeSoak : public NoticeTest {
 protected:
  void showAndHideBoth(int pairs) {
    for (int i = 0; i < pairs && !HasFatalFailure(); ++i) {
      for (const char* message : {"-non", "-noff", "-neon", "-neoff"}) send(message);
      // The last thing that the main thread does for a pair: nothing is left waiting when the next one
      // begins.
      ASSERT_TRUE(waitForText("run: osascript"));
      timeline_.clear();
    }
    ASSERT_TRUE(hides(isAccessNotice) && hides(isLoadingNotice));
  }
};

// The first hundred pairs warm everything up that is kept for good.
TEST_F(NoticeSoak, ShowingAndHidingCostsNoMemoryAndNoDescriptors) {
  const char* asked = std::getenv("TOVALIN_SOAK_PAIRS");
  const int pairs = asked != nullptr ? std::atoi(asked) : 200;
  constexpr int warmUp = 100;
  ASSERT_GT(pairs, warmUp);
  launch();
  showAndHideBoth(warmUp);
  const auto showBoth = [this] { showAndHideBoth(1); };
  const long memory = memoryWithAllPictures(showBoth), open = descriptors();
  showAndHideBoth(pairs - warmUp);
  EXPECT_TRUE(test_support::waitUntil([&] { return descriptors() == open; }))
      << descriptors() << " for " << open;
#ifdef __SANITIZE_ADDRESS__
  GTEST_SKIP() << "the address sanitizer keeps freed memory, so the agent's size says nothing here";
#endif
  const long end = memoryWithAllPictures(showBoth);
  EXPECT_LE(std::labs(end - memory), 1024);
  std::printf("%d pairs: %ld kB after %d, %ld kB at the end\n", pairs, memory, warmUp, end);
}

}  // namespace
