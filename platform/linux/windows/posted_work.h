#pragma once

#include <deque>
#include <functional>
#include <mutex>
#include <optional>

#include <QObject>

namespace platform {

class ModalStack;

// Queue of functions that any thread posts and the main thread runs in the order of posting.
//
// Qt's event queue continues to deliver events in a modal run that has been stopped but has not returned. A
// run started there would nest in it, so rapid alternation of "show" and "hide" commands would nest runs
// without bound. This queue pauses until the stopped run has returned.
class PostedWork : public QObject {
  Q_OBJECT

 public:
  // Returns the only instance, which is never destroyed. Call it first on the main thread.
  static PostedWork& shared();

  // Main thread only, like the destructor. `modalRuns` must outlive this object.
  explicit PostedWork(const ModalStack& modalRuns);

  // Appends `work` to the queue. Thread-safe; returns at once.
  void post(std::function<void()> work);
  // Schedules `serve` on the run loop. Thread-safe.
  void wake();
  // Runs the queued functions now. Main thread only, called from the run loop. Returns early while a stopped
  // modal run unwinds.
  void serve();

 Q_SIGNALS:
  // A queued signal rather than a queued functor, so that `waiting_` is the only state that threads share.
  void woken();

 private:
  [[nodiscard]] std::optional<std::function<void()>> takeNext();

  const ModalStack& modalRuns_;
  std::mutex mutex_;
  std::deque<std::function<void()>> waiting_;
};

}  // namespace platform
