#include "platform/linux/helpers/web_view/lifetime.h"

#include <algorithm>

namespace helpers {

void Lifetime::addressReceived(Clock::time_point now) {
  lastProgress_ = now;
  loading_ = true;
  firstLoad_ = true;
}

void Lifetime::loadingIs(bool loading, Clock::time_point now) {
  if (loading == loading_) return;
  loading_ = loading;
  if (loading) return;
  quiet_ = now;
  if (firstLoad_) lastProgress_ = now;
  firstLoad_ = false;
}

void Lifetime::inputEnded(Clock::time_point now) {
  if (!inputEnd_) inputEnd_ = now;
}

Lifetime::Clock::time_point Lifetime::end() const {
  if (!inputEnd_) return lastProgress_ + (firstLoad_ ? std::max<Clock::duration>(idle_, minLoadTime) : idle_);
  const Clock::time_point last = *inputEnd_ + maxTimeAfterInput;
  if (loading_) return last;
  if (!quiet_) return *inputEnd_;
  return std::clamp<Clock::time_point>(*quiet_ + grace, *inputEnd_, last);
}

}  // namespace helpers
