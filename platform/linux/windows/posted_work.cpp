#include "platform/linux/windows/posted_work.h"

#include <utility>

#include "platform/linux/windows/modal_stack.h"

namespace platform {

PostedWork& PostedWork::shared() {
  static auto& work = *new PostedWork(ModalStack::shared());
  return work;
}

PostedWork::PostedWork(const ModalStack& modalRuns) : modalRuns_(modalRuns) {
  connect(this, &PostedWork::woken, this, &PostedWork::serve, Qt::QueuedConnection);
}

void PostedWork::post(std::function<void()> work) {
  {
    const std::lock_guard lock(mutex_);
    waiting_.push_back(std::move(work));
  }
  wake();
}

void PostedWork::wake() {
  Q_EMIT woken();
}

void PostedWork::serve() {
  while (!modalRuns_.isUnwinding()) {
    const auto work = takeNext();
    if (!work) return;
    (*work)();
  }
}

std::optional<std::function<void()>> PostedWork::takeNext() {
  const std::lock_guard lock(mutex_);
  if (waiting_.empty()) return std::nullopt;
  std::function<void()> next = std::move(waiting_.front());
  waiting_.pop_front();
  return next;
}

}  // namespace platform
