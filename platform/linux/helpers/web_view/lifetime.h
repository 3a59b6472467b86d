#pragma once

#include <chrono>
#include <optional>

namespace helpers {

// Computes when the web view is to end from the events that it receives. Each event may move that time.
class Lifetime {
 public:
  using Clock = std::chrono::steady_clock;

  // Time for a page's scripts to send further requests once all resources have been loaded.
  static constexpr std::chrono::seconds grace{2};
  // Minimum time for the load of an address, including the start of the engine, if the idle time is shorter.
  static constexpr std::chrono::seconds minLoadTime{60};
  // Maximum time from the end of the input to the end of the web view.
  static constexpr std::chrono::seconds maxTimeAfterInput{10};

  Lifetime(Clock::time_point now, Clock::duration idle) : lastProgress_(now), idle_(idle) {}

  // The load of a new address begins.
  void addressReceived(Clock::time_point now);
  // `loading` is true while the page or one of its scripts loads anything.
  void loadingIs(bool loading, Clock::time_point now);
  void inputEnded(Clock::time_point now);

  // Returns the end. Before the end of the input: `idle` after the last address has been loaded, or the
  // longer of `idle` and `minLoadTime` after it arrived if it still loads. Later loads by the page do not
  // extend this time. After the end of the input: `grace` after the load is complete, but at most
  // `maxTimeAfterInput` after the end of the input.
  [[nodiscard]] Clock::time_point end() const;

 private:
  Clock::time_point lastProgress_;
  Clock::duration idle_;
  bool loading_ = false;
  bool firstLoad_ = false;  // the load that addressReceived started
  std::optional<Clock::time_point> quiet_;
  std::optional<Clock::time_point> inputEnd_;
};

}  // namespace helpers
