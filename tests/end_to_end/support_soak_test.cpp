#include <cstdlib>
#include <fstream>
#include <thread>

#include "tests/end_to_end/support_fixture.h"

namespace {

class SupportSoak : public SupportTest {
 protected:
  void openAndClose(int times) {
    for (int i = 0; i < times && !HasFatalFailure(); ++i) {
      choose();
      waitForSupportWindow();
      closeWindow();
      timeline_.clear();
      host_.clearEvents();
    }
  }
};

// The first twenty openings warm everything up that is kept for good.
TEST_F(SupportSoak, OpeningAndClosingCostsNoMemoryAndNoDescriptors) {
  const char* asked = std::getenv("TOVALIN_SOAK_PAIRS");
  const int openings = asked != nullptr ? std::atoi(asked) : 30;
  constexpr int warmUp = 20;
  ASSERT_GT(openings, warmUp);
  launchInPanel();
  openAndClose(warmUp);
  const long memory = ownMemoryInKilobytes(), open = descriptors();
  openAndClose(openings - warmUp);
  EXPECT_TRUE(test_support::waitUntil([&] { return descriptors() == open; }))
      << descriptors() << " for " << open;
#ifdef __SANITIZE_ADDRESS__
  GTEST_SKIP() << "the address sanitizer keeps freed memory, so the agent's size says nothing here";
#endif
  // The toolkit forgets kept pictures only after a while, in which the agent's size says too much.
  long end = 0;
  const auto isBack = [&] {
    openAndClose(1);
    end = ownMemoryInKilobytes();
    if (std::labs(end - memory) <= 2048) return true;
    std::this_thread::sleep_for(std::chrono::seconds(5));
    return false;
  };
  EXPECT_TRUE(test_support::waitUntil(isBack, std::chrono::minutes(5))) << end << " kB for " << memory;
  std::printf("%d openings: %ld kB after %d, %ld kB at the end\n", openings, memory, warmUp, end);
}

}  // namespace
