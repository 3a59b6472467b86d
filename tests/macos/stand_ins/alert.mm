// An alert whose window does not run by itself, like that of macOS after -layout.

#import <Cocoa/Cocoa.h>

namespace {

constexpr CGFloat width = 400, height = 120, buttonWidth = 100, buttonHeight = 28, margin = 12, iconSide = 64;

NSTextField* label(NSString* text) {
  NSTextField* field = [[[NSTextField alloc]
      initWithFrame:NSMakeRect(iconSide + 2 * margin, height - 60, width - iconSide - 3 * margin, 48)]
      autorelease];
  [field setBezeled:NO];
  [field setDrawsBackground:NO];
  [field setEditable:NO];
  [field setSelectable:NO];
  [field setStringValue:text];
  return field;
}

NSImageView* picture(NSImage* image) {
  NSImageView* view = [[[NSImageView alloc]
      initWithFrame:NSMakeRect(margin, height - iconSide - margin, iconSide, iconSide)] autorelease];
  [view setImage:image];
  return view;
}

}  // namespace

@interface StandInAlertPanel : NSPanel
@end

@implementation StandInAlertPanel

- (BOOL)worksWhenModal {
  return YES;
}

@end

@implementation StandInAlert

- (id)init {
  self = [super init];
  if (self != nil) buttons_ = [[NSMutableArray alloc] init];
  return self;
}

- (void)dealloc {
  [panel_ release];
  [buttons_ release];
  [message_ release];
  [icon_ release];
  [super dealloc];
}

// The first button is the rightmost.
- (NSButton*)addButtonWithTitle:(NSString*)title {
  const CGFloat place = static_cast<CGFloat>([buttons_ count] + 1);
  NSButton* button = [[[NSButton alloc]
      initWithFrame:NSMakeRect(width - place * (buttonWidth + margin), margin, buttonWidth, buttonHeight)]
      autorelease];
  [button setTitle:title];
  if ([buttons_ count] == 0) [button setKeyEquivalent:@"\r"];
  if ([title isEqualToString:@"Cancel"]) [button setKeyEquivalent:@"\x1b"];
  [buttons_ addObject:button];
  return button;
}

- (NSArray*)buttons {
  return buttons_;
}

- (void)setMessageText:(NSString*)text {
  [message_ autorelease];
  message_ = [text copy];
}

- (void)setAlertStyle:(NSAlertStyle)style {
  static_cast<void>(style);
}

- (void)setIcon:(NSImage*)icon {
  [icon_ autorelease];
  icon_ = [icon retain];
}

- (void)layout {
  if (panel_ != nil) return;
  panel_ = [[StandInAlertPanel alloc] initWithContentRect:NSMakeRect(0, 0, width, height)
                                                styleMask:NSWindowStyleMaskBorderless
                                                  backing:NSBackingStoreBuffered
                                                    defer:NO];
  [panel_ setTitle:@"sheet"];
  [panel_ setReleasedWhenClosed:NO];
  [[panel_ contentView] addSubview:picture(icon_)];
  [[panel_ contentView] addSubview:label(message_)];
  for (NSUInteger i = 0; i < [buttons_ count]; ++i)
    [[panel_ contentView] addSubview:[buttons_ objectAtIndex:i]];
}

- (NSPanel*)window {
  return panel_;
}

@end
