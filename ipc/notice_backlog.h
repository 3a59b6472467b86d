#pragma once

#include <vector>

#include "ipc/notification_commands.h"

// Decides which notice calls are posted to the main thread now and which are merged, so that a busy main
// thread bounds neither the listener's reading nor lets its queue grow. A value type; pure.
//
// Up to maxWaiting calls are posted as they come. Beyond that, calls are merged into the last state requested
// of each notice, until all posted calls have begun to run. The calls that lead to these states are then
// posted, in the order in which the states were requested.
class NoticeBacklog {
 public:
  static constexpr int maxWaiting = 64;

  enum class Verdict {
    Post,
    BeginMerging,  // merged, and the call before was not
    Merge
  };

  // A call is requested. Each notice's calls alternate between showing and hiding it, beginning with showing.
  [[nodiscard]] Verdict request(NotificationAction call);

  // A posted call begins to run. Returns the calls to post now, at most one for each notice.
  [[nodiscard]] std::vector<NotificationAction> begin();

 private:
  void countAsPosted(NotificationAction call);

  int waiting_ = 0;                         // posted and not begun
  ShownNotices posted_;                     // the state after all posted calls
  std::vector<NotificationAction> merged_;  // the last call requested for each notice, the latest at the end
};
