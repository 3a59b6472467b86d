// Fakes the web view: passes each address to the program `beacon` of PATH instead of loading it.

#import <WebKit/WebKit.h>

#include "tests/macos/stand_ins/run_program.h"

@implementation WKWebsiteDataStore

+ (WKWebsiteDataStore*)nonPersistentDataStore {
  return [[[WKWebsiteDataStore alloc] init] autorelease];
}

@end

@implementation WKWebViewConfiguration

- (void)setWebsiteDataStore:(WKWebsiteDataStore*)store {
  static_cast<void>(store);
}

@end

@implementation WKWebView

- (id)initWithFrame:(NSRect)frame configuration:(WKWebViewConfiguration*)configuration {
  static_cast<void>(configuration);
  return [super initWithFrame:frame];
}

- (id)loadRequest:(NSURLRequest*)request {
  standInRun({"beacon", [[[request URL] absoluteString] UTF8String]});
  return nil;
}

@end
