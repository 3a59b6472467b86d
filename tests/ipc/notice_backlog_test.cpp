#include "ipc/notice_backlog.h"

#include <gmock/gmock.h>

#include <random>

namespace {

using Call = NotificationAction;
using Verdict = NoticeBacklog::Verdict;
using testing::ElementsAre;
using testing::IsEmpty;

class Backlog : public testing::Test {
 protected:
  // Fills the backlog with calls that show and hide the loading notice in turn; the last one hides it.
  void fill() {
    for (int i = 0; i < NoticeBacklog::maxWaiting; ++i)
      ASSERT_EQ(backlog_.request(i % 2 == 0 ? Call::NoticeEnumerateOn : Call::NoticeEnumerateOff),
                Verdict::Post);
  }
  // Begins the waiting calls. Returns those released by the last one; the others release none.
  std::vector<Call> beginAll() {
    for (int i = 1; i < NoticeBacklog::maxWaiting; ++i) EXPECT_THAT(backlog_.begin(), IsEmpty());
    return backlog_.begin();
  }
  void merge(const std::vector<Call>& calls) {
    for (const Call call : calls) EXPECT_NE(backlog_.request(call), Verdict::Post);
  }

  NoticeBacklog backlog_;
};

TEST_F(Backlog, CallsWithinLimitArePosted) {
  fill();
  EXPECT_THAT(beginAll(), IsEmpty());
}

TEST_F(Backlog, BegunCallMakesRoomForAnother) {
  fill();
  EXPECT_THAT(backlog_.begin(), IsEmpty());
  EXPECT_EQ(backlog_.request(Call::NotificationOn), Verdict::Post);
  EXPECT_EQ(backlog_.request(Call::NotificationOff), Verdict::BeginMerging);
}

TEST_F(Backlog, OnlyFirstMergedCallBeginsMerging) {
  fill();
  EXPECT_EQ(backlog_.request(Call::NotificationOn), Verdict::BeginMerging);
  EXPECT_EQ(backlog_.request(Call::NotificationOff), Verdict::Merge);
  EXPECT_EQ(backlog_.request(Call::NoticeEnumerateOn), Verdict::Merge);
}

TEST_F(Backlog, CallsAreMergedUntilAllPostedCallsHaveBegun) {
  fill();
  merge({Call::NotificationOn});
  EXPECT_THAT(backlog_.begin(), IsEmpty());
  EXPECT_EQ(backlog_.request(Call::NotificationOff), Verdict::Merge);
}

TEST_F(Backlog, MergedCallsLeadToLastRequestedState) {
  struct Row {
    std::vector<Call> merged;
    std::vector<Call> released;
  };
  const Row rows[] = {
      {{Call::NotificationOn}, {Call::NotificationOn}},
      {{Call::NotificationOn, Call::NotificationOff}, {}},
      {{Call::NotificationOn, Call::NotificationOff, Call::NotificationOn}, {Call::NotificationOn}},
      {{Call::NoticeEnumerateOn, Call::NoticeEnumerateOff}, {}},
      {{Call::NoticeEnumerateOn, Call::NotificationOn}, {Call::NoticeEnumerateOn, Call::NotificationOn}},
      {{Call::NotificationOn, Call::NoticeEnumerateOn}, {Call::NotificationOn, Call::NoticeEnumerateOn}},
      {{Call::NotificationOn, Call::NoticeEnumerateOn, Call::NotificationOff, Call::NotificationOn},
       {Call::NoticeEnumerateOn, Call::NotificationOn}},
      {{Call::NotificationOn, Call::NoticeEnumerateOn, Call::NotificationOff}, {Call::NoticeEnumerateOn}},
  };
  for (const Row& row : rows) {
    backlog_ = {};
    fill();
    merge(row.merged);
    EXPECT_EQ(beginAll(), row.released) << "row " << &row - rows;
  }
}

TEST_F(Backlog, NoticeShownByPostedCallsIsHiddenIfRequestedLast) {
  ASSERT_EQ(backlog_.request(Call::NotificationOn), Verdict::Post);
  EXPECT_THAT(backlog_.begin(), IsEmpty());
  fill();
  merge({Call::NotificationOff, Call::NotificationOn, Call::NotificationOff});
  EXPECT_THAT(beginAll(), ElementsAre(Call::NotificationOff));
}

TEST_F(Backlog, ReleasedCallsCountAsWaiting) {
  fill();
  merge({Call::NotificationOn, Call::NoticeEnumerateOn});
  ASSERT_EQ(beginAll().size(), 2u);
  for (int i = 2; i < NoticeBacklog::maxWaiting; ++i)
    ASSERT_EQ(backlog_.request(i % 2 == 0 ? Call::NotificationOff : Call::NotificationOn), Verdict::Post);
  EXPECT_EQ(backlog_.request(Call::NoticeEnumerateOff), Verdict::BeginMerging);
}

TEST_F(Backlog, CancellingCallsEndMerging) {
  fill();
  merge({Call::NotificationOn, Call::NotificationOff});
  EXPECT_THAT(beginAll(), IsEmpty());
  EXPECT_EQ(backlog_.request(Call::NotificationOn), Verdict::Post);
}

// For random requests and begins: at most the limit plus one call per notice waits, the calls of each notice
// alternate, and the last of them leads to the state requested last.
TEST_F(Backlog, RandomRequestsAndBeginsEndInLastRequestedState) {
  std::mt19937 random(1);  // NOLINT(cert-msc51-cpp): a fixed seed, so that failures reproduce
  ShownNotices requested;
  ShownNotices shown;
  std::vector<Call> queue;
  const auto beginFirst = [&] {
    const auto released = backlog_.begin();
    EXPECT_NE(notificationActionFor(queue.front() == Call::NotificationOn      ? "-non"
                                    : queue.front() == Call::NotificationOff   ? "-noff"
                                    : queue.front() == Call::NoticeEnumerateOn ? "-neon"
                                                                               : "-neoff",
                                    shown),
              Call::None);
    queue.erase(queue.begin());
    queue.insert(queue.end(), released.begin(), released.end());
  };
  for (int round = 0; round < 20'000; ++round) {
    const int requests = static_cast<int>(random() % 200);
    for (int i = 0; i < requests; ++i) {
      constexpr const char* texts[] = {"-non", "-noff", "-neon", "-neoff"};
      const Call call = notificationActionFor(texts[random() % 4], requested);
      if (call != Call::None && backlog_.request(call) == Verdict::Post) queue.push_back(call);
    }
    ASSERT_LE(queue.size(), 66u);
    for (int begins = static_cast<int>(random() % 100); begins > 0 && !queue.empty(); --begins) beginFirst();
    if (round % 10 != 0) continue;
    while (!queue.empty()) beginFirst();
    ASSERT_EQ(shown, requested) << "round " << round;
  }
}

}  // namespace
