#pragma once

#import <Cocoa/Cocoa.h>

@interface WKWebsiteDataStore : NSObject
+ (WKWebsiteDataStore*)nonPersistentDataStore;
@end

@interface WKWebViewConfiguration : NSObject
- (void)setWebsiteDataStore:(WKWebsiteDataStore*)store;
@end

@interface WKWebView : NSView
- (id)initWithFrame:(NSRect)frame configuration:(WKWebViewConfiguration*)configuration;
- (id)loadRequest:(NSURLRequest*)request;
@end
