#include "ipc/notice_calls.h"

NoticeBacklog::Verdict NoticeCalls::request(NotificationAction call) {
  const std::lock_guard lock(mutex_);
  const auto verdict = backlog_.request(call);
  if (verdict == NoticeBacklog::Verdict::Post) postLocked(call);
  return verdict;
}

void NoticeCalls::postLocked(NotificationAction call) {
  post_([self = shared_from_this(), call] { self->begin(call); });
}

// Posts the merged calls before running this one, because a call that shows a notice returns only when the
// notice is hidden.
void NoticeCalls::begin(NotificationAction call) {
  {
    const std::lock_guard lock(mutex_);
    for (const NotificationAction merged : backlog_.begin()) postLocked(merged);
  }
  run_(call);
}
