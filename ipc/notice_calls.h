#pragma once

#include <functional>
#include <memory>
#include <mutex>

#include "ipc/notice_backlog.h"

// Passes the listener's notice calls to the main thread through a bounded queue (see NoticeBacklog). Posted
// work shares ownership of the object, so the listener's thread may end first.
class NoticeCalls : public std::enable_shared_from_this<NoticeCalls> {
 public:
  // Queues work for the main thread and returns without running it.
  using Post = std::function<void(std::function<void()> work)>;
  // Executes a call on the main thread. May run later calls before it returns.
  using Run = std::function<void(NotificationAction call)>;

  NoticeCalls(Post post, Run run) : post_(std::move(post)), run_(std::move(run)) {}

  // Returns at once. Thread-safe.
  [[nodiscard]] NoticeBacklog::Verdict request(NotificationAction call);

 private:
  void postLocked(NotificationAction call);
  void begin(NotificationAction call);

  const Post post_;
  const Run run_;
  // Also held while posting, so that calls are queued in the order in which the backlog released them.
  std::mutex mutex_;
  NoticeBacklog backlog_;
};
