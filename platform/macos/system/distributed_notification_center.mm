#include "platform/distributed_notification_center.h"

#import <Cocoa/Cocoa.h>

#include <utility>

#include "platform/macos/foundation/action.h"
#include "platform/macos/foundation/autorelease_pool.h"
#include "platform/macos/foundation/text_impl.h"

namespace platform {

DistributedNotificationCenter& DistributedNotificationCenter::defaultCenter() {
  static DistributedNotificationCenter& center = *new DistributedNotificationCenter;
  return center;
}

// The center does not retain its observers. The action is never released, so that it stays valid until the
// process ends.
void DistributedNotificationCenter::addObserver(std::string_view name, std::function<void()> observer) {
  const AutoreleasePool pool;
  TovalinAction* action = makeAction(std::move(observer));
  [[NSDistributedNotificationCenter defaultCenter] addObserver:action
                                                      selector:@selector(perform:)
                                                          name:textOf(name)
                                                        object:nil];
}

}  // namespace platform
