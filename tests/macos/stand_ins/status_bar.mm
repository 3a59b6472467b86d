// A status bar with one item: a small window in the upper right corner of the screen, whose button opens the
// menu. The menu is a window of equally high buttons, one per item, because GNUstep's own menu does not
// survive modal runs that begin while it is tracked.

#import <Cocoa/Cocoa.h>

namespace {

constexpr CGFloat side = 24, menuWidth = 200, lineHeight = 20;

}  // namespace

// Works in modal runs, like the status bar of macOS.
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

// Accepts the first click while the program is inactive.
@interface StandInMenuLine : NSButton
@end

@implementation StandInMenuLine

- (BOOL)acceptsFirstMouse:(NSEvent*)event {
  static_cast<void>(event);
  return YES;
}

@end

@interface StandInStatusItem (Menu)
- (void)openMenu:(id)sender;
- (void)addLine:(NSInteger)index height:(CGFloat)height;
- (void)chooseLine:(id)sender;
- (void)closeMenu;
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
  [window_ setHidesOnDeactivate:NO];
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
  if (lines_ != nil) return [self closeMenu];
  // The first click into a window of an inactive program only activates it.
  [NSApp activateIgnoringOtherApps:YES];
  const NSInteger count = [menu_ numberOfItems];
  const CGFloat height = lineHeight * static_cast<CGFloat>(count);
  const NSRect item = [window_ frame];
  lines_ = [[StandInStatusPanel alloc]
      initWithContentRect:NSMakeRect(NSMaxX(item) - menuWidth, NSMinY(item) - height, menuWidth, height)
                styleMask:NSWindowStyleMaskBorderless
                  backing:NSBackingStoreBuffered
                    defer:NO];
  [lines_ setTitle:@"menu"];
  [lines_ setReleasedWhenClosed:NO];
  [lines_ setHidesOnDeactivate:NO];
  [lines_ setLevel:NSPopUpMenuWindowLevel];
  for (NSInteger i = 0; i < count; ++i) [self addLine:i height:height];
  [lines_ orderFrontRegardless];
}

- (void)addLine:(NSInteger)index height:(CGFloat)height {
  NSMenuItem* item = [menu_ itemAtIndex:index];
  const NSRect frame =
      NSMakeRect(0, height - lineHeight * static_cast<CGFloat>(index + 1), menuWidth, lineHeight);
  NSButton* line = [[[StandInMenuLine alloc] initWithFrame:frame] autorelease];
  [line setTitle:[item isSeparatorItem] ? @"" : [item title]];
  [line setImage:[item image]];
  [line setImagePosition:NSImageRight];
  [line setBordered:NO];
  [line setAlignment:NSTextAlignmentLeft];
  [line setEnabled:[item isEnabled]];
  [line setTag:index];
  [line setTarget:self];
  [line setAction:@selector(chooseLine:)];
  [[lines_ contentView] addSubview:line];
}

- (void)chooseLine:(id)sender {
  const NSInteger index = [static_cast<NSButton*>(sender) tag];
  [[self retain] autorelease];
  [self closeMenu];
  [menu_ performActionForItemAtIndex:index];
}

- (void)closeMenu {
  [lines_ orderOut:nil];
  [lines_ autorelease];
  lines_ = nil;
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
