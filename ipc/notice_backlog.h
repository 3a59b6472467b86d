#pragma once

#include <vector>

#include "ipc/notification_commands.h"

// Decides which notice calls are posted to the main thread at once and which are merged, so that a blocked
// main thread neither blocks the listener nor lets the queue grow without bound. A value type.
//
// Up to maxWaiting calls are posted as they arrive. Further calls are merged into the last requested state of
// each notice until all posted calls have begun to run. The calls that produce these states are then posted,
// in the order in which the states were requested.
class NoticeBacklog {
 public:
  static constexpr int maxWaiting = 64;

  enum class Verdict {
    Post,
    BeginMerging,  // merged, while the previous call was not
    Merge
  };

  // Handles a requested call. The calls for each notice alternate between show and hide, beginning with show.
  [[nodiscard]] Verdict request(NotificationAction call);

  // Handles the start of a posted call. Returns the calls to post now, at most one per notice.
  [[nodiscard]] std::vector<NotificationAction> begin();

 private:
  void countAsPosted(NotificationAction call);

  int waiting_ = 0;                         // posted but not yet begun
  ShownNotices posted_;                     // the state after all posted calls
  std::vector<NotificationAction> merged_;  // the last requested call of each notice, most recent last
};
