#pragma once

// AppKit and Foundation of GNUstep, with what they lack compared to macOS: newer names of constants, and
// classes and methods implemented in the files beside this folder.

#import <AppKit/AppKit.h>
#import <Foundation/Foundation.h>

#define NSAlertStyleWarning NSWarningAlertStyle
#define NSBezelStyleRounded NSRoundedBezelStyle
#define NSButtonTypeMomentaryPushIn NSMomentaryPushInButton
#define NSCompositingOperationCopy NSCompositeCopy
#define NSCompositingOperationSourceOver NSCompositeSourceOver
#define NSEventTypeApplicationDefined NSApplicationDefined

#define NSAppearanceNameAqua @"NSAppearanceNameAqua"
#define NSAppearanceNameDarkAqua @"NSAppearanceNameDarkAqua"

// Returns a path below $HOME with the layout of macOS; GNUstep's function uses the password database.
extern "C" NSArray* standInSearchPaths(NSSearchPathDirectory directory, NSSearchPathDomainMask domains,
                                       BOOL expandTilde);
#define NSSearchPathForDirectoriesInDomains standInSearchPaths

// GNUstep finds no match for the pattern "\\X", a grapheme.
@interface StandInRegularExpression : NSRegularExpression
+ (StandInRegularExpression*)regularExpressionWithPattern:(NSString*)pattern
                                                  options:(NSRegularExpressionOptions)options
                                                    error:(NSError**)error;
@end
#define NSRegularExpression StandInRegularExpression

@interface StandInStatusItem : NSObject {
  NSWindow* window_;
  NSStatusBarButton* button_;
  NSMenu* menu_;
  NSPanel* lines_;  // the menu's window, while it is open
}
- (NSStatusBarButton*)button;
- (void)setMenu:(NSMenu*)menu;
@end
#define NSStatusItem StandInStatusItem

@interface StandInStatusBar : NSObject
+ (StandInStatusBar*)systemStatusBar;
- (StandInStatusItem*)statusItemWithLength:(CGFloat)length;
- (void)removeStatusItem:(StandInStatusItem*)item;
@end
#define NSStatusBar StandInStatusBar

@interface StandInAlert : NSObject {
  NSMutableArray* buttons_;
  NSString* message_;
  NSImage* icon_;
  NSPanel* panel_;
}
- (NSButton*)addButtonWithTitle:(NSString*)title;
- (NSArray*)buttons;
- (void)setMessageText:(NSString*)text;
- (void)setAlertStyle:(NSAlertStyle)style;
- (void)setIcon:(NSImage*)icon;
- (void)layout;
- (NSPanel*)window;
@end
#define NSAlert StandInAlert

@interface NSApplication (StandInActivation)
- (void)activate;
@end

@interface NSWindow (StandIn)
- (void)beginSheet:(NSWindow*)sheet completionHandler:(id)handler;
- (void)endSheet:(NSWindow*)sheet;
- (void)endSheet:(NSWindow*)sheet returnCode:(NSInteger)code;
- (void)setPreventsApplicationTerminationWhenModal:(BOOL)prevents;
@end

@interface NSMenuItem (StandIn)
- (void)setView:(NSView*)view;
@end

@interface NSView (StandIn)
- (void)setAccessibilityLabel:(NSString*)label;
- (void)setClipsToBounds:(BOOL)clips;
@end

@interface NSObject (StandInAppearance)
- (void)setAppearance:(NSAppearance*)appearance;
@end
