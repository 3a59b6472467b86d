#pragma once

// The part of Cocoa that platform/macos uses, for the type check (`make check-macos`); nothing is linked with
// it. Written from Apple's public documentation. Anything not declared here is a compile error, so a new call
// needs a declaration. Types are spelled as in the documentation. The constants of each enumeration have a
// type of their own, so that a constant of another enumeration is an error.

#include <cstddef>
#include <cstdint>

// Objective-C and Foundation

typedef signed char BOOL;
#define YES (static_cast<BOOL>(1))
#define NO (static_cast<BOOL>(0))
#define nil nullptr
typedef long NSInteger;
typedef unsigned long NSUInteger;
typedef double CGFloat;
typedef double NSTimeInterval;
struct NSRange {
  NSUInteger location;
  NSUInteger length;
};
struct NSPoint {
  CGFloat x;
  CGFloat y;
};
struct NSSize {
  CGFloat width;
  CGFloat height;
};
struct NSRect {
  NSPoint origin;
  NSSize size;
};
NSRange NSMakeRange(NSUInteger location, NSUInteger length);
NSPoint NSMakePoint(CGFloat x, CGFloat y);
NSSize NSMakeSize(CGFloat width, CGFloat height);
NSRect NSMakeRect(CGFloat x, CGFloat y, CGFloat width, CGFloat height);
BOOL NSPointInRect(NSPoint point, NSRect rect);

@class NSAppearance, NSArray, NSAttributedString, NSBitmapImageRep, NSColor, NSCursor, NSData, NSDictionary,
    NSError;
@class NSEvent, NSFont, NSImage, NSMenu, NSMenuItem, NSNotification, NSPanel, NSRegularExpression, NSRunLoop;
@class NSStatusBarButton, NSStatusItem, NSString, NSTextStorage, NSTimer, NSURL, NSView, NSWindow;

extern "C" void NSLog(NSString* format, ...);

__attribute__((objc_root_class))
@interface NSObject
+ (instancetype)alloc;
+ (Class)class;
- (instancetype)init;
- (instancetype)retain;
- (oneway void)release;
- (instancetype)autorelease;
- (void)dealloc;
- (id)mutableCopy;
- (id)self;
- (BOOL)isKindOfClass:(Class)aClass;
- (BOOL)respondsToSelector:(SEL)selector;
- (id)performSelector:(SEL)selector withObject:(id)object;
- (void)performSelectorOnMainThread:(SEL)selector
                         withObject:(id)object
                      waitUntilDone:(BOOL)wait
                              modes:(NSArray*)modes;
@end

@interface NSAutoreleasePool : NSObject
- (void)drain;
@end

enum NSStringEncoding : NSUInteger { NSUTF8StringEncoding = 4 };
@interface NSString : NSObject
- (instancetype)initWithBytes:(const void*)bytes
                       length:(NSUInteger)length
                     encoding:(NSStringEncoding)encoding;
- (NSUInteger)length;
- (const char*)UTF8String;
@end

@interface NSArray : NSObject
+ (instancetype)arrayWithObject:(id)object;
+ (instancetype)arrayWithObjects:(id)first, ... __attribute__((sentinel));
- (NSUInteger)count;
- (id)objectAtIndex:(NSUInteger)index;
@end

@interface NSDictionary : NSObject
+ (instancetype)dictionary;
- (id)objectForKey:(id)key;
@end
@interface NSMutableDictionary : NSDictionary
- (void)setObject:(id)object forKey:(id)key;
@end

@interface NSNumber : NSObject
+ (NSNumber*)numberWithInt:(int)value;
@end

@interface NSData : NSObject
+ (instancetype)dataWithBytes:(const void*)bytes length:(NSUInteger)length;
@end

@interface NSUUID : NSObject
- (NSString*)UUIDString;
@end

@interface NSURL : NSObject
+ (instancetype)URLWithString:(NSString*)text;
- (NSString*)scheme;
- (NSString*)host;
@end

@interface NSURLRequest : NSObject
+ (instancetype)requestWithURL:(NSURL*)url;
@end

@interface NSRegularExpression : NSObject
+ (NSRegularExpression*)regularExpressionWithPattern:(NSString*)pattern
                                             options:(NSUInteger)options
                                               error:(NSError**)error;
- (NSRange)rangeOfFirstMatchInString:(NSString*)text options:(NSUInteger)options range:(NSRange)range;
@end

@interface NSBundle : NSObject
+ (NSBundle*)mainBundle;
- (NSString*)executablePath;
@end

@interface NSProcessInfo : NSObject
+ (NSProcessInfo*)processInfo;
- (NSString*)operatingSystemVersionString;
@end

extern "C" NSString* const NSGlobalDomain;
@interface NSUserDefaults : NSObject
+ (NSUserDefaults*)standardUserDefaults;
- (NSDictionary*)persistentDomainForName:(NSString*)name;
@end

enum NSSearchPathDirectory : NSUInteger { NSApplicationSupportDirectory = 14 };
enum NSSearchPathDomainMask : NSUInteger { NSUserDomainMask = 1 };
extern "C" NSArray* NSSearchPathForDirectoriesInDomains(NSSearchPathDirectory directory,
                                                        NSSearchPathDomainMask domains, BOOL expandTilde);

extern "C" NSString* const NSDefaultRunLoopMode;
extern "C" NSString* const NSModalPanelRunLoopMode;
extern "C" NSString* const NSEventTrackingRunLoopMode;
@interface NSRunLoop : NSObject
+ (NSRunLoop*)mainRunLoop;
- (void)addTimer:(NSTimer*)timer forMode:(NSString*)mode;
@end

@interface NSTimer : NSObject
+ (NSTimer*)timerWithTimeInterval:(NSTimeInterval)interval
                           target:(id)target
                         selector:(SEL)selector
                         userInfo:(id)userInfo
                          repeats:(BOOL)repeats;
- (void)invalidate;
@end

@interface NSThread : NSObject
+ (void)detachNewThreadSelector:(SEL)selector toTarget:(id)target withObject:(id)argument;
@end

@interface NSDistributedNotificationCenter : NSObject
+ (NSDistributedNotificationCenter*)defaultCenter;
- (void)addObserver:(id)observer selector:(SEL)selector name:(NSString*)name object:(NSString*)object;
- (void)postNotificationName:(NSString*)name
                      object:(NSString*)object
                    userInfo:(NSDictionary*)userInfo
          deliverImmediately:(BOOL)immediately;
@end

// AppKit

enum NSEventType : NSUInteger { NSEventTypeApplicationDefined = 15 };
@interface NSEvent : NSObject
+ (NSEvent*)otherEventWithType:(NSEventType)type
                      location:(NSPoint)location
                 modifierFlags:(NSUInteger)flags
                     timestamp:(NSTimeInterval)time
                  windowNumber:(NSInteger)window
                       context:(id)context
                       subtype:(short)subtype
                         data1:(NSInteger)data1
                         data2:(NSInteger)data2;
- (NSPoint)locationInWindow;
- (NSString*)characters;
- (BOOL)isARepeat;
@end

@interface NSResponder : NSObject
- (void)keyDown:(NSEvent*)event;
@end

enum NSApplicationTerminateReply : NSUInteger {};
@protocol NSApplicationDelegate
@end
@interface NSApplication : NSResponder
+ (NSApplication*)sharedApplication;
- (void)setDelegate:(id<NSApplicationDelegate>)delegate;
- (void)run;
- (NSInteger)runModalForWindow:(NSWindow*)window;
- (void)stopModal;
- (void)postEvent:(NSEvent*)event atStart:(BOOL)atStart;
- (void)activate;
- (void)activateIgnoringOtherApps:(BOOL)ignore;
@end
extern "C" NSApplication* NSApp;

@interface NSWorkspace : NSObject
+ (NSWorkspace*)sharedWorkspace;
- (BOOL)openURL:(NSURL*)url;
@end

extern "C" NSString* const NSAppearanceNameAqua;
extern "C" NSString* const NSAppearanceNameDarkAqua;
@interface NSAppearance : NSObject
+ (NSAppearance*)appearanceNamed:(NSString*)name;
@end

@interface NSColor : NSObject
+ (NSColor*)colorWithCalibratedRed:(CGFloat)red green:(CGFloat)green blue:(CGFloat)blue alpha:(CGFloat)alpha;
+ (NSColor*)colorWithCalibratedHue:(CGFloat)hue
                        saturation:(CGFloat)saturation
                        brightness:(CGFloat)brightness
                             alpha:(CGFloat)alpha;
- (CGFloat)redComponent;
- (CGFloat)greenComponent;
- (CGFloat)blueComponent;
- (CGFloat)alphaComponent;
@end

@interface NSFont : NSObject
+ (NSFont*)systemFontOfSize:(CGFloat)size;
+ (NSFont*)boldSystemFontOfSize:(CGFloat)size;
@end

@interface NSCursor : NSObject
+ (NSCursor*)pointingHandCursor;
+ (NSCursor*)arrowCursor;
@end

// NSTextAlignmentCenter is 1 on Apple silicon and 2 on Intel: use only the names.
enum NSTextAlignment : NSInteger { NSTextAlignmentLeft = 0, NSTextAlignmentCenter = 1 };

enum NSCompositingOperation : NSUInteger {
  NSCompositingOperationCopy = 1,
  NSCompositingOperationSourceOver = 2
};
enum NSImageInterpolation : NSUInteger { NSImageInterpolationLow = 2, NSImageInterpolationHigh = 3 };

@interface NSImageRep : NSObject
+ (NSArray*)imageRepsWithContentsOfFile:(NSString*)path;
- (NSInteger)pixelsWide;
- (NSInteger)pixelsHigh;
- (void)setSize:(NSSize)size;
@end

@interface NSBitmapImageRep : NSImageRep
+ (NSArray*)imageRepsWithData:(NSData*)data;
@end

@interface NSImage : NSObject
- (instancetype)initWithSize:(NSSize)size;
- (NSSize)size;
- (void)setSize:(NSSize)size;
- (NSArray*)representations;
- (void)lockFocus;
- (void)unlockFocus;
- (void)addRepresentation:(NSImageRep*)representation;
- (void)drawInRect:(NSRect)to
          fromRect:(NSRect)from
         operation:(NSCompositingOperation)operation
          fraction:(CGFloat)fraction;
@end

@interface NSGraphicsContext : NSObject
+ (NSGraphicsContext*)currentContext;
- (void)setImageInterpolation:(NSImageInterpolation)interpolation;
@end

typedef NSString* NSAccessibilityRole;
extern "C" NSAccessibilityRole const NSAccessibilityLinkRole;
extern "C" NSAccessibilityRole const NSAccessibilityImageRole;
@interface NSView : NSResponder
- (instancetype)initWithFrame:(NSRect)frame;
- (NSRect)bounds;
- (void)addSubview:(NSView*)view;
- (NSPoint)convertPoint:(NSPoint)point fromView:(NSView*)view;
- (void)addCursorRect:(NSRect)rect cursor:(NSCursor*)cursor;
- (void)setClipsToBounds:(BOOL)clips;
- (void)setAccessibilityLabel:(NSString*)label;
- (void)setToolTip:(NSString*)text;
@end

@interface NSCell : NSObject
@end
@interface NSButtonCell : NSCell
- (void)setHighlightsBy:(NSInteger)mask;
@end

@interface NSControl : NSView
- (NSCell*)cell;
- (void)setTarget:(id)target;
- (void)setAction:(SEL)action;
- (BOOL)isEnabled;
- (void)setEnabled:(BOOL)enabled;
- (void)setFont:(NSFont*)font;
- (void)setStringValue:(NSString*)text;
- (void)setAlignment:(NSTextAlignment)alignment;
- (void)performClick:(id)sender;
@end

@interface NSTextField : NSControl
- (void)setBezeled:(BOOL)bezeled;
- (void)setDrawsBackground:(BOOL)draws;
- (void)setEditable:(BOOL)editable;
- (void)setSelectable:(BOOL)selectable;
@end

enum NSBezelStyle : NSUInteger { NSBezelStyleRounded = 1 };
enum NSButtonType : NSUInteger { NSButtonTypeMomentaryPushIn = 7 };
@interface NSButton : NSControl
- (void)setTitle:(NSString*)title;
- (void)setImage:(NSImage*)image;
- (void)setBezelStyle:(NSBezelStyle)style;
- (void)setButtonType:(NSButtonType)type;
@end

enum NSImageScaling : NSUInteger { NSImageScaleProportionallyDown = 0 };
@interface NSImageView : NSControl
- (void)setImage:(NSImage*)image;
- (void)setImageScaling:(NSImageScaling)scaling;
@end

extern "C" NSString* const NSCursorAttributeName;
extern "C" NSString* const NSForegroundColorAttributeName;
extern "C" NSString* const NSLinkAttributeName;
extern "C" NSString* const NSParagraphStyleAttributeName;
extern "C" NSString* const NSUnderlineStyleAttributeName;
@interface NSAttributedString : NSObject
- (instancetype)initWithString:(NSString*)text attributes:(NSDictionary*)attributes;
- (NSUInteger)length;
@end
@interface NSTextStorage : NSAttributedString
- (void)setAttributedString:(NSAttributedString*)text;
- (void)addAttribute:(NSString*)name value:(id)value range:(NSRange)range;
@end

enum NSLineBreakMode : NSUInteger { NSLineBreakByTruncatingTail = 4 };
@interface NSParagraphStyle : NSObject
+ (NSParagraphStyle*)defaultParagraphStyle;
@end
@interface NSMutableParagraphStyle : NSParagraphStyle
- (void)setLineBreakMode:(NSLineBreakMode)mode;
@end

@interface NSText : NSView
- (void)setString:(NSString*)text;
- (void)setFont:(NSFont*)font;
- (void)setAlignment:(NSTextAlignment)alignment;
- (void)setDrawsBackground:(BOOL)draws;
- (void)setEditable:(BOOL)editable;
- (void)setSelectable:(BOOL)selectable;
@end
@interface NSTextView : NSText
- (NSTextStorage*)textStorage;
@end

typedef NSUInteger NSWindowStyleMask;
enum : NSUInteger { NSWindowStyleMaskTitled = 1, NSWindowStyleMaskClosable = 2 };
enum NSBackingStoreType : NSUInteger { NSBackingStoreBuffered = 2 };
@protocol NSWindowDelegate
@end
@interface NSWindow : NSResponder
- (instancetype)initWithContentRect:(NSRect)rect
                          styleMask:(NSWindowStyleMask)style
                            backing:(NSBackingStoreType)backing
                              defer:(BOOL)defer;
- (void)setDelegate:(id<NSWindowDelegate>)delegate;
- (void)setTitle:(NSString*)title;
- (void)setContentView:(NSView*)view;
- (void)setBackgroundColor:(NSColor*)color;
- (void)setAppearance:(NSAppearance*)appearance;
- (void)setHidesOnDeactivate:(BOOL)hides;
- (void)setReleasedWhenClosed:(BOOL)releases;
- (void)setPreventsApplicationTerminationWhenModal:(BOOL)prevents;
- (void)center;
- (void)makeKeyAndOrderFront:(id)sender;
- (void)orderOut:(id)sender;
- (void)performClose:(id)sender;
- (void)close;
- (BOOL)isVisible;
- (NSWindow*)attachedSheet;
- (void)beginSheet:(NSWindow*)sheet completionHandler:(void (^)(NSInteger))handler;
- (void)endSheet:(NSWindow*)sheet;
- (void)endSheet:(NSWindow*)sheet returnCode:(NSInteger)code;
@end
@interface NSPanel : NSWindow
@end

enum NSAlertStyle : NSUInteger { NSAlertStyleWarning = 0 };
@interface NSAlert : NSObject
- (NSButton*)addButtonWithTitle:(NSString*)title;
- (NSArray*)buttons;
- (void)setMessageText:(NSString*)text;
- (void)setAlertStyle:(NSAlertStyle)style;
- (void)setIcon:(NSImage*)icon;
- (void)layout;
- (NSPanel*)window;
@end

@interface NSMenu : NSObject
- (instancetype)initWithTitle:(NSString*)title;
- (void)addItem:(NSMenuItem*)item;
- (void)setAutoenablesItems:(BOOL)enables;
@end

@interface NSMenuItem : NSObject
+ (NSMenuItem*)separatorItem;
- (instancetype)initWithTitle:(NSString*)title action:(SEL)action keyEquivalent:(NSString*)key;
- (NSString*)title;
- (void)setTitle:(NSString*)title;
- (void)setTarget:(id)target;
- (void)setEnabled:(BOOL)enabled;
- (void)setImage:(NSImage*)image;
- (void)setView:(NSView*)view;
@end

@interface NSStatusBarButton : NSButton
@end
@interface NSStatusItem : NSObject
- (NSStatusBarButton*)button;
- (void)setMenu:(NSMenu*)menu;
@end
@interface NSStatusBar : NSObject
+ (NSStatusBar*)systemStatusBar;
- (NSStatusItem*)statusItemWithLength:(CGFloat)length;
- (void)removeStatusItem:(NSStatusItem*)item;
@end

@interface NSNotification : NSObject
@end
