// What GNUstep's AppKit lacks of the application, windows, views and menu items. Sheets are windows below the
// title bar of their parent, which ignores clicks meanwhile.

#import <Cocoa/Cocoa.h>

@implementation NSApplication (StandInActivation)

- (void)activate {
  [self activateIgnoringOtherApps:YES];
}

@end

@implementation NSMenuItem (StandIn)

// An empty view takes no space in the menu.
- (void)setView:(NSView*)view {
  [[self menu] removeItem:self];
  static_cast<void>(view);
}

@end

@implementation NSView (StandIn)

- (void)setAccessibilityLabel:(NSString*)label {
  static_cast<void>(label);
}

- (void)setClipsToBounds:(BOOL)clips {
  static_cast<void>(clips);
}

@end

@implementation NSWindow (StandIn)

- (void)beginSheet:(NSWindow*)sheet completionHandler:(id)handler {
  static_cast<void>(handler);
  _attachedSheet = [sheet retain];
  const NSRect parent = [NSWindow contentRectForFrameRect:[self frame] styleMask:[self styleMask]];
  const NSRect own = [sheet frame];
  [sheet setFrameOrigin:NSMakePoint(NSMidX(parent) - own.size.width / 2, NSMaxY(parent) - own.size.height)];
  [sheet setLevel:NSPopUpMenuWindowLevel];
  [sheet makeKeyAndOrderFront:nil];
}

- (void)endSheet:(NSWindow*)sheet {
  [self endSheet:sheet returnCode:0];
}

- (void)endSheet:(NSWindow*)sheet returnCode:(NSInteger)code {
  static_cast<void>(code);
  [sheet orderOut:nil];
  if (_attachedSheet != sheet) return;
  _attachedSheet = nil;
  [sheet autorelease];
  [self makeKeyWindow];
}

- (void)setPreventsApplicationTerminationWhenModal:(BOOL)prevents {
  static_cast<void>(prevents);
}

@end
