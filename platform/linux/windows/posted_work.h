#pragma once

#include <deque>
#include <functional>
#include <mutex>
#include <optional>

#include <QObject>

namespace platform {

class ModalStack;

// What threads have posted to the main thread, served there in the order of posting.
//
// The toolkit's own queue would go on serving inside a modal run that has just been stopped, and a run begun
// there would nest in it: a quick writer of "show" and "hide" would pile up runs without end. This queue
// waits until the stopped run has returned.
class PostedWork : public QObject {
  Q_OBJECT

 public:
  // The program's one queue. Never destroyed; first called on the main thread.
  static PostedWork& shared();

  // Main thread, as the destructor.
  explicit PostedWork(const ModalStack& modalRuns);

  // Any thread.
  void post(std::function<void()> work);
  // Has the run loop come back to what was left. Any thread.
  void wake();
  // Serves what is waiting at once, instead of with the run loop's next turn. Main thread, called by the run
  // loop.
  void serve();

 Q_SIGNALS:
  // A signal rather than a call of its own for each wake: the threads share the queue below and nothing else.
  void woken();

 private:
  [[nodiscard]] std::optional<std::function<void()>> takeNext();

  const ModalStack& modalRuns_;
  std::mutex mutex_;
  std::deque<std::function<void()>> waiting_;
};

}  // namespace platform
