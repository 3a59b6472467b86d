#include "platform/macos/foundation/action.h"

#include <utility>

using Work = std::function<void()>;

@interface TovalinAction ()
- (id)initWithWork:(void*)work;
@end

@implementation TovalinAction

- (id)initWithWork:(void*)work {
  self = [super init];
  if (self != nil) work_ = work;
  return self;
}

- (void)dealloc {
  delete static_cast<Work*>(work_);
  [super dealloc];
}

- (void)perform:(id)sender {
  static_cast<void>(sender);
  const Work work = *static_cast<Work*>(work_);
  if (work) work();
}

@end

namespace platform {

TovalinAction* makeAction(std::function<void()> work) {
  return [[TovalinAction alloc] initWithWork:new Work(std::move(work))];
}

}  // namespace platform
