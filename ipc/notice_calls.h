#pragma once

#include <functional>
#include <memory>
#include <mutex>

#include "ipc/notice_backlog.h"

// Hands the listener's notice calls to the main thread, in a queue that stays bounded whatever the listener
// reads (see NoticeBacklog). Posted work keeps the object alive, so the listener's thread may end before it.
class NoticeCalls : public std::enable_shared_from_this<NoticeCalls> {
 public:
  // Queues work for the main thread and returns without running it.
  using Post = std::function<void(std::function<void()> work)>;
  // Carries a call out, on the main thread. May not return before later calls have run.
  using Run = std::function<void(NotificationAction call)>;

  NoticeCalls(Post post, Run run) : post_(std::move(post)), run_(std::move(run)) {}

  // Thread-safe; returns at once.
  [[nodiscard]] NoticeBacklog::Verdict request(NotificationAction call);

 private:
  void postLocked(NotificationAction call);
  void begin(NotificationAction call);

  const Post post_;
  const Run run_;
  // Held while posting, too, so that calls are queued in the order in which the backlog released them.
  std::mutex mutex_;
  NoticeBacklog backlog_;
};
