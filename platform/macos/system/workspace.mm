#include "platform/workspace.h"

#import <Cocoa/Cocoa.h>

#include "platform/macos/foundation/autorelease_pool.h"
#include "platform/macos/foundation/text_impl.h"
#include "platform/macos/system/bracket_escapes.h"

namespace platform {
namespace {

// Returns nil unless `text` is a URL with a scheme and a host.
NSURL* parsed(const std::string& text) {
  NSURL* url = [NSURL URLWithString:textOf(withEscapedBrackets(text))];
  return [[url scheme] length] == 0 || [[url host] length] == 0 ? nil : url;
}

}  // namespace

Workspace& Workspace::sharedWorkspace() {
  static Workspace workspace;
  return workspace;
}

void Workspace::openURL(const std::string& text) {
  const AutoreleasePool pool;
  if (NSURL* url = parsed(text)) [[NSWorkspace sharedWorkspace] openURL:url];
}

}  // namespace platform
