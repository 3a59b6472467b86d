#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <thread>
#include <utility>

#include "tests/end_to_end/support_fixture.h"

namespace {

class SupportSoak : public SupportTest {
 protected:
  // Each time with another picture, so that none is found among those that are kept.
  void openAndClose(int times) {
    for (int i = 0; i < times && !HasFatalFailure(); ++i) {
      putNextBanner();
      choose();
      waitForSupportWindow();
      closeWindow();
      timeline_.clear();
      host_.clearEvents();
    }
  }

  [[nodiscard]] long ownMemoryInKilobytes() const {
    std::ifstream file("/proc/" + std::to_string(agent_.pid()) + "/smaps_rollup");
    for (std::string line; std::getline(file, line);) {
      if (line.starts_with("Anonymous:")) return std::stol(line.substr(10));
    }
    ADD_FAILURE() << "the agent's memory can't be read";
    return 0;
  }

  // Until the size stands still.
  [[nodiscard]] long settledMemory() const {
    long before = -1, now = ownMemoryInKilobytes();
    for (int i = 0; i < 100 && now != before; ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(200));
      before = std::exchange(now, ownMemoryInKilobytes());
    }
    return now;
  }

  [[nodiscard]] long descriptors() const {
    const std::filesystem::directory_iterator open("/proc/" + std::to_string(agent_.pid()) + "/fd");
    return std::distance(begin(open), end(open));
  }

 private:
  void putNextBanner() {
    ++openings_;
    const auto shade = static_cast<std::uint8_t>(openings_ % 200);
    server_->put(bannerFolder + std::string("red.ppm"), pictureFile({200, shade, 20}));
  }

  int openings_ = 0;
};

// The first twenty openings warm everything up that is kept for good.
TEST_F(SupportSoak, OpeningAndClosingCostsNoMemoryAndNoDescriptors) {
  const char* asked = std::getenv("TOVALIN_SOAK_PAIRS");
  const int openings = asked != nullptr ? std::atoi(asked) : 30;
  constexpr int warmUp = 20;
  ASSERT_GT(openings, warmUp);
  launchInPanel();
  openAndClose(warmUp);
  const long memory = settledMemory(), open = descriptors();
  openAndClose(openings - warmUp);
  EXPECT_TRUE(test_support::waitUntil([&] { return descriptors() == open; }))
      << descriptors() << " for " << open;
#ifdef __SANITIZE_ADDRESS__
  GTEST_SKIP() << "the address sanitizer keeps freed memory, so the agent's size says nothing here";
#endif
  const long end = settledMemory();
  EXPECT_LE(std::labs(end - memory), 2048);
  std::printf("%d openings: %ld kB after %d, %ld kB at the end\n", openings, memory, warmUp, end);
}

}  // namespace
