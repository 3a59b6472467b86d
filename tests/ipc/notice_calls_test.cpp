#include "ipc/notice_calls.h"

#include <gmock/gmock.h>

#include <atomic>
#include <deque>
#include <thread>

namespace {

using Call = NotificationAction;
using Verdict = NoticeBacklog::Verdict;
using testing::ElementsAre;

// A work queue like that of the main thread. Thread-safe.
class Queue {
 public:
  void post(std::function<void()> work) {
    const std::lock_guard lock(mutex_);
    work_.push_back(std::move(work));
    longest_ = std::max(longest_, work_.size());
  }
  // Returns false if the queue is empty.
  bool runNext() {
    std::function<void()> work;
    {
      const std::lock_guard lock(mutex_);
      if (work_.empty()) return false;
      work = std::move(work_.front());
      work_.pop_front();
    }
    work();
    return true;
  }
  [[nodiscard]] std::size_t maxLength() {
    const std::lock_guard lock(mutex_);
    return longest_;
  }

 private:
  std::mutex mutex_;
  std::deque<std::function<void()>> work_;
  std::size_t longest_ = 0;
};

class Calls : public testing::Test {
 protected:
  std::shared_ptr<NoticeCalls> make(NoticeCalls::Run run) {
    return std::make_shared<NoticeCalls>([this](std::function<void()> work) { queue_.post(std::move(work)); },
                                         std::move(run));
  }

  Queue queue_;
};

TEST_F(Calls, CommandsWithinLimitRunInOrder) {
  std::vector<Call> ran;
  const auto calls = make([&](Call call) { ran.push_back(call); });
  for (const Call call : {Call::NotificationOn, Call::NoticeEnumerateOn, Call::NotificationOff})
    EXPECT_EQ(calls->request(call), Verdict::Post);
  EXPECT_THAT(ran, testing::IsEmpty());
  while (queue_.runNext()) continue;
  EXPECT_THAT(ran, ElementsAre(Call::NotificationOn, Call::NoticeEnumerateOn, Call::NotificationOff));
}

TEST_F(Calls, WorkThatOutlivesListenerRuns) {
  std::vector<Call> ran;
  EXPECT_EQ(make([&](Call call) { ran.push_back(call); })->request(Call::NotificationOn), Verdict::Post);
  while (queue_.runNext()) continue;
  EXPECT_THAT(ran, ElementsAre(Call::NotificationOn));
}

// The last waiting call shows a notice and returns only after a merged call has hidden it.
TEST_F(Calls, MergedCallRunsInsideLastWaitingOne) {
  std::vector<Call> ran;
  const auto calls = make([&](Call call) {
    ran.push_back(call);
    const bool isLast = call == Call::NotificationOn && ran.size() == NoticeBacklog::maxWaiting;
    EXPECT_TRUE(!isLast || queue_.runNext());
  });
  for (int i = 1; i < NoticeBacklog::maxWaiting; ++i)
    EXPECT_EQ(calls->request(i % 2 == 1 ? Call::NoticeEnumerateOn : Call::NoticeEnumerateOff), Verdict::Post);
  EXPECT_EQ(calls->request(Call::NotificationOn), Verdict::Post);
  EXPECT_EQ(calls->request(Call::NotificationOff), Verdict::BeginMerging);
  for (int i = 0; i < NoticeBacklog::maxWaiting; ++i) ASSERT_TRUE(queue_.runNext());
  EXPECT_FALSE(queue_.runNext());
  EXPECT_EQ(ran.back(), Call::NotificationOff);
}

TEST_F(Calls, FloodFromOtherThreadIsBoundedAndEndsInLastState) {
  constexpr int rounds = 100'000;
  bool shown = false;
  const auto calls = make([&](Call call) {
    EXPECT_NE(shown, call == Call::NotificationOn);
    shown = call == Call::NotificationOn;
  });
  std::atomic<bool> ended = false;
  std::jthread listener([&] {
    for (int i = 0; i < rounds; ++i) {
      static_cast<void>(calls->request(Call::NotificationOn));
      if (i < rounds - 1) static_cast<void>(calls->request(Call::NotificationOff));
    }
    ended = true;
  });
  while (!ended) queue_.runNext();
  while (queue_.runNext()) continue;
  EXPECT_TRUE(shown);
  EXPECT_LE(queue_.maxLength(), 65u);
}

}  // namespace
