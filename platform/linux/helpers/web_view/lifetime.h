#pragma once

#include <chrono>
#include <optional>

namespace helpers {

// When the web view is to end. It is told what happens and answers with a point of time, which moves with
// each event.
class Lifetime {
 public:
  using Clock = std::chrono::steady_clock;

  // The time that a page's scripts get to call back once all they have asked for is there.
  static constexpr std::chrono::seconds grace{2};
  // The time that the load of an address gets, the engine's start included, where the idle time is shorter.
  static constexpr std::chrono::seconds patience{60};
  // The longest life after the end of the input.
  static constexpr std::chrono::seconds leave{10};

  Lifetime(Clock::time_point now, Clock::duration idle) : news_(now), idle_(idle) {}

  // A new address is being loaded from now on.
  void addressCame(Clock::time_point now);
  // Whether anything is still being loaded, by the page itself or by its scripts.
  void loadingIs(bool loading, Clock::time_point now);
  void inputEnded(Clock::time_point now);

  // As long as addresses may come: `idle` after the load of the last one was done, or `patience` after it
  // came if its load never ends. What a page loads later of its own accord keeps nothing alive. From the
  // input's end on: once the load is done.
  [[nodiscard]] Clock::time_point end() const;

 private:
  Clock::time_point news_;
  Clock::duration idle_;
  bool loading_ = false;
  bool firstLoad_ = false;  // the one that an address has begun
  std::optional<Clock::time_point> quiet_;
  std::optional<Clock::time_point> inputEnd_;
};

}  // namespace helpers
