#pragma once

#import <Cocoa/Cocoa.h>

#include <deque>
#include <functional>
#include <mutex>
#include <optional>

#include "platform/macos/foundation/action.h"
#include "platform/macos/foundation/retained.h"

namespace platform {

class ModalStack;

// Queue of functions that any thread posts and the main thread runs in the order of posting.
//
// Runs one function per wake-up of the run loop, and requests the next wake-up before the function starts:
// the run loop takes all pending performs as one batch, and those behind a function that begins a modal run
// would wait for the end of that run. Pauses while a stopped modal run returns, because a run started then
// would nest in it.
class PostedWork {
 public:
  // Main thread only. The object must never be destroyed. `modalRuns` must outlive it.
  explicit PostedWork(const ModalStack& modalRuns);
  PostedWork(const PostedWork&) = delete;
  PostedWork& operator=(const PostedWork&) = delete;

  // Appends `work` to the queue. Thread-safe; returns at once.
  void post(std::function<void()> work);
  // Requests a wake-up if functions are queued. Main thread only, after a modal run.
  void wake();
  // Runs the next function. Main thread only, called from the run loop.
  void serveNext();

 private:
  [[nodiscard]] std::optional<std::function<void()>> takeNext();
  void requestWakeUpLocked();

  const ModalStack& modalRuns_;
  Retained<TovalinAction*> wakeUp_;
  std::mutex mutex_;
  std::deque<std::function<void()>> waiting_;
  bool wakeUpRequested_ = false;
};

}  // namespace platform
