#include "platform/timer.h"

#import <Cocoa/Cocoa.h>

#include <utility>

#include "platform/macos/foundation/action.h"
#include "platform/macos/foundation/autorelease_pool.h"
#include "platform/macos/foundation/retained.h"
#include "platform/macos/foundation/run_loop_modes.h"

namespace platform {

struct Timer::Impl {
  Retained<NSTimer*> timer;
};

// A repeating NSTimer keeps to its original schedule and fires once for all ticks that it has missed. It
// retains its target.
std::shared_ptr<Timer> Timer::scheduledTimer(std::chrono::milliseconds interval,
                                             std::function<void()> action) {
  const AutoreleasePool pool;
  const Retained<TovalinAction*> target(makeAction(std::move(action)));
  NSTimer* timer = [NSTimer timerWithTimeInterval:std::chrono::duration<double>(interval).count()
                                           target:target.get()
                                         selector:@selector(perform:)
                                         userInfo:nil
                                          repeats:YES];
  NSArray* modes = servedModes();
  for (NSUInteger i = 0; i < [modes count]; ++i)
    [[NSRunLoop mainRunLoop] addTimer:timer forMode:static_cast<NSString*>([modes objectAtIndex:i])];
  return std::shared_ptr<Timer>(new Timer(std::make_unique<Impl>(Impl{retained(timer)})));
}

Timer::Timer(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}

Timer::~Timer() {
  invalidate();
}

void Timer::invalidate() {
  [impl_->timer.get() invalidate];
}

}  // namespace platform
