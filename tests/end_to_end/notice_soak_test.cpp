#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <thread>
#include <utility>

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

  // The main thread may still be behind what the listener has read, with windows up; then the size moves.
  [[nodiscard]] long settledMemory() const {
    long before = -1, now = ownMemoryInKilobytes();
    for (int i = 0; i < 100 && now != before; ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(200));
      before = std::exchange(now, ownMemoryInKilobytes());
    }
    return now;
  }

  // The toolkit drops one of the pictures that it keeps every half a minute, which would pass for a gain, and
  // the next notice reads it again.
  [[nodiscard]] long memoryWithAllPictures() {
    long most = 0;
    for (int i = 0; i < 3; ++i) {
      showAndHideBoth(1);
      most = std::max(most, settledMemory());
    }
    return most;
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
  const long memory = memoryWithAllPictures(), open = descriptors();
  showAndHideBoth(pairs - warmUp);
  EXPECT_TRUE(test_support::waitUntil([&] { return descriptors() == open; }))
      << descriptors() << " for " << open;
#ifdef __SANITIZE_ADDRESS__
  GTEST_SKIP() << "the address sanitizer keeps freed memory, so the agent's size says nothing here";
#endif
  EXPECT_LE(std::labs(memoryWithAllPictures() - memory), 1024);
  std::printf("%d pairs: %ld kB after %d, %ld kB at the end\n", pairs, memory, warmUp,
              ownMemoryInKilobytes());
}

}  // namespace
