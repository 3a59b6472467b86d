// Modal runs like those of macOS: hiding a window does not end its run, and the end of a run does not hide
// its window. GNUstep orders a window out at the end of its run, and to the front when a nested run has
// ended.

#import <Cocoa/Cocoa.h>

#include <vector>

namespace {

struct Run {
  NSWindow* window;
  bool stopped;
};
std::vector<Run*> runs;

bool isOfUser(NSEvent* event) {
  return [event type] != NSApplicationDefined && [event type] != NSPeriodic && [event window] != nil;
}

bool isCloseRequest(NSEvent* event) {
  return [event type] == NSAppKitDefined && [event subtype] == GSAppKitWindowClose;
}

// Other AppKit events keep windows drawn, whichever window takes input.
bool isAdmitted(NSEvent* event) {
  if (!isOfUser(event)) return true;
  if ([event type] == NSAppKitDefined && !isCloseRequest(event)) return true;
  return [event window] == runs.back()->window || [[event window] worksWhenModal];
}

}  // namespace

@implementation NSApplication (StandIn)

- (NSInteger)runModalForWindow:(NSWindow*)window {
  Run run{window, false};
  runs.push_back(&run);
  if (![window isVisible]) [window makeKeyAndOrderFront:nil];
  while (!run.stopped) {
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    NSEvent* event = [self nextEventMatchingMask:NSAnyEventMask
                                       untilDate:[NSDate distantFuture]
                                          inMode:NSModalPanelRunLoopMode
                                         dequeue:YES];
    if (isAdmitted(event)) [self sendEvent:event];
    [pool drain];
  }
  runs.pop_back();
  return NSRunStoppedResponse;
}

- (void)stopModal {
  if (!runs.empty()) runs.back()->stopped = true;
}

@end
