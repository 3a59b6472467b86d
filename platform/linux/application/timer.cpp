#include "platform/timer.h"

#include <QTimer>

namespace platform {

using std::chrono::steady_clock;

// A repeating QTimer restarts its interval after a tick that is late by more than one interval. This timer
// keeps its ticks at multiples of the interval.
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
    // The action may destroy the timer and this object with it, so call a copy.
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
