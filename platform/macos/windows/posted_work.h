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

// What threads have posted to the main thread, served there in the order of posting.
//
// One call for each wake-up of the run loop, and the next wake-up is asked for before the call begins: the
// run loop takes the performs that it finds as one batch, and those behind a call that begins a modal run
// would wait for the end of that run. Nothing is served while a run that has been stopped returns: a run
// begun there would nest in it.
class PostedWork {
 public:
  // Main thread. Lives as long as the process.
  explicit PostedWork(const ModalStack& modalRuns);
  PostedWork(const PostedWork&) = delete;
  PostedWork& operator=(const PostedWork&) = delete;

  // Any thread.
  void post(std::function<void()> work);
  // Has the run loop come back to what was left, after a modal run. Main thread.
  void wake();
  // Serves the next call. Main thread, called by the run loop.
  void serveNext();

 private:
  [[nodiscard]] std::optional<std::function<void()>> takeNext();
  void askForWakeUpLocked();

  const ModalStack& modalRuns_;
  Retained<TovalinAction*> wakeUp_;
  std::mutex mutex_;
  std::deque<std::function<void()>> waiting_;
  bool wakeUpIsAsked_ = false;
};

}  // namespace platform
