#include "platform/timer.h"

#include <QTimer>

namespace platform {

using std::chrono::steady_clock;

// The toolkit's own repeating timers start a new count after a tick that was late by more than an interval.
struct Timer::Impl {
  Impl(std::chrono::milliseconds every, std::function<void()> what)
      : interval(every), action(std::move(what)), due(steady_clock::now() + every) {
    timer.setTimerType(Qt::PreciseTimer);
    timer.setSingleShot(true);
    QObject::connect(&timer, &QTimer::timeout, &timer, [this] { wake(); });
    wait();
  }

  void wait() { timer.start(std::chrono::ceil<std::chrono::milliseconds>(due - steady_clock::now())); }

  void wake() {
    const auto now = steady_clock::now();
    if (now < due) return wait();
    due += ((now - due) / interval + 1) * interval;
    wait();
    // The action may drop the timer, and this with it.
    const auto running = action;
    running();
  }

  std::chrono::nanoseconds interval;
  std::function<void()> action;
  steady_clock::time_point due;
  QTimer timer;
};

std::shared_ptr<Timer> Timer::scheduledTimer(std::chrono::milliseconds interval,
                                             std::function<void()> action) {
  return std::shared_ptr<Timer>(new Timer(std::make_unique<Impl>(interval, std::move(action))));
}

Timer::Timer(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
Timer::~Timer() = default;

void Timer::invalidate() {
  impl_->timer.stop();
}

}  // namespace platform
