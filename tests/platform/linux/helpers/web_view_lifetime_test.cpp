#include <gtest/gtest.h>

#include "platform/linux/helpers/web_view/lifetime.h"

namespace helpers {
namespace {

using namespace std::chrono_literals;

constexpr auto kIdle = 60s;
constexpr auto grace = Lifetime::grace;
constexpr auto maxTimeAfterInput = Lifetime::maxTimeAfterInput;

// The lifetime begins at 0 s; all times are relative to it.
class LifetimeTest : public testing::Test {
 protected:
  [[nodiscard]] static Lifetime::Clock::time_point at(std::chrono::seconds time) {
    return Lifetime::Clock::time_point() + 1h + time;
  }
  [[nodiscard]] std::chrono::seconds end() const {
    return std::chrono::duration_cast<std::chrono::seconds>(lifetime_.end() - at(0s));
  }

  Lifetime lifetime_{at(0s), kIdle};
};

TEST_F(LifetimeTest, WithoutAddressEndsAfterIdleTime) {
  EXPECT_EQ(end(), kIdle);
}

TEST_F(LifetimeTest, FinishedLoadStartsIdleTime) {
  lifetime_.addressReceived(at(10s));
  lifetime_.loadingIs(false, at(15s));
  EXPECT_EQ(end(), 15s + kIdle);
}

TEST_F(LifetimeTest, EndlessLoadEndsIdleTimeAfterAddress) {
  lifetime_.addressReceived(at(10s));
  lifetime_.loadingIs(true, at(40s));
  EXPECT_EQ(end(), 10s + kIdle);
}

// A slow server or a slow start of the engine must not end the load.
TEST_F(LifetimeTest, LoadSlowerThanIdleTimeIsAwaitedUpToMinLoadTime) {
  Lifetime lifetime(at(0s), 15s);
  EXPECT_EQ(lifetime.end(), at(15s));
  lifetime.addressReceived(at(10s));
  EXPECT_EQ(lifetime.end(), at(10s) + Lifetime::minLoadTime);
  lifetime.loadingIs(false, at(40s));
  EXPECT_EQ(lifetime.end(), at(55s));
  lifetime.loadingIs(true, at(41s));
  EXPECT_EQ(lifetime.end(), at(55s));
}

TEST_F(LifetimeTest, NewAddressRestartsIdleTime) {
  lifetime_.addressReceived(at(10s));
  lifetime_.loadingIs(false, at(11s));
  lifetime_.addressReceived(at(50s));
  EXPECT_EQ(end(), 50s + kIdle);
  lifetime_.loadingIs(false, at(52s));
  EXPECT_EQ(end(), 52s + kIdle);
}

TEST_F(LifetimeTest, RequestsOfScriptDoNotRestartIdleTime) {
  lifetime_.addressReceived(at(10s));
  lifetime_.loadingIs(false, at(11s));
  lifetime_.loadingIs(true, at(40s));
  lifetime_.loadingIs(false, at(41s));
  EXPECT_EQ(end(), 11s + kIdle);
}

TEST_F(LifetimeTest, EndOfInputWithoutAddressEndsImmediately) {
  lifetime_.inputEnded(at(5s));
  EXPECT_EQ(end(), 5s);
}

TEST_F(LifetimeTest, EndOfInputLongAfterLoadEndsImmediately) {
  lifetime_.addressReceived(at(1s));
  lifetime_.loadingIs(false, at(2s));
  lifetime_.inputEnded(at(30s));
  EXPECT_EQ(end(), 30s);
}

TEST_F(LifetimeTest, EndOfInputDuringLoadWaitsForLoad) {
  lifetime_.addressReceived(at(1s));
  lifetime_.inputEnded(at(2s));
  EXPECT_EQ(end(), 2s + maxTimeAfterInput);
  lifetime_.loadingIs(false, at(5s));
  EXPECT_EQ(end(), 5s + grace);
}

TEST_F(LifetimeTest, EndOfInputWaitsForScript) {
  lifetime_.addressReceived(at(1s));
  lifetime_.inputEnded(at(2s));
  lifetime_.loadingIs(false, at(3s));
  lifetime_.loadingIs(true, at(4s));
  EXPECT_EQ(end(), 2s + maxTimeAfterInput);
  lifetime_.loadingIs(false, at(5s));
  EXPECT_EQ(end(), 5s + grace);
}

TEST_F(LifetimeTest, GraceIsLimitedByMaxTimeAfterInput) {
  lifetime_.addressReceived(at(1s));
  lifetime_.inputEnded(at(2s));
  lifetime_.loadingIs(false, at(11s));
  EXPECT_EQ(end(), 2s + maxTimeAfterInput);
}

TEST_F(LifetimeTest, MaxTimeAfterInputStartsAtFirstEndOfInput) {
  lifetime_.addressReceived(at(1s));
  lifetime_.inputEnded(at(2s));
  lifetime_.inputEnded(at(9s));
  EXPECT_EQ(end(), 2s + maxTimeAfterInput);
}

TEST_F(LifetimeTest, MaxTimeAfterInputMayExceedIdleTime) {
  Lifetime lifetime(at(0s), 1s);
  lifetime.addressReceived(at(0s));
  lifetime.inputEnded(at(1s));
  EXPECT_EQ(lifetime.end(), at(1s) + maxTimeAfterInput);
}

}  // namespace
}  // namespace helpers
