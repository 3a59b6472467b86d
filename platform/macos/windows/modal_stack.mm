#include "platform/macos/windows/modal_stack.h"

#include <algorithm>
#include <utility>

#include "platform/macos/windows/window_impl.h"
#include "platform/window.h"

namespace platform {
namespace {

// Posts an event, because a modal loop checks for stopModal only after an event.
void stopTopmostRun() {
  [NSApp stopModal];
  NSEvent* event = [NSEvent otherEventWithType:NSEventTypeApplicationDefined
                                      location:NSMakePoint(0, 0)
                                 modifierFlags:0
                                     timestamp:0
                                  windowNumber:0
                                       context:nil
                                       subtype:0
                                         data1:0
                                         data2:0];
  [NSApp postEvent:event atStart:NO];
}

}  // namespace

void ModalStack::run(std::shared_ptr<Window> window) {
  Level level{std::move(window)};
  levels_.push_back(&level);
  [NSApp runModalForWindow:level.window->impl().window.get()];
  levels_.pop_back();
  // The level below was stopped while this one was returning.
  if (isUnwinding()) stopTopmostRun();
}

ModalStack::Level* ModalStack::innermost() const {
  const auto running =
      std::find_if(levels_.rbegin(), levels_.rend(), [](const Level* level) { return !level->stopped; });
  return running == levels_.rend() ? nullptr : *running;
}

void ModalStack::stop() {
  Level* level = innermost();
  if (level == nullptr) return;
  level->stopped = true;
  if (level == levels_.back()) stopTopmostRun();
}

bool ModalStack::admits(NSWindow* window) const {
  const Level* level = innermost();
  if (level == nullptr) return true;
  NSWindow* modal = level->window->impl().window.get();
  return window == modal || ![modal isVisible];
}

}  // namespace platform
