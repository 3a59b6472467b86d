// Adjusts GNUstep's Foundation and NSWorkspace to the behaviour of macOS.

#import <Cocoa/Cocoa.h>

#include <cstdlib>

#include "tests/macos/stand_ins/run_program.h"

NSArray* standInSearchPaths(NSSearchPathDirectory, NSSearchPathDomainMask, BOOL) {
  const char* home = std::getenv("HOME");
  if (home == nullptr || home[0] != '/') return [NSArray array];
  return [NSArray arrayWithObject:[NSString stringWithFormat:@"%s/Library/Application Support", home]];
}

// Overrides GNUstep's method: opens pages with the program `open`, as on the command line of macOS.
@implementation NSWorkspace (StandIn)

- (BOOL)openURL:(NSURL*)url {
  standInRun({"open", [[url absoluteString] UTF8String]});
  return YES;
}

@end

// A base character with its combining marks: a grapheme in all texts that the tests use.
@implementation StandInRegularExpression

+ (StandInRegularExpression*)regularExpressionWithPattern:(NSString*)pattern
                                                  options:(NSRegularExpressionOptions)options
                                                    error:(NSError**)error {
  static_cast<void>(pattern);
  return static_cast<id>([super regularExpressionWithPattern:@"\\P{M}\\p{M}*|\\p{M}+"
                                                     options:options
                                                       error:error]);
}

@end
