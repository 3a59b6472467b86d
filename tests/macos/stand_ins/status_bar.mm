// A status bar of one item: a small window in the upper right corner of the screen, whose button opens the
// menu.

#import <Cocoa/Cocoa.h>

namespace {

constexpr CGFloat side = 24;

}  // namespace

// Works in modal runs, as the status bar does.
@interface StandInStatusPanel : NSPanel
@end

@implementation StandInStatusPanel

- (BOOL)worksWhenModal {
  return YES;
}

- (BOOL)canBecomeKeyWindow {
  return NO;
}

@end

@implementation StandInStatusItem

- (id)init {
  self = [super init];
  if (self == nil) return nil;
  const NSRect screen = [[NSScreen mainScreen] frame];
  window_ = [[StandInStatusPanel alloc]
      initWithContentRect:NSMakeRect(NSMaxX(screen) - 4 * side, NSMaxY(screen) - side, side, side)
                styleMask:NSWindowStyleMaskBorderless
                  backing:NSBackingStoreBuffered
                    defer:NO];
  [window_ setTitle:@"status item"];
  [window_ setReleasedWhenClosed:NO];
  [window_ setLevel:NSStatusWindowLevel];
  button_ = [[NSStatusBarButton alloc] initWithFrame:NSMakeRect(0, 0, side, side)];
  [button_ setBordered:NO];
  [button_ setImagePosition:NSImageOnly];
  [button_ setTarget:self];
  [button_ setAction:@selector(openMenu:)];
  [button_ sendActionOn:NSLeftMouseDownMask];
  [[window_ contentView] addSubview:button_];
  [window_ orderFrontRegardless];
  return self;
}

- (void)dealloc {
  [window_ close];
  [button_ release];
  [window_ release];
  [menu_ release];
  [super dealloc];
}

- (NSStatusBarButton*)button {
  return button_;
}

- (void)setMenu:(NSMenu*)menu {
  [menu_ autorelease];
  menu_ = [menu retain];
}

- (void)openMenu:(id)sender {
  static_cast<void>(sender);
  NSEvent* event = [NSEvent mouseEventWithType:NSRightMouseDown
                                      location:NSMakePoint(0, 0)
                                 modifierFlags:0
                                     timestamp:0
                                  windowNumber:[window_ windowNumber]
                                       context:nil
                                   eventNumber:0
                                    clickCount:1
                                      pressure:0];
  [NSMenu popUpContextMenu:menu_ withEvent:event forView:button_];
}

@end

@implementation StandInStatusBar

+ (StandInStatusBar*)systemStatusBar {
  static StandInStatusBar* bar = [[StandInStatusBar alloc] init];
  return bar;
}

- (StandInStatusItem*)statusItemWithLength:(CGFloat)length {
  static_cast<void>(length);
  return [[[StandInStatusItem alloc] init] autorelease];
}

- (void)removeStatusItem:(StandInStatusItem*)item {
  static_cast<void>(item);
}

@end
