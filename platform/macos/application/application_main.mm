#import <Cocoa/Cocoa.h>

#include <algorithm>
#include <string_view>
#include <vector>

#include "platform/application.h"
#include "platform/bundle.h"
#include "platform/macos/application/application_impl.h"
#include "platform/macos/application/process_start.h"
#include "platform/macos/application/single_instance.h"
#include "platform/macos/application/termination_signals.h"
#include "platform/macos/foundation/autorelease_pool.h"
#include "platform/macos/foundation/retained.h"

// Forwards the calls of NSApplicationDelegate to an ApplicationDelegate.
@interface TovalinApplicationDelegate : NSObject {
  platform::ApplicationDelegate* delegate_;
}
- (id)initWithProgram:(platform::ApplicationDelegate*)delegate;
- (void)applicationDidFinishLaunching:(NSNotification*)notification;
- (BOOL)applicationShouldHandleReopen:(NSApplication*)application hasVisibleWindows:(BOOL)hasVisibleWindows;
- (NSApplicationTerminateReply)applicationShouldTerminate:(NSApplication*)application;
@end

@implementation TovalinApplicationDelegate

- (id)initWithProgram:(platform::ApplicationDelegate*)delegate {
  self = [super init];
  if (self != nil) delegate_ = delegate;
  return self;
}

- (void)applicationDidFinishLaunching:(NSNotification*)notification {
  static_cast<void>(notification);
  delegate_->applicationDidFinishLaunching();
}

- (BOOL)applicationShouldHandleReopen:(NSApplication*)application hasVisibleWindows:(BOOL)hasVisibleWindows {
  static_cast<void>(application);
  static_cast<void>(hasVisibleWindows);
  delegate_->applicationShouldHandleReopen();
  return NO;
}

// Called at the end of the user's session.
- (NSApplicationTerminateReply)applicationShouldTerminate:(NSApplication*)application {
  static_cast<void>(application);
  platform::Application::sharedApplication().terminate();
}

@end

namespace platform {
namespace {

// Foundation enters its multithreaded mode only when NSThread starts a thread.
void prepareForThreads() {
  const Retained<NSObject*> target([[NSObject alloc] init]);
  [NSThread detachNewThreadSelector:@selector(self) toTarget:target.get() withObject:nil];
}

TovalinApplicationDelegate* nativeDelegate(ApplicationDelegate& delegate) {
  return [[TovalinApplicationDelegate alloc] initWithProgram:&delegate];
}

}  // namespace

int ApplicationMain(int argc, char** argv) {
  prepareProcess();
  // Read before any blocking call, so that Info.plist matches this executable even if the bundle is updated
  // meanwhile.
  static_cast<void>(Bundle::mainInfoDictionary());
  const ApplicationRegistration& program = applicationRegistration();
  const std::vector<std::string_view> arguments(argv + std::min(argc, 1), argv + argc);
  if (const auto status = program.handleArguments(arguments)) return *status;

  const AutoreleasePool pool;
  SingleInstance instance;
  if (!instance.isFirst()) {
    instance.notifyFirst();
    return 0;
  }
  [NSApplication sharedApplication];
  prepareForThreads();
  const auto delegate = program.makeDelegate();
  Application& application = Application::sharedApplication();
  application.impl().delegate = delegate.get();
  instance.listen([&] { delegate->applicationShouldHandleReopen(); });
  delegate->awakeFromNib();
  handleTerminationSignals([&] { application.performOnMainThread([&] { application.terminate(); }); });

  const Retained<TovalinApplicationDelegate*> native(nativeDelegate(*delegate));
  [NSApp setDelegate:static_cast<id>(native.get())];
  [NSApp run];
  application.terminate();
}

}  // namespace platform
