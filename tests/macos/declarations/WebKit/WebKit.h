#pragma once

// The part of WebKit in use, for the type check. See Cocoa.h.

#import <Cocoa/Cocoa.h>

@class WKNavigation;

@interface WKWebsiteDataStore : NSObject
+ (WKWebsiteDataStore*)nonPersistentDataStore;
@end

@interface WKWebViewConfiguration : NSObject
- (void)setWebsiteDataStore:(WKWebsiteDataStore*)store;
@end

@interface WKWebView : NSView
- (instancetype)initWithFrame:(NSRect)frame configuration:(WKWebViewConfiguration*)configuration;
- (WKNavigation*)loadRequest:(NSURLRequest*)request;
@end
