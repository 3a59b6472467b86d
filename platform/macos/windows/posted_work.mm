#include "platform/macos/windows/posted_work.h"

#include <utility>

#include "platform/macos/foundation/autorelease_pool.h"
#include "platform/macos/foundation/run_loop_modes.h"
#include "platform/macos/windows/modal_stack.h"

namespace platform {

PostedWork::PostedWork(const ModalStack& modalRuns)
    : modalRuns_(modalRuns), wakeUp_(makeAction([this] { serveNext(); })) {}

void PostedWork::post(std::function<void()> work) {
  const std::lock_guard lock(mutex_);
  waiting_.push_back(std::move(work));
  requestWakeUpLocked();
}

void PostedWork::wake() {
  const std::lock_guard lock(mutex_);
  if (!waiting_.empty()) requestWakeUpLocked();
}

void PostedWork::serveNext() {
  const AutoreleasePool pool;
  if (const auto work = takeNext()) (*work)();
}

std::optional<std::function<void()>> PostedWork::takeNext() {
  const std::lock_guard lock(mutex_);
  wakeUpRequested_ = false;
  if (waiting_.empty() || modalRuns_.isUnwinding()) return std::nullopt;
  std::function<void()> next = std::move(waiting_.front());
  waiting_.pop_front();
  if (!waiting_.empty()) requestWakeUpLocked();
  return next;
}

void PostedWork::requestWakeUpLocked() {
  if (std::exchange(wakeUpRequested_, true)) return;
  const AutoreleasePool pool;
  [wakeUp_.get() performSelectorOnMainThread:@selector(perform:)
                                  withObject:nil
                               waitUntilDone:NO
                                       modes:servedModes()];
}

}  // namespace platform
